#pragma once

/* Resource ids of the maintenance dialogs: controls 2500 to 2799, strings 9700 to 9799.
   A template's id is its help id less 0x20000. */

#define IDD_EDIT_KEYWORDS 9383

#define IDC_KEYWORD_TEXT 2500
#define IDC_KEYWORD_LIST 2501
#define IDC_KEYWORD_ADD 2502
#define IDC_KEYWORD_REMOVE 2503

#define IDS_KEYWORD_DUPLICATE 9700
#define IDS_KEYWORD_DUPLICATE_CAPTION 9701
#define IDS_KEYWORD_EDIT_THESE 9702
#define IDS_DIAGNOSTICS_NOT_IMPORTED 9790
