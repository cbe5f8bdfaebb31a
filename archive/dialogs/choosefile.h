// Asks the user for archive files.
#pragma once

#include "archive/operations/archivemanager.h"

#include <optional>
#include <vector>

struct arcSTarget
{
    CString strPath;
    arcFormat nFormat = arcFormatZipped;
};

/// The file to save a patient into, offered as the ID in the folder of the setting `ArchiveFilePath`; the
/// chosen folder is written back there. Nothing when the user cancelled, chose a network path (told) or did
/// not want the earlier format after all. Whether a file of the name exists is not asked here.
std::optional<arcSTarget> arcChooseTarget(CWnd* pParent, LPCTSTR pszID);

/// The archives to load; empty when the user cancelled or chose a network path (told). bSeveral lets more
/// than one be chosen.
std::vector<CString> arcChooseArchives(CWnd* pParent, bool bSeveral);

/// The path of a patient's archive in a folder.
CString arcArchivePath(LPCTSTR pszFolder, LPCTSTR pszID, arcFormat nFormat);

/// What to do about an archive that exists already.
enum class arcReplace
{
    Yes,
    YesToAll,
    No,
    Cancel
};

/// Asks before an existing archive is replaced; bSeveral offers "Yes to All".
arcReplace arcAskReplace(CWnd* pParent, LPCTSTR pszPath, bool bSeveral);
