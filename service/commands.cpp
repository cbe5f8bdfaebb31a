#include "service/commands.h"

#include "service/failure.h"

#include <pugixml.hpp>

namespace
{
using svc::Failure;
using svc::Field;
using svc::Form;
using svc::Session;

std::int64_t RequireNumber(const Form& form, const std::string& key)
{
    const auto number = svc::ParseNumber(Field(form, key));
    if (!number)
        throw Failure(404, "There is no such record.");
    return *number;
}

void AddLine(pugi::xml_node parent, const svc::RecordLine& line, int west)
{
    pugi::xml_node info = parent.append_child("patinfo");
    const auto set = [&info](const char* name, const std::string& value) {
        info.append_attribute(name) = value.c_str();
    };
    set("patGUID", line.patientGuid);
    set("patlastName", line.last);
    set("patfirstName", line.first);
    set("patVeltrixID", std::to_string(line.id));
    set("patID", line.patientID);
    set("patOwnerLast", line.owner.last);
    set("patOwnerFirst", line.owner.first);
    set("patOwnerGUID", line.owner.guid);
    set("frvPatGUID", line.serviceGuid);
    set("lastUpdate", line.updated ? svc::FormatTime(line.updated, west) : "");
    set("LastShared", line.shared ? svc::FormatTime(line.shared, west) : "");
}

void AddRecipient(pugi::xml_node parent, const svc::Recipient& recipient)
{
    pugi::xml_node node = parent.append_child("recipient");
    node.append_attribute("id") = recipient.guid.c_str();
    node.append_attribute("name") = recipient.name.c_str();
    node.append_attribute("address") = recipient.email.c_str();
    node.append_attribute("type") = 0;
}

std::string ListDocument(const Session& session, const std::vector<svc::RecordLine>& lines)
{
    pugi::xml_document document;
    pugi::xml_node record = document.append_child("record");
    record.append_attribute("userGUID") = session.account.guid.c_str();
    for (const svc::RecordLine& line : lines)
        AddLine(record, line, session.west);
    return svc::ToText(document);
}

svc::Account RequireRecipient(svc::Accounts& accounts, const std::string& nameOrEmail, std::int64_t type)
{
    const auto account = accounts.FindAccount(nameOrEmail, type != 2, type != 1);
    if (!account)
        throw Failure(404, "Nobody at the service is called \"" + nameOrEmail.substr(0, 100) + "\".");
    return *account;
}
} // namespace

