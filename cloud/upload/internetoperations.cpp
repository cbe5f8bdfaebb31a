#include "cloud/upload/internetoperations.h"

#include "app/hostnotice.h"
#include "app/modalrun.h"
#include "app/velapp.h"
#include "app/velenums.h"
#include "archive/res/archiveres.h"
#include "cloud/download/downloadlist.h"
#include "cloud/queue/queuereport.h"
#include "cloud/res/cloudres.h"
#include "cloud/upload/transfersdlg.h"
#include "cloud/upload/uploaddlg.h"
#include "suite/util/velstring.h"

namespace
{
CString WhoseRecords(const std::vector<CString>& ids)
{
    CString strText;
    dbCPatient patient;
    if (ids.size() == 1 && patient.Load(ids.front()))
        strText.Format(
            IDS_CLD_UPLOAD_ONE,
            (patient.GetFirstname(patNameForText) + " " + patient.GetLastname(patNameForText)).GetString());
    else
        strText.Format(IDS_CLD_UPLOAD_SEVERAL, static_cast<int>(ids.size()));
    return strText;
}

/// The queue's result. A database that fails at one patient costs neither the others nor the report.
int QueueOne(CFarreachVeltrix& queue, const CString& strID, const velSUpload& upload)
try
{
    dbCPatient patient;
    return patient.Load(strID) ? queue.QueueUpload(patient, upload, TRUE) : velQueueLoadError;
}
catch (CException* e)
{
    e->Delete();
    return velQueueLoadError;
}
} // namespace

bool velSavePatientsToInternet(CWnd* pParent, const std::vector<CString>& ids)
{
    velCTransferProgram program;
    CFarreachVeltrix queue(program);
    if (queue.CheckRasko(TRUE) != velQueued)
        return false;
    upldCUploadDlg dialog(pParent, WhoseRecords(ids));
    if (velRunModal(dialog) != IDOK)
        return false;

    CString strReport;
    for (const CString& strID : ids)
    {
        const int nResult = QueueOne(queue, strID, dialog.GetUpload());
        if (const UINT nText = cloud::QueueReportText(nResult, !queue.GetOtherComputer().IsEmpty()))
            strReport += velFormatTemplate(nText, strID, queue.GetOtherComputer());
    }
    if (!strReport.IsEmpty())
        AfxMessageBox(strReport.TrimLeft(), MB_OK | MB_ICONEXCLAMATION);
    if (queue.GetFirstTask() == 0)
        return false;
    upldCTransfersDlg transfers(pParent, program, queue.GetFirstTask());
    velRunModal(transfers);
    return true;
}

bool velGetPatientFromInternet(CWnd* pParent, HWND hHost)
{
    velCTransferProgram program;
    CDownLoadPatientList dialog(pParent, program, VelApp()->GetCredentials());
    if (velRunModal(dialog) != IDOK || !dialog.GetReceived())
        return false;
    const velSReceived& received = *dialog.GetReceived();
    velNotifyHost(hHost, received.bNewPatient ? ARCHIVE_NOTIFY_LOADED : ARCHIVE_NOTIFY_MERGED,
                  received.strGUID);
    return true;
}
