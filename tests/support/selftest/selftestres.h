#pragma once

#define IDD_ASKING 101
#define IDD_UGLY 102

#define IDC_NAME 201
#define IDC_ADD 202
#define IDC_KIND 203
#define IDC_DATE 204
#define IDC_MENU 206
#define IDC_CUT 207
#define IDC_OVERLAP 208
#define IDC_AWAY 209
#define IDC_WORDS 210
