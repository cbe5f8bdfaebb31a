// Resource ids of the archive dialogs. A template's id is its help id less 0x20000.
#pragma once

#define IDD_ARC_CHOICE                 9400
#define IDD_ARC_DUMMY                  9402
#define IDD_ARC_OVERWRITE              9403

#define IDC_ARC_GET_ARCHIVE            2820
#define IDC_ARC_SAVE_ARCHIVE           2821
#define IDC_ARC_MERGE                  2822
#define IDC_ARC_GET_INTERNET           2823
#define IDC_ARC_SAVE_INTERNET          2824
#define IDC_ARC_KEEP_OTHERS_OUT        2825
#define IDC_ARC_INCLUDE_VIEWER         2826
#define IDC_ARC_OVERWRITE_TEXT         2830
#define IDC_ARC_OVERWRITE_DETAILS      2831
#define IDC_ARC_OVERWRITE_ALL          2832

#define IDS_ARC_FILTER_SAVE            9900
#define IDS_ARC_SAVE_TITLE             9901
#define IDS_ARC_OVERWRITE_DETAILS      9902
#define IDS_ARC_UNEXPECTED             9903
#define IDS_ARC_SCRATCH_BUSY           9904
#define IDS_ARC_FILE_IN_THE_WAY        9905
#define IDS_ARC_TOO_MANY_TIMEPOINTS    9906
#define IDS_ARC_ARCHIVE_NOT_REMOVED    9907
#define IDS_ARC_FILTER_LOAD            9908
#define IDS_ARC_WORKING_FOLDER         9909
#define IDS_ARC_DISK_OF                9910
#define IDS_ARC_FILES_STAY             9911
#define IDS_ARC_FILES_LEFT             9912
#define IDS_ARC_CHANGED_SINCE          9913
#define IDS_ARC_UNLOCK_FAILED          9914
#define IDS_ARC_RECORD_BUSY            9915
#define IDS_ARC_NO_PATIENT_FILE        9916
#define IDS_ARC_AND_MORE               9917
#define IDS_ARC_SCRATCH_FAILED         9918
#define IDS_ARC_REFERRALS_LEFT         9919
