/* Standard ids of the framework; usable from sources and from resource scripts. */
#ifndef SUITE_MFC_AFXRES_H
#define SUITE_MFC_AFXRES_H

#ifdef RC_INVOKED
#include <winresrc.h>
#endif

#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

/* Commands */
#define ID_APP_EXIT 0xE141
#define ID_HELP 0xE146

/* Help ids derived from other ids */
#define HID_BASE_RESOURCE 0x00020000UL

/* Texts of the windows half: 0xF180 to 0xF19F, except AFX_IDS_APP_TITLE */
#define AFX_IDS_APP_TITLE 0xE000
#define AFX_IDP_PARSE_STRING_SIZE 0xF184
#define AFX_IDP_INTERNAL_FAILURE 0xF190
#define AFX_IDP_FAILED_TO_CREATE_DIALOG 0xF191
#define AFX_IDP_COMMAND_FAILURE 0xF193

#endif
