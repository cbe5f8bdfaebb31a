// A practice, a transfer program and a service for the dialogs of the exchange.
#pragma once

#include "cloud/download/downloadlist.h"
#include "cloud/queue/transferprogram.h"
#include "suite/patients/velpat.h"
#include "tests/cloud/httpserver.h"
#include "tests/support/dialogscript.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <vector>

/// Answers as the real one would, and notes what it was asked.
class FakeProgram : public velCTransferProgram
{
public:
    BOOL IsInstalled() const override
    {
        return m_bInstalled;
    }
    BOOL Wake() override
    {
        m_calls.push_back("wake");
        return TRUE;
    }
    void Show() override
    {
        m_calls.push_back("show");
    }
    void ShowOptions() override
    {
        m_calls.push_back("options");
    }
    BOOL Connect() override
    {
        return TRUE;
    }
    BOOL HasCredentials() override
    {
        return m_bCredentials;
    }
    void EnterCredentials() override
    {
        m_calls.push_back("enter");
    }
    BOOL GetCredentials(velCCredentials& credentials) override
    {
        if (m_bCredentials)
            credentials.Set("anna", "secret&1");
        return m_bCredentials;
    }
    CString RegisterPatient(LPCTSTR pszGUID, __int64 nBytes) override
    {
        m_calls.push_back("register " + std::to_string(nBytes));
        if (m_strRefusal.IsEmpty())
            dbCServicePatients::Store({pszGUID, "41", "{F}"});
        return m_strRefusal;
    }
    CString SetRecipients(LPCTSTR, LPCTSTR pszRecipients, LPCTSTR pszNotes) override
    {
        m_calls.push_back(std::string("recipients ") + pszRecipients + "|" + pszNotes);
        return {};
    }

    bool m_bInstalled = true;
    std::atomic<bool> m_bCredentials = true;
    CString m_strRefusal;
    std::vector<std::string> m_calls;
};

/// The download list over a service of this process, without encryption.
class PlainList : public CDownLoadPatientList
{
public:
    using CDownLoadPatientList::CDownLoadPatientList;

protected:
    std::unique_ptr<CVelInet> MakeSession(LPCTSTR pszAgent) override
    {
        struct PlainInet : CVelInet
        {
            using CVelInet::CVelInet;
            DWORD ConnectionFlags() const override
            {
                return 0;
            }
        };
        return std::make_unique<PlainInet>(pszAgent, 1, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr,
                                           INTERNET_FLAG_DONT_CACHE);
    }
};

class Exchange : public testing::Test
{
protected:
    Exchange();
    ~Exchange() override;

    /// The commands that the service was sent, without parameters.
    std::vector<std::string> Commands() const;
    INT_PTR RunList(const veltest::DialogScript::Script& script);
    /// Chooses the first record; the script goes on from there. Leaves a list that is still open.
    INT_PTR DownloadWith(const veltest::DialogScript::Script& script);
    /// The same, and answers the boxes with these texts by OK.
    INT_PTR Download(const std::vector<std::string>& boxes = {});

    /// A stored patient with one image for each timepoint, and its files.
    dbCPatient StorePatient(const std::string& id, int nTimepoints = 1);
    /// Everything that the database holds of patients, tasks with their files, and events, as text.
    std::string State();

    veltest::TemporaryPractice m_practice;
    FakeProgram m_program;
    velCCredentials m_credentials;
    std::map<std::string, std::string> m_replies; ///< body by command; an answer of 500 where there is none
    veltest::HttpServer m_server;
    std::vector<std::string> m_known; ///< IDs that State looks at
    /// The request, from 1, that gets no whole answer: half of one, or a broken connection. Counted down.
    std::atomic<int> m_nCut = 0;
    std::atomic<bool> m_bCutHalf = false;
};

/// The record "41" of patient A1, born 1999-05-17, with one image of timepoint 7.
std::string ServiceRecord(const std::string& timepoints = {});
