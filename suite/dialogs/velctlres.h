#pragma once

/* Resource ids of the dialog and control library: strings 41500 to 41799. */

#define IDS_CTL_SIZE 41500
#define IDS_CTL_TOOTH_PRESENT 41510
#define IDS_CTL_TOOTH_MISSING 41511
#define IDS_CTL_TOOTH_EXTRACTED 41512
