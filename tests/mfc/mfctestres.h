#pragma once

#define IDD_BASIC 100
#define IDC_NAME 1001
#define IDC_ACTION 1002
#define IDC_CHECK 1003
#define IDS_WHO 500
