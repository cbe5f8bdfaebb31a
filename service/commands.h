// The commands of the command script: a form in, a document out.
#pragma once

#include "service/accounts.h"
#include "service/records.h"
#include "service/text.h"

#include <string>

namespace svc
{
struct CommandReply
{
    std::string body;       ///< XML, or empty
    std::string newSession; ///< token that the client is to keep
    bool endSession = false;
};

/// Knows the thirteen commands. Every thread may call.
class Commands
{
public:
    Commands(Accounts& accounts, Records& records) : m_accounts(accounts), m_records(records)
    {
    }

    /// `token`: the session that the request came with, or empty. Throws Failure.
    CommandReply Run(const Form& received, const std::string& token);

private:
    CommandReply SignIn(const Form& form);
    std::string List(const Session& session, const Form& form);
    std::string Updated(const Session& session, const Form& form);
    std::string DownloadPatient(const Session& session, const Form& form);
    std::string AddToQueue(const Session& session, const Form& form);
    std::string RecordInfo(const Session& session, const Form& form);
    std::string RecordInfoEx(const Session& session, const Form& form);
    std::string AdhocShare(const Session& session, const Form& form);
    std::string StopSharing(const Session& session, const Form& form);
    std::string DeleteRecord(const Session& session, const Form& form);

    std::string DescribeRecord(const Session& session, const RecordLine& record);

    Accounts& m_accounts;
    Records& m_records;
};

/// "<response ...>": what an upload still lacks.
std::string DescribeUpload(const Upload& upload);
} // namespace svc