namespace svc
{
CommandReply Commands::Run(const Form& received, const std::string& token)
{
    Form form = received;
    for (auto& [key, value] : form)
    {
        // The suite's dialogs send what the user types as the user's computer has it.
        const bool typed = key == "Login" || key == "password" || key == "emailorusername";
        if (typed && !IsCleanText(value))
            value = FromCodePage1252(value);
        if (!IsCleanText(value))
            throw Failure(400, "A field is not valid text.");
    }
    const std::string command = Field(form, "cmd");
    if (command == "login")
        return SignIn(form);

    const Session session = m_accounts.Find(token);
    if (command == "logout")
    {
        m_accounts.SignOut(session.token);
        return {{}, {}, true};
    }
    if (command == "displaymessage")
        return {m_accounts.MessageDocument(session.account), {}, false};

    using Handler = std::string (Commands::*)(const Session&, const Form&);
    static const std::map<std::string, Handler> Handlers = {
        {"getlist", &Commands::List},
        {"getdownloadable", &Commands::List},
        {"updatedpatients", &Commands::Updated},
        {"getdownloadpatient", &Commands::DownloadPatient},
        {"addtoqueue", &Commands::AddToQueue},
        {"getrecordinfo", &Commands::RecordInfo},
        {"getrecordinfoex", &Commands::RecordInfoEx},
        {"getadhocshareinfo", &Commands::AdhocShare},
        {"stopsharingwith", &Commands::StopSharing},
        {"deletefromfrv", &Commands::DeleteRecord},
    };
    const auto handler = Handlers.find(command);
    if (handler == Handlers.end())
        throw Failure(404, "There is no such command.");
    return {(this->*handler->second)(session, form), {}, false};
}

CommandReply Commands::SignIn(const Form& form)
{
    std::string offset = Field(form, "tz");
    const bool east = !offset.empty() && offset.front() == '-';
    const auto minutes = ParseNumber(east ? offset.substr(1) : offset);
    if (!minutes)
        throw Failure(400, "The time-zone offset is missing.");
    CommandReply reply;
    const std::string user = Field(form, "Login");
    reply.newSession =
        m_accounts.SignIn(user, Field(form, "password"), NormalizeOffset(east ? -*minutes : *minutes));
    reply.body = m_accounts.MessageDocument(m_accounts.Find(reply.newSession).account);
    return reply;
}

std::string Commands::List(const Session& session, const Form& form)
{
    const bool own = Field(form, "cmd") == "getlist";
    return ListDocument(
        session, m_records.List(session.account, own ? Records::Which::Own : Records::Which::OwnAndShared));
}

std::string Commands::Updated(const Session& session, const Form& form)
{
    const auto since = ParseTime(Field(form, "lastQueryTime"), session.west);
    if (!since)
        throw Failure(400, "The time of the last query is no time.");
    return ListDocument(session, m_records.List(session.account, Records::Which::OwnAndShared, *since));
}

std::string Commands::DownloadPatient(const Session& session, const Form& form)
{
    return m_records.Download(session.account, RequireNumber(form, "PatientID"));
}

std::string Commands::AddToQueue(const Session& session, const Form& form)
{
    return DescribeUpload(m_records.BeginUpload(session.account, Field(form, "xmlData")));
}

std::string Commands::DescribeRecord(const Session& session, const RecordLine& line)
{
    pugi::xml_document document;
    pugi::xml_node record = document.append_child("record");
    record.append_attribute("userGUID") = session.account.guid.c_str();
    record.append_attribute("space") = static_cast<long long>(m_records.FreeBytes(session.account));
    AddLine(record, line, session.west);
    for (const Recipient& recipient : m_records.Recipients(line.id))
        AddRecipient(record, recipient);
    return ToText(document);
}

std::string Commands::RecordInfo(const Session& session, const Form& form)
{
    const auto space = ParseNumber(Field(form, "space"));
    if (!space)
        throw Failure(400, "The space wanted is no number.");
    if (*space > m_records.FreeBytes(session.account))
        throw Failure(507, "There is no room for the record at the service.");
    return DescribeRecord(session,
                          m_records.Register(session.account, Field(form, "pid"), Field(form, "id")));
}

std::string Commands::RecordInfoEx(const Session& session, const Form& form)
{
    pugi::xml_document document;
    const std::string text = Field(form, "referralinfo");
    if (!text.empty())
        ParseUntrusted(text, document);
    const pugi::xml_node info = document.child("referralinfo");
    // Everyone is known before anything is changed.
    std::vector<Account> recipients;
    for (const pugi::xml_node& node : info.children("recipient"))
        recipients.push_back(
            RequireRecipient(m_accounts, node.attribute("address").value(), node.attribute("type").as_int()));
    const std::string note = info.child("note").text().get();
    if (note.size() > (64U << 10))
        throw Failure(413, "The note is too long.");

    const RecordLine line = m_records.Register(session.account, Field(form, "pid"), Field(form, "id"));
    m_records.SetNote(line.id, note);
    for (const Account& recipient : recipients)
        if (recipient.id != session.account.id)
            m_records.Share(line.id, session.account, recipient);
    return DescribeRecord(session, line);
}

std::string Commands::AdhocShare(const Session& session, const Form& form)
{
    const auto type = ParseNumber(Field(form, "recipienttype"));
    if (!type || *type > 2)
        throw Failure(400, "The recipient's type is none of 0, 1 and 2.");
    const Account recipient = RequireRecipient(m_accounts, Field(form, "emailorusername"), *type);
    const RecordLine line = m_records.Register(session.account, Field(form, "pid"), Field(form, "id"));
    m_records.Share(line.id, session.account, recipient);
    pugi::xml_document document;
    AddRecipient(document, {recipient.guid, recipient.name, recipient.email});
    return ToText(document);
}

std::string Commands::StopSharing(const Session& session, const Form& form)
{
    m_records.StopSharing(session.account, RequireNumber(form, "id"), Field(form, "recipientid"));
    return {};
}

std::string Commands::DeleteRecord(const Session& session, const Form& form)
{
    m_records.Delete(session.account, Field(form, "pid"), RequireNumber(form, "id"));
    return {};
}

std::string DescribeUpload(const Upload& upload)
{
    pugi::xml_document document;
    pugi::xml_node response = document.append_child("response");
    response.append_attribute("patVeltrixID") = std::to_string(upload.record).c_str();
    response.append_attribute("frvPatGUID") = upload.serviceGuid.c_str();
    response.append_attribute("upload") = static_cast<long long>(upload.id);
    for (const MissingFile& missing : upload.missing)
    {
        pugi::xml_node file = response.append_child("file");
        file.append_attribute("name") = missing.name.c_str();
        file.append_attribute("signature") = missing.signature.c_str();
        file.append_attribute("received") = static_cast<long long>(missing.received);
    }
    return ToText(document);
}
} // namespace svc
