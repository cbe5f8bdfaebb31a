// String resources of the framework's base: what exceptions tell the user.
#pragma once

#define AFX_IDP_NO_ERROR_AVAILABLE 0xF100
#define AFX_IDP_MEMORY 0xF101
#define AFX_IDP_RESOURCE 0xF102
#define AFX_IDP_NOT_SUPPORTED 0xF103
#define AFX_IDP_INVALID_ARG 0xF104
#define AFX_IDP_UNNAMED_FILE 0xF105
#define AFX_IDS_INVALID_DATETIME 0xF106

// One text per CFileException cause, in the order of the causes; "%1" is the file.
#define AFX_IDP_FILE_NONE 0xF110
// One text per CArchiveException cause; "%1" is the file.
#define AFX_IDP_ARCH_NONE 0xF120
