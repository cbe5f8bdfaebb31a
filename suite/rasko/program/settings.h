// What the transfer program is set to: options of the practice, kept in its database.
#pragma once

#include "suite/rasko/program/worker.h"

#include <afxwin.h>

#include <string>

namespace rasko
{
std::string ToUtf8(const CString& text);
/// What the code page does not have becomes "?".
CString FromUtf8(const std::string& text);

/// Of the open database. Missing options are written with their defaults.
struct Settings
{
    CString target; ///< "host" or "host:port"
    CString folder; ///< RASKOPATH; empty: not set up
    Scripts scripts;
    bool hidden = false; ///< RASKOSHOWHIDDEN

    static Settings Load();
    void Store() const;
};

/// "host" or "host:port" of letters, digits, hyphens and dots.
bool IsServiceName(const CString& text);
/// Whether a file can be made in the folder.
bool IsWritableFolder(const CString& folder);
/// Minutes that local time lies behind UTC now.
int MinutesWest();
/// A text of the string table.
CString Text(UINT id);
} // namespace rasko
