// The queue through which records go to the transfer program.
#pragma once

#include "cloud/exchange/filechoice.h"
#include "cloud/queue/queueresult.h"
#include "cloud/queue/transferprogram.h"
#include "cloud/xml/velxml.h"

#include <afx.h>

class dbCPatient;
struct dbSRaskoTask;

/// What the user chose for an upload.
struct velSUpload
{
    cloud::FileChoice choice;
    CString strRecipients; ///< separated by semicolons; empty for none
    CString strNotes;
};

/// Writes tasks for the transfer program into the practice's database, and wakes it. Nothing is queued by
/// halves: a task is one row, and a check that fails leaves the table as it was. User interface thread; the
/// program stays the caller's.
class CFarreachVeltrix
{
public:
    explicit CFarreachVeltrix(velCTransferProgram& program);

    /// 0 when everything is in place; velQueueNoXml, velQueueNoTable or velQueueNoProgram, told to the user
    /// when asked.
    int CheckRasko(BOOL bShowMessages);

    /// Queues the upload of a stored patient and wakes the program. The checks of its setting-up are made
    /// once in the life of this object. Answers a velQueueResult.
    int QueueUpload(const dbCPatient& patient, const velSUpload& upload, BOOL bShowMessages);

    /// Queues the download of a record's files by its manifest. Part of the open transaction, if there is
    /// one; the program is then woken by StartRasko behind its end.
    int QueueDownload(LPCTSTR pszManifest);

    BOOL StartRasko();

    /// After velQueueExists: the computer that queued the patient, empty when it was this one.
    const CString& GetOtherComputer() const
    {
        return m_strOtherComputer;
    }
    /// The first task of this object, 0 when there is none.
    __int64 GetFirstTask() const
    {
        return m_nFirstTask;
    }

    static CString GetComputer();

private:
    bool IsSetUp(BOOL bShowMessages);
    bool CheckSetup(BOOL bShowMessages);
    bool IsPending(LPCTSTR pszPatientGUID);
    bool Register(const dbCPatient& patient, const velSUpload& upload, BOOL bShowMessages,
                  CString& strServiceID);
    int Insert(dbSRaskoTask& task);

    velCTransferProgram& m_program;
    CVelXML m_xml;
    CString m_strOtherComputer;
    __int64 m_nFirstTask = 0;
    enum class Setup
    {
        Unknown,
        Done,
        Missing
    } m_setup = Setup::Unknown;
};
