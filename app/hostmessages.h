#pragma once

/** What the module posts to the host's window while an archive operation goes on; plain C++ and Win32
   numbers.

    Message VEL_WM_PATIENT: wParam is a VEL_PATIENT_EVENT, lParam a copy of the patient's GUID (char*, ended
   by NUL) that was allocated with GlobalAlloc(GMEM_FIXED); the host frees it with GlobalFree. */
inline constexpr unsigned VEL_WM_PATIENT = 1137;

enum VEL_PATIENT_EVENT : unsigned
{
    VEL_PATIENT_LOADED = 1,  ///< a patient was loaded from an archive
    VEL_PATIENT_REMOVED = 2, ///< a patient was removed from the list after it had been archived
    VEL_PATIENT_MERGED = 3,  ///< timepoints were merged into a patient
    VEL_PATIENT_ARRIVED = 4, ///< follows VEL_PATIENT_LOADED when the load is finished: select the patient
};
