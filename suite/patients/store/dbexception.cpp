#include "suite/patients/store/dbexception.h"

#include "suite/patients/store/patmodule.h"
#include "suite/patients/store/patres.h"

IMPLEMENT_DYNAMIC(dbCException, CException)

dbCException::dbCException(dbError nError, LPCTSTR pszDetail) : m_nError(nError), m_strDetail(pszDetail)
{
}

BOOL dbCException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    if (pnHelpContext)
        *pnHelpContext = 0;
    if (!lpszError || nMaxError == 0)
        return FALSE;
    CString strText = patLoadString(IDS_DBERR_FIRST + static_cast<UINT>(m_nError));
    if (!m_strDetail.IsEmpty())
        strText += (strText.IsEmpty() ? "" : "\n\n") + m_strDetail;
    lstrcpynA(lpszError, strText, static_cast<int>(nMaxError));
    return TRUE;
}

void dbCException::Throw(dbError nError, LPCTSTR pszDetail)
{
    throw new dbCException(nError, pszDetail);
}
