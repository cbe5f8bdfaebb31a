// The thread on which an archive is written or read, with its progress dialog.
#pragma once

#include "archive/files/fileset.h"
#include "archive/res/archiveres.h"

#include <afxwin.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Posted to the owner window when the work is over: wParam 0, lParam the result code
/// (archive/work/resultcodes.h).
inline constexpr UINT arcMsgSaveEnded = 1135;
inline constexpr UINT arcMsgLoadEnded = 1136;

/// Reports how far the work is, 0 to 100, with the name of what is under way. False when the work is to stop.
using arcProgress = std::function<bool(int nPercent, const std::string& name)>;

/// Shows a message box over the progress dialog (nType as for a message box) and answers the button; 0 when
/// there is nobody to ask.
using arcAsk = std::function<int(const CString& strText, UINT nType)>;

/// A whole operation; answers the result code. Runs on a thread without windows, to which all user interface
/// is behind these two.
using arcWork = std::function<int(const arcAsk& ask, const arcProgress& progress)>;

/// What a status thread is to do.
struct arcSStatusWork
{
    BOOL bSave = TRUE;                  ///< save (zip) or load (unzip)
    BOOL bDiskette = FALSE;             ///< the destination is the diskette drive
    CString strStatus;                  ///< the text at the top of the dialog
    CString strFileList;                ///< save: quoted patterns, looked for in strFolder
    std::vector<std::string> moreFiles; ///< save: full paths of further files, stored under their bare names
    CString strArchivePath;             ///< the ".kaz" file to write or read
    CString strWorkingPath;             ///< save: the zip's name until it is good; empty: the archive's own
    CString strFolder;                  ///< save: the working folder; load: the folder to unzip into
    unsigned nWorkers = 0;              ///< threads that pack and unpack; 0: one for each core
    HWND hOwner = nullptr;              ///< receives arcMsgSaveEnded or arcMsgLoadEnded
    bool bPostsEnd = true;              ///< false: the starter waits for the thread, and nothing is posted
    BOOL bAlternativeEngine = FALSE;    ///< the setting `UseDynaZip`; carried, without effect

    std::function<bool(const std::string&)> trial;          ///< save: a trial reading of the zip at this path
    void (*step)(const char*) = nullptr;                    ///< save: told of each step
    std::shared_ptr<std::vector<arc::PresentFile>> pStored; ///< save: receives what went in

    /// For archives that are no zip: all of the work. What the table of result codes has no message for it
    /// shows itself.
    arcWork otherWork;
};

/// A user interface thread that owns the modeless progress dialog for one piece of work; the work itself runs
/// on a thread of its own, so that the dialog answers whatever happens to it. The main window and the active
/// one are disabled meanwhile, and enabled again (also when the work fails or throws) if it was the thread
/// that disabled them. The archive of a save has been read back and checked when the code is 0. WM_QUIT stops
/// the work. Shows the message of the code and posts to the owner, as the last thing it does.
///
/// The object belongs to the thread that started it and joins its own: nothing of it runs any more when the
/// object is gone.
class arcCStatusThread : public CWinThread
{
    DECLARE_DYNAMIC(arcCStatusThread)

public:
    arcCStatusThread();
    /// Waits for the end of the work; messages that are sent to the caller's windows are answered meanwhile.
    ~arcCStatusThread() override;

    /// Starts a thread for the work; null when that is not possible, and nothing has happened then.
    static std::unique_ptr<arcCStatusThread> Start(const arcSStatusWork& work);

    /// Waits as the destructor does, and answers the result code.
    int Join();

    BOOL InitInstance() override;
    int ExitInstance() override;

private:
    void RunWork(HWND hActive);

    arcSStatusWork m_work;
    int m_nResult = 0; ///< the thread's own until that has ended
};
