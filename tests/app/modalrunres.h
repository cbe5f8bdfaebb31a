#pragma once

#define IDD_FAILING 100
#define IDD_FAILING_PAGE 101
#define IDC_FAIL 102
#define IDC_NEST 103
