#pragma once

#define IDD_BASIC 100
#define IDD_PAGE_ONE 101
#define IDD_PAGE_TWO 102
#define IDC_NAME 1001
#define IDC_ACTION 1002
#define IDC_CHECK 1003
#define IDC_FIRST 1004
#define IDC_SECOND 1005
#define IDC_LIST 1006
#define IDS_WHO 500
