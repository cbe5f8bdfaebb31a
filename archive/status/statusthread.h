// The thread on which an archive is written or read, with its progress dialog.
#pragma once

#include "archive/res/archiveres.h"

#include <afxwin.h>

#include <functional>
#include <string>
#include <vector>

/// Posted to the owner window when the work is over: wParam 0, lParam the result code
/// (archive/work/resultcodes.h).
inline constexpr UINT arcMsgSaveEnded = 1135;
inline constexpr UINT arcMsgLoadEnded = 1136;

/// Reports how far the work is, 0 to 100, with the name of what is under way. Called on the status thread;
/// keeps the progress dialog painted. False when the work is to stop.
using arcProgress = std::function<bool(int nPercent, const std::string& name)>;

/// What a status thread is to do.
struct arcSStatusWork
{
    BOOL bSave = TRUE;                  ///< save (zip) or load (unzip)
    BOOL bDiskette = FALSE;             ///< the destination is the diskette drive
    CString strStatus;                  ///< the text at the top of the dialog
    CString strFileList;                ///< save: quoted patterns, looked for in strFolder
    std::vector<std::string> moreFiles; ///< save: full paths of further files, stored under their bare names
    CString strArchivePath;             ///< the ".kaz" file to write or read
    CString strFolder;                  ///< save: the working folder; load: the folder to unzip into
    HWND hOwner = nullptr;              ///< receives arcMsgSaveEnded or arcMsgLoadEnded
    BOOL bAlternativeEngine = FALSE;    ///< the setting `UseDynaZip`; carried, without effect

    /// For archives that are no zip: does the whole work on the status thread and answers the result code. What
    /// the table of result codes has no message for it shows itself, owned by the window given.
    std::function<int(CWnd* pDialog, const arcProgress& progress)> otherWork;
};

/// A user interface thread that owns the modeless progress dialog for one piece of work. The main window is
/// disabled meanwhile, and enabled again (also when the work fails or throws) if it was the thread that
/// disabled it. The archive of a save has been read back and checked when the code is 0. Shows the message of
/// the code, posts to the owner, and deletes itself.
class arcCStatusThread : public CWinThread
{
    DECLARE_DYNCREATE(arcCStatusThread)

public:
    /// Starts a thread for the work; false when that is not possible, and nothing has happened then.
    static bool Start(const arcSStatusWork& work);

    BOOL InitInstance() override;
    int ExitInstance() override;

private:
    arcSStatusWork m_work;
    int m_nResult = 0;
};
