// Resource ids of the archive dialogs and texts.
#pragma once

// Progress and status thread
#define IDS_ARC_STATUS_SAVING          9800
#define IDS_ARC_STATUS_LOADING         9801
#define IDS_ARC_CANCELLED              9802
#define IDS_ARC_NO_DIALOG              9803
#define IDS_ARC_NO_THREAD              9804
#define IDS_ARC_WRITE_PROTECTED        9805
#define IDS_ARC_WRITE_FAILURE          9806
#define IDS_ARC_NOT_CREATED            9807
#define IDS_ARC_SAVE_ERROR_CODE        9808
#define IDS_ARC_OPEN_ERROR             9809
#define IDS_ARC_EXTRACT_ERROR          9810
#define IDS_ARC_LOAD_ERROR_CODE        9811
#define IDS_ARC_STATUS_CHECKING        9812
// Diskettes and volumes
#define IDS_ARC_DISK_NOT_PATIENT       9820
#define IDS_ARC_DISK_OTHER_PATIENT     9821
#define IDS_ARC_DISK_OUT_OF_ORDER      9822
#define IDS_ARC_DISK_INSERT            9823
#define IDS_ARC_DISK_ERASING           9824
#define IDS_ARC_DISK_WRITE_FAULT       9825
#define IDS_ARC_DISK_READ_ORDER        9826
#define IDS_ARC_DISK_UNREADABLE        9827
#define IDS_ARC_DISK_FIRST_AGAIN       9828
#define IDS_ARC_DISK_MULTIPLE          9829
// Choosing archive files
#define IDS_ARC_EARLIER_ASK            9830
#define IDS_ARC_EARLIER_NAME           9831
#define IDS_ARC_REPLACE_ASK            9832
#define IDS_ARC_CHOOSE_TITLE           9833
#define IDS_ARC_FILTER_VOLUMES         9834
#define IDS_ARC_FILTER_ZIPPED          9835
#define IDS_ARC_NO_UNC                 9836
// Archive manager
#define IDS_ARC_IN_USE                 9840
#define IDS_ARC_LOCK_FAILED            9841
#define IDS_ARC_REMOVE_ASK             9842
#define IDS_ARC_BALANCE                9843
#define IDS_ARC_BALANCE_RUN            9844
#define IDS_ARC_SAVE_PATIENT_FAILED    9845
#define IDS_ARC_FIELDS_ASSIGNED        9846
#define IDS_ARC_CAPTION                9847
#define IDS_ARC_EVENT_SAVED            9848
#define IDS_ARC_EVENT_DELETED          9849
#define IDS_ARC_EVENT_LOADED           9850
#define IDS_ARC_EVENT_MERGED           9851
#define IDS_ARC_ALREADY_EXISTS         9852
#define IDS_ARC_MARKED_DELETED         9853
#define IDS_ARC_DEVICE_ID              9854
#define IDS_ARC_TOO_LARGE              9855
#define IDS_ARC_TOO_MANY_VOLUMES       9856
#define IDS_ARC_NAME_TOO_LONG          9857
#define IDS_ARC_NO_SPACE               9858
// Archive dialog
#define IDS_ARC_SAVE_DISABLED          9860
#define IDS_ARC_SAVE_DISABLED_CAPTION  9861
#define IDS_ARC_MULTIPLE_SAVE_ASK      9862
#define IDS_ARC_SAVE_RETRY             9863
#define IDS_ARC_MERGE_OLD              9864
#define IDS_ARC_NO_HEADER              9865
#define IDS_ARC_MISMATCH               9866
#define IDS_ARC_MISMATCH_CAPTION       9867
#define IDS_ARC_MULTIPLE_OLD           9868
#define IDS_ARC_MULTIPLE_LOAD_ASK      9869
#define IDS_ARC_LOAD_CONTINUE          9870
#define IDS_ARC_LOAD_FAILED            9871
#define IDS_ARC_ZIP_MISSING            9872
#define IDS_ARC_QUEUE_LOAD_ERROR       9873
#define IDS_ARC_QUEUE_EXISTS           9874
#define IDS_ARC_QUEUE_ELSEWHERE        9875
#define IDS_ARC_QUEUE_MISSING          9876
#define IDS_ARC_QUEUE_NO_IMAGES        9877

// Dialog templates: the help id less 0x20000
#define IDD_ARC_PROGRESS               9401

// Controls
#define IDC_ARC_PROGRESS_TEXT          2800
#define IDC_ARC_PROGRESS_BAR           2801
#define IDC_ARC_PROGRESS_LINE          2802
