// Where the service is: options that the practice's database keeps, for all its computers.
#pragma once

#include <afx.h>

/// An option's value; one that is missing is written with its default first.
CString velServiceOption(LPCTSTR pszKey, LPCTSTR pszDefault);

CString velServiceHost();   ///< RASKOTARGET; its default is the setting of this name in "Environment"
CString velCommandScript(); ///< RASKOCOMMAND
CString velUploadScript();  ///< RASKOUPLOAD
