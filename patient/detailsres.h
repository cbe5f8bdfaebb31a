#pragma once

/* Resource ids of the details page and the doctor editor: controls 2250 to 2499, strings 9600 to 9699.
   A template's id is its help id less 0x20000. */

#define IDD_PATIENT_DETAIL 9362
#define IDD_EDIT_DOCTOR 9369

#define HID_PATIENT_DETAIL 140434
#define HID_EDIT_DOCTOR 140441
