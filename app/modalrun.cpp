#include "app/modalrun.h"

#include "app/appres.h"

#include <exception>

namespace
{

/// Why something failed, in words for the user; empty when nothing is known. Needs no memory of the heap,
/// which may be what has run out.
class CReason
{
public:
    CReason() = default;
    explicit CReason(LPCTSTR pszText)
    {
        ::lstrcpyn(m_szText, pszText, static_cast<int>(sizeof m_szText));
    }
    explicit CReason(const CException& e)
    {
        if (!e.GetErrorMessage(m_szText, static_cast<UINT>(sizeof m_szText)))
            m_szText[0] = '\0';
    }

    /// Shows the reason inside a message of the module.
    void Tell(UINT idMessage) const noexcept
    {
        try
        {
            CString strReason(m_szText);
            if (strReason.IsEmpty())
                strReason.LoadString(IDS_UNKNOWN_ERROR);
            CString strText;
            AfxFormatString1(strText, idMessage, strReason);
            AfxMessageBox(strText, MB_OK | MB_ICONSTOP);
        }
        catch (CException* e)
        {
            e->Delete();
        }
        catch (...) // not even the message could be shown
        {
        }
    }

private:
    char m_szText[1024] = "";
};

/// A dialog that is running, and the one that decides how it has ended. Lives on the stack of RunModal.
class CModalRun
{
public:
    CModalRun(CWnd& window, const std::function<void()>& cancel)
        : m_window(window), m_cancel(cancel), m_pOuter(s_pInnermost)
    {
        s_pInnermost = this;
    }
    ~CModalRun()
    {
        s_pInnermost = m_pOuter;
    }
    CModalRun(const CModalRun&) = delete;
    CModalRun& operator=(const CModalRun&) = delete;

    static CModalRun* Innermost()
    {
        return s_pInnermost;
    }

    /// The first failure is the one worth telling; what a closing dialog says after it usually follows from
    /// it. A dialog that has its answer keeps it.
    void Fail(const CReason& reason)
    {
        if (m_bFailed)
            return;
        m_bFailed = true;
        m_reason = reason;
        m_bShown = m_window.IsWindowVisible() != FALSE;
        m_bHadEnded = !m_window.ContinueModal();
        if (!m_bHadEnded)
            m_cancel();
    }

    /// The result of a run whose modal loop answered nEnd; tells the user of a failure.
    INT_PTR Settle(INT_PTR nEnd, const std::function<bool()>& isDone) const
    {
        if (!m_bFailed)
            return nEnd;
        const bool bAnswered = m_bHadEnded && nEnd > 0 && nEnd != IDCANCEL;
        if (isDone ? isDone() : bAnswered)
        {
            m_reason.Tell(IDS_MODAL_DONE);
            return bAnswered ? nEnd : IDOK;
        }
        if (m_bHadEnded)
            m_reason.Tell(IDS_CALL_FAILED); // by Cancel, or with nothing done: no window was lost
        else
            m_reason.Tell(m_bShown ? IDS_MODAL_FAILED : IDS_MODAL_NOT_OPENED);
        return IDCANCEL;
    }

    /// Ends the run: exceptions from here on are another's.
    void Leave()
    {
        s_pInnermost = m_pOuter;
    }

private:
    inline static CModalRun* s_pInnermost = nullptr;

    CWnd& m_window;
    const std::function<void()>& m_cancel;
    CModalRun* const m_pOuter;
    bool m_bFailed = false;
    bool m_bShown = false;
    bool m_bHadEnded = false;
    CReason m_reason;
};

template <class Dialog> INT_PTR RunModal(Dialog& dialog, const std::function<bool()>& isDone)
{
    return velGuard(IDCANCEL, IDS_CALL_FAILED, [&] {
        const std::function<void()> cancel = [&] { dialog.EndDialog(IDCANCEL); };
        CModalRun run(dialog, cancel);
        const INT_PTR nEnd = dialog.DoModal();
        run.Leave();
        return run.Settle(nEnd, isDone);
    });
}

} // namespace

INT_PTR velRunModal(CDialog& dialog)
{
    return RunModal(dialog, {});
}

INT_PTR velRunModal(CPropertySheet& sheet, const std::function<bool()>& isDone)
{
    return RunModal(sheet, isDone);
}

INT_PTR velGuard(INT_PTR onFailure, UINT idMessage, const std::function<INT_PTR()>& work) noexcept
{
    CReason reason;
    try
    {
        return work();
    }
    catch (CUserException* e)
    {
        e->Delete(); // the user has been told
        return onFailure;
    }
    catch (CException* e)
    {
        reason = CReason(*e);
        e->Delete();
    }
    catch (const std::exception& e)
    {
        reason = CReason(e.what());
    }
    catch (...)
    {
    }
    reason.Tell(idMessage);
    return onFailure;
}

bool velEndModalRun(CException* e)
{
    CModalRun* const pRun = CModalRun::Innermost();
    if (pRun == nullptr)
        return false;
    pRun->Fail(CReason(*e));
    return true;
}
