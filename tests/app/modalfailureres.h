#pragma once

#define IDD_FAILING 100
#define IDC_FAIL 101
#define IDC_NEST 102
