#pragma once

/* Resource ids of the module's frame. Strings 9300 to 9499; the numbers of the first four are known outside.
 */

#define IDS_SECTION_DEFAULTS 9316
#define IDS_SECTION_ENVIRONMENT 9323
#define IDS_KEY_WORKING 9324
#define IDS_CHANGE_PATIENT_CAPTION 9451

#define IDS_NEW_PATIENT_CAPTION 9450
#define IDS_MODAL_FAILED 9460
#define IDS_UNKNOWN_ERROR 9461
#define IDS_EVENT_FAILED 9462
#define IDS_HELP_DEBUG 9470
#define IDS_HELP_DEBUG_KIND 9471
#define IDS_HELP_DEBUG_COMMAND 9472
#define IDS_HELP_WINDOW 9473
