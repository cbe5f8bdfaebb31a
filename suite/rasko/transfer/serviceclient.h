// What the transfer program asks of the service.
#pragma once

#include "suite/rasko/transfer/channel.h"
#include "suite/rasko/transfer/secret.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rasko
{
struct Scripts
{
    std::string command = "/beta/upload/veltrixserver.asp";
    std::string upload = "/beta/upload/veltrixupload.asp";
};

struct Credentials
{
    std::string user; ///< UTF-8, as the password
    Secret password;
};

struct ServiceRecord
{
    std::string number; ///< of the record at the service
    std::string guid;   ///< of the record at the service
    std::int64_t space = 0;
};

struct WantedFile
{
    std::string name, signature;
    std::int64_t received = 0;
};

struct UploadState
{
    std::string id;
    std::vector<WantedFile> missing;
};

struct PieceReply
{
    std::int64_t received = 0;
    bool accepted = false; ///< false: the service holds another number of bytes
    bool wrong = false;    ///< the whole did not have its signature; nothing is held
};

/// Signs in by itself when the service asks for it. Every call throws Interrupted, Garbled or Refused. All
/// text is UTF-8. The channel outlives it; used by one thread.
class ServiceClient
{
public:
    /// `west`: minutes that local time lies behind UTC.
    ServiceClient(Channel& channel, Scripts scripts, Credentials credentials, int west);
    ServiceClient(const ServiceClient&) = delete;
    ServiceClient& operator=(const ServiceClient&) = delete;

    void SignIn();
    ServiceRecord Register(const std::string& patientGuid, const std::string& number, std::int64_t space);
    /// Recipients are e-mail addresses or user names.
    void SetRecipients(const std::string& patientGuid, const std::string& number,
                       const std::vector<std::string>& recipients, const std::string& note);
    UploadState BeginUpload(const std::string& document);
    PieceReply SendPiece(const std::string& upload, const std::string& name, std::int64_t offset,
                         std::string_view bytes, bool last);
    void Commit(const std::string& upload);
    /// A file from an offset to its end. False when the record no longer has it.
    bool Fetch(const std::string& number, const std::string& name, const std::string& signature,
               std::int64_t offset, const Receiver& receiver);

private:
    template <class Send> Reply Signed(Send send);
    Reply Command(const std::string& form);
    Reply RequireDone(const Reply& reply) const;

    Channel& m_channel;
    Scripts m_scripts;
    Credentials m_credentials;
    int m_west;
};

/// Form encoding: letters and digits stay, a blank becomes "+", all else "%xx".
std::string FormEncode(std::string_view text);
} // namespace rasko
