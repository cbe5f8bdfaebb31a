#include "app/modalrun.h"

#include "app/appres.h"

#include <exception>

namespace
{

/// A dialog that is running. Lives on the stack of velRunModal.
class CModalRun
{
public:
    explicit CModalRun(const std::function<void()>& cancel) : m_cancel(cancel), m_pOuter(s_pInnermost)
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

    bool HasFailed() const
    {
        return m_bFailed;
    }
    const CString& GetReason() const
    {
        return m_strReason;
    }

    /// The first failure is the one worth telling; what a closing dialog says after it usually follows from
    /// it.
    void Fail(const CString& strReason)
    {
        if (m_bFailed)
            return;
        m_bFailed = true;
        m_strReason = strReason;
        m_cancel();
    }

private:
    inline static CModalRun* s_pInnermost = nullptr;

    const std::function<void()>& m_cancel;
    CModalRun* const m_pOuter;
    bool m_bFailed = false;
    CString m_strReason;
};

CString GetReason(const CException& e)
{
    CString strReason;
    const BOOL bTold = e.GetErrorMessage(strReason.GetBuffer(1024), 1024);
    strReason.ReleaseBuffer();
    if (!bTold || strReason.IsEmpty())
        strReason.LoadString(IDS_UNKNOWN_ERROR);
    return strReason;
}

void ShowFailure(UINT idMessage, const CString& strReason)
{
    CString strText;
    AfxFormatString1(strText, idMessage, strReason);
    AfxMessageBox(strText, MB_OK | MB_ICONSTOP);
}

INT_PTR RunModal(const std::function<INT_PTR()>& doModal, const std::function<void()>& cancel)
{
    bool bFailed = false;
    CString strReason;
    const INT_PTR nResult = velGuard(IDCANCEL, IDS_MODAL_FAILED, [&] {
        CModalRun run(cancel);
        const INT_PTR nEnd = doModal();
        bFailed = run.HasFailed();
        strReason = run.GetReason();
        return nEnd;
    });
    if (!bFailed)
        return nResult;
    ShowFailure(IDS_MODAL_FAILED, strReason);
    return IDCANCEL;
}

} // namespace

INT_PTR velRunModal(CDialog& dialog)
{
    return RunModal([&] { return dialog.DoModal(); }, [&] { dialog.EndDialog(IDCANCEL); });
}

INT_PTR velRunModal(CPropertySheet& sheet)
{
    return RunModal([&] { return sheet.DoModal(); }, [&] { sheet.EndDialog(IDCANCEL); });
}

INT_PTR velGuard(INT_PTR onFailure, UINT idMessage, const std::function<INT_PTR()>& work) noexcept
{
    try
    {
        CString strReason;
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
            strReason = GetReason(*e);
            e->Delete();
        }
        catch (const std::exception& e)
        {
            strReason = e.what();
        }
        catch (...)
        {
            strReason.LoadString(IDS_UNKNOWN_ERROR);
        }
        ShowFailure(idMessage, strReason);
    }
    catch (CException* e)
    {
        e->Delete();
    }
    catch (...) // not even the message could be shown
    {
        ::MessageBeep(MB_ICONSTOP);
    }
    return onFailure;
}

bool velEndModalRun(CException* e)
{
    CModalRun* const pRun = CModalRun::Innermost();
    if (pRun == nullptr)
        return false;
    pRun->Fail(GetReason(*e));
    return true;
}
