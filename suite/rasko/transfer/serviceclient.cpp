#include "suite/rasko/transfer/serviceclient.h"

#include "suite/rasko/transfer/texts.h"
#include "suite/rasko/transfer/untrusted.h"

#include <sstream>

namespace
{
constexpr char FormType[] = "application/x-www-form-urlencoded";
constexpr char BytesType[] = "application/octet-stream";
constexpr int Done = 200, NotSignedIn = 401, NotFound = 404, OtherOffset = 409, OtherContent = 422,
              TooMany = 429;
constexpr std::size_t LongestReason = 300;

// The service's own sentence, or its status where the body is none (a proxy's page, for example).
[[noreturn]] void Refuse(const rasko::Reply& reply)
{
    const bool sentence = !reply.body.empty() && reply.body.size() <= LongestReason &&
                          reply.body.find_first_of("<\r\n") == std::string::npos;
    throw rasko::Refused(rasko::text::Fill(rasko::text::ServiceSays,
                                           sentence ? reply.body : "HTTP " + std::to_string(reply.status)));
}

std::int64_t Number(const pugi::xml_node& node, const char* name)
{
    const long long value = node.attribute(name).as_llong(-1);
    if (value < 0)
        throw rasko::Garbled(rasko::text::NotUnderstood);
    return value;
}

std::string Attribute(const pugi::xml_node& node, const char* name)
{
    std::string value = node.attribute(name).value();
    if (value.empty())
        throw rasko::Garbled(rasko::text::NotUnderstood);
    return value;
}

// Letters and digits stay, a blank becomes "+", all else "%xx".
void AppendEncoded(std::string& form, std::string_view text)
{
    static constexpr char Digits[] = "0123456789abcdef";
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))
            form += c;
        else if (c == ' ')
            form += '+';
        else
            form.append({'%', Digits[byte >> 4], Digits[byte & 15]});
    }
}

pugi::xml_document Parse(const std::string& body)
{
    pugi::xml_document document;
    if (!rasko::LoadUntrusted(body, document))
        throw rasko::Garbled(rasko::text::NotUnderstood);
    return document;
}
} // namespace

namespace rasko
{
std::string FormEncode(std::string_view text)
{
    std::string encoded;
    AppendEncoded(encoded, text);
    return encoded;
}

ServiceClient::ServiceClient(Channel& channel, Scripts scripts, Credentials credentials, int west)
    : m_channel(channel), m_scripts(std::move(scripts)), m_credentials(std::move(credentials)), m_west(west)
{
}

void ServiceClient::SignIn()
{
    std::string form;
    const WipeAtEnd wipe(form);
    form.reserve(100 + 3 * (m_credentials.user.size() + m_credentials.password.View().size()));
    form += "cmd=login&Login=";
    AppendEncoded(form, m_credentials.user);
    form += "&password=";
    AppendEncoded(form, m_credentials.password.View());
    form += "&tz=" + std::to_string(m_west);
    const Reply reply = m_channel.Post(m_scripts.command, FormType, form);
    if (reply.status == NotSignedIn)
        throw Refused(text::NotSignedIn);
    RequireDone(reply);
    if (reply.body.find("<message") == std::string::npos)
        return;
    const pugi::xml_document document = Parse(reply.body);
    for (const pugi::xml_node& message : document.child("response").children("message"))
        if (std::string_view(message.attribute("action").value()) == "stop")
            throw Refused(text::Fill(text::MustAct, message.text().get()));
}

// Sends a request, and once more after signing in when there is no session or it has ended.
template <class Send> Reply ServiceClient::Signed(Send send)
{
    Reply reply = send();
    if (reply.status == NotSignedIn)
    {
        SignIn();
        reply = send();
    }
    return reply;
}

// A service that fails or is overloaded may answer later; everything else is its answer.
Reply ServiceClient::RequireDone(const Reply& reply) const
{
    if (reply.status == Done)
        return reply;
    if (reply.status == TooMany || (reply.status >= 500 && reply.status != 507))
        throw Interrupted("HTTP " + std::to_string(reply.status));
    Refuse(reply);
}

Reply ServiceClient::Command(const std::string& form)
{
    return RequireDone(Signed([&] { return m_channel.Post(m_scripts.command, FormType, form); }));
}

ServiceRecord ServiceClient::Register(const std::string& patientGuid, const std::string& number,
                                      std::int64_t space)
{
    const pugi::xml_document document =
        Parse(Command("cmd=getrecordinfo&pid=" + FormEncode(patientGuid) + "&id=" + FormEncode(number) +
                      "&space=" + std::to_string(space))
                  .body);
    const pugi::xml_node record = document.child("record");
    const pugi::xml_node patient = record.child("patinfo");
    return {Attribute(patient, "patVeltrixID"), Attribute(patient, "frvPatGUID"), Number(record, "space")};
}

void ServiceClient::SetRecipients(const std::string& patientGuid, const std::string& number,
                                  const std::vector<std::string>& recipients, const std::string& note)
{
    pugi::xml_document document;
    pugi::xml_node info = document.append_child("referralinfo");
    for (const std::string& recipient : recipients)
    {
        pugi::xml_node node = info.append_child("recipient");
        node.append_attribute("address") = recipient.c_str();
        node.append_attribute("type") = 0;
    }
    info.append_child("note").text() = note.c_str();
    std::ostringstream text;
    document.save(text, "", pugi::format_raw | pugi::format_no_declaration);
    Command("cmd=getrecordinfoex&pid=" + FormEncode(patientGuid) + "&id=" + FormEncode(number) +
            "&referralinfo=" + FormEncode(text.str()));
}

UploadState ServiceClient::BeginUpload(const std::string& document)
{
    const pugi::xml_document reply = Parse(Command("cmd=addtoqueue&xmlData=" + FormEncode(document)).body);
    const pugi::xml_node response = reply.child("response");
    UploadState state{Attribute(response, "upload"), {}};
    for (const pugi::xml_node& file : response.children("file"))
        state.missing.push_back(
            {Attribute(file, "name"), Attribute(file, "signature"), Number(file, "received")});
    return state;
}

PieceReply ServiceClient::SendPiece(const std::string& upload, const std::string& name, std::int64_t offset,
                                    std::string_view bytes, bool last)
{
    const std::string target = m_scripts.upload + "?upload=" + FormEncode(upload) +
                               "&name=" + FormEncode(name) + "&offset=" + std::to_string(offset) +
                               (last ? "&last=1" : "");
    const Reply reply = Signed([&] { return m_channel.Post(target, BytesType, bytes); });
    if (reply.status == OtherContent)
        return {0, false, true};
    if (reply.status != OtherOffset)
        RequireDone(reply);
    return {Number(Parse(reply.body).child("file"), "received"), reply.status == Done, false};
}

void ServiceClient::Commit(const std::string& upload)
{
    const std::string target = m_scripts.upload + "?upload=" + FormEncode(upload) + "&commit=1";
    RequireDone(Signed([&] { return m_channel.Post(target, BytesType, {}); }));
}

bool ServiceClient::Fetch(const std::string& number, const std::string& name, const std::string& signature,
                          std::int64_t offset, const Receiver& receiver)
{
    const std::string target = m_scripts.upload + "?id=" + FormEncode(number) + "&name=" + FormEncode(name) +
                               "&signature=" + FormEncode(signature) + "&offset=" + std::to_string(offset);
    const Reply reply = Signed([&] { return m_channel.Get(target, receiver); });
    if (reply.status == NotFound)
        return false;
    RequireDone(reply);
    return true;
}
} // namespace rasko
