#include "service/server.h"

#include "service/diskfile.h"
#include "service/failure.h"

#include <httplib.h>

#include <iostream>
#include <optional>
#include <vector>

namespace
{
using svc::Failure;

constexpr char CookieName[] = "velsession";
constexpr std::size_t LargestCommand = 64U << 20; // a document of 16 MB, every byte escaped
constexpr std::size_t LargestUnknown = 64U << 10; // of who is not signed in
constexpr std::size_t LargestPiece = 8U << 20;
constexpr std::size_t ReadBlock = 256U << 10;
constexpr int IdleSeconds = 30, KeepAliveSeconds = 15, RequestsPerConnection = 10000, Backlog = 256;

std::string SessionToken(const httplib::Request& request)
{
    const std::string cookies = request.get_header_value("Cookie");
    for (std::size_t at = 0; at < cookies.size();)
    {
        const std::size_t end = std::min(cookies.find(';', at), cookies.size());
        const std::size_t start = cookies.find_first_not_of(' ', at);
        const std::string_view cookie =
            start < end ? std::string_view(cookies).substr(start, end - start) : std::string_view();
        const std::size_t equals = cookie.find('=');
        if (equals != std::string_view::npos && cookie.substr(0, equals) == CookieName)
            return std::string(cookie.substr(equals + 1));
        at = end + 1;
    }
    return {};
}

// The whole body. It is read even where it is of no use, for the connection to go on; `known` false (nobody
// is signed in): what is more than signing in takes is dropped, and Failure 401.
std::string ReadBody(const httplib::Request& request, const httplib::ContentReader& reader,
                     std::size_t largest, bool known)
{
    std::string body;
    const auto announced = request.get_header_value<std::uint64_t>("Content-Length");
    if (announced > largest)
        throw Failure(413, "The request is too large.");
    if (announced == 0 && !request.has_header("Transfer-Encoding"))
        return body;
    const std::size_t kept = known ? largest : LargestUnknown;
    body.reserve(std::min<std::size_t>(announced, kept));
    std::size_t total = 0;
    const bool complete = reader([&](const char* data, std::size_t size) {
        total += size;
        if (total > largest)
            return false;
        if (total <= kept)
            body.append(data, size);
        return true;
    });
    if (!complete)
        throw Failure(total > largest ? 413 : 400, "The request did not arrive in full.");
    if (total > kept)
        throw Failure(401, "Not signed in.");
    return body;
}

std::int64_t RequireNumber(const httplib::Request& request, const char* key)
{
    const auto number = svc::ParseNumber(request.get_param_value(key));
    if (!number)
        throw Failure(400, std::string("The parameter \"") + key + "\" is no number.");
    return *number;
}

void Refuse(httplib::Response& response, int status, const std::string& sentence)
{
    response.status = status;
    response.set_content(sentence, "text/plain; charset=utf-8");
    if (status == 413)
        response.set_header("Connection", "close");
}

// Runs what answers a request; a failure becomes the reply, and only what is no fault of the client is
// logged.
template <class Action> void Answer(httplib::Response& response, Action action)
{
    try
    {
        action();
    }
    catch (const Failure& failure)
    {
        Refuse(response, failure.status, failure.what());
    }
    catch (const std::exception& error)
    {
        std::cerr << "error: " << error.what() << std::endl;
        Refuse(response, 500, "The service has failed; nothing was changed.");
    }
}

void SetXml(httplib::Response& response, const std::string& body)
{
    response.status = 200;
    response.set_content(body, body.empty() ? "text/plain; charset=utf-8" : "text/xml; charset=utf-8");
}
} // namespace

namespace svc
{
struct Server::Implementation
{
    Accounts& accounts;
    Records& records;
    Commands commands;
    httplib::SSLServer http;
    socket_t listening = INVALID_SOCKET;

    Implementation(Accounts& theAccounts, Records& theRecords, const CertificateFiles& certificate)
        : accounts(theAccounts), records(theRecords), commands(theAccounts, theRecords),
          http(certificate.certificate.c_str(), certificate.key.c_str())
    {
        if (!http.is_valid())
            throw std::runtime_error("The certificate cannot be used.");
        http.new_task_queue = [] { return new httplib::ThreadPool(MostConnections); };
        http.set_read_timeout(IdleSeconds);
        http.set_write_timeout(IdleSeconds);
        http.set_keep_alive_timeout(KeepAliveSeconds);
        http.set_keep_alive_max_count(RequestsPerConnection);
        http.set_payload_max_length(LargestCommand);
        http.set_tcp_nodelay(true);
        http.set_socket_options([this](socket_t socket) {
            const int yes = 1;
            setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
            listening = socket;
        });
        http.set_default_headers({{"Cache-Control", "no-store"}, {"X-Content-Type-Options", "nosniff"}});
        // Pieces are asked for by offset; ranges of the library's own would go past that.
        http.set_pre_routing_handler([](const httplib::Request& request, httplib::Response& response) {
            if (request.ranges.empty())
                return httplib::Server::HandlerResponse::Unhandled;
            Refuse(response, 416, "Ranges are not understood.");
            return httplib::Server::HandlerResponse::Handled;
        });
        http.Post("/beta/upload/veltrixserver\\.asp",
                  [this](const httplib::Request& request, httplib::Response& response,
                         const httplib::ContentReader& reader) {
                      Answer(response, [&] { RunCommand(request, response, reader); });
                  });
        http.Post("/beta/upload/veltrixupload\\.asp",
                  [this](const httplib::Request& request, httplib::Response& response,
                         const httplib::ContentReader& reader) {
                      Answer(response, [&] { TakePiece(request, response, reader); });
                  });
        http.Get("/beta/upload/veltrixupload\\.asp",
                 [this](const httplib::Request& request, httplib::Response& response) {
                     Answer(response, [&] { GiveFile(request, response); });
                 });
        http.set_error_handler([](const httplib::Request&, httplib::Response& response) {
            if (response.body.empty())
                response.set_content("The request cannot be answered.", "text/plain; charset=utf-8");
        });
    }

    std::optional<Session> FindSession(const std::string& token)
    {
        try
        {
            return accounts.Find(token);
        }
        catch (const Failure&)
        {
            return std::nullopt;
        }
    }

    void RunCommand(const httplib::Request& request, httplib::Response& response,
                    const httplib::ContentReader& reader)
    {
        const std::string token = SessionToken(request);
        const bool known = FindSession(token).has_value(); // signing in is the one command that needs none
        const auto form = ParseForm(ReadBody(request, reader, LargestCommand, known));
        if (!form)
            throw Failure(400, "The request is no form.");
        const CommandReply reply = commands.Run(*form, token);
        if (!reply.newSession.empty())
            response.set_header("Set-Cookie", std::string(CookieName) + "=" + reply.newSession +
                                                  "; Path=/; Secure; HttpOnly; SameSite=Strict");
        if (reply.endSession)
            response.set_header("Set-Cookie",
                                std::string(CookieName) + "=; Path=/; Secure; HttpOnly; Max-Age=0");
        SetXml(response, reply.body);
    }

    void TakePiece(const httplib::Request& request, httplib::Response& response,
                   const httplib::ContentReader& reader)
    {
        const std::optional<Session> known = FindSession(SessionToken(request));
        std::string body = ReadBody(request, reader, LargestPiece, known.has_value());
        if (!known)
            throw Failure(401, "Not signed in.");
        const Session& session = *known;
        const std::int64_t upload = RequireNumber(request, "upload");
        if (request.has_param("commit"))
        {
            records.Commit(session.account, upload);
            SetXml(response, {});
            return;
        }
        const std::string name = request.get_param_value("name");
        const PieceResult result =
            records.AddPiece(session.account, upload, name, RequireNumber(request, "offset"), std::move(body),
                             request.get_param_value("last") == "1");
        pugi::xml_document document;
        pugi::xml_node file = document.append_child("file");
        file.append_attribute("name") = name.c_str();
        file.append_attribute("received") = static_cast<long long>(result.received);
        SetXml(response, ToText(document));
        if (!result.accepted)
            response.status = 409;
    }

    void GiveFile(const httplib::Request& request, httplib::Response& response)
    {
        const Session session = accounts.Find(SessionToken(request));
        if (request.has_param("upload"))
        {
            SetXml(response,
                   DescribeUpload(records.FindUpload(session.account, RequireNumber(request, "upload"))));
            return;
        }
        const Records::Content content =
            records.Find(session.account, RequireNumber(request, "id"), request.get_param_value("name"),
                         request.get_param_value("signature"));
        const std::int64_t offset = request.has_param("offset") ? RequireNumber(request, "offset") : 0;
        if (offset > content.size)
            throw Failure(416, "The file ends before that.");
        response.status = 200;
        if (offset == content.size)
        {
            response.set_content("", "application/octet-stream");
            return;
        }
        struct State
        {
            explicit State(const std::string& path) : file(path, DiskFile::Mode::Read)
            {
            }
            DiskFile file;
            std::vector<char> buffer = std::vector<char>(ReadBlock);
        };
        // Opened now: the reply goes on even when a newer record takes the file's place meanwhile.
        const auto state = std::make_shared<State>(content.path);
        response.set_content_provider(
            static_cast<std::size_t>(content.size - offset), "application/octet-stream",
            [state, offset](std::size_t at, std::size_t length, httplib::DataSink& sink) {
                const std::size_t count =
                    state->file.ReadAt(offset + static_cast<std::int64_t>(at), state->buffer.data(),
                                       std::min(length, state->buffer.size()));
                return count > 0 && sink.write(state->buffer.data(), count);
            });
    }
};

Server::Server(Accounts& accounts, Records& records, const CertificateFiles& certificate)
    : m_implementation(std::make_unique<Implementation>(accounts, records, certificate))
{
}

Server::~Server() = default;

int Server::Bind(const std::string& address, int port)
{
    httplib::SSLServer& http = m_implementation->http;
    if (port == 0)
        port = http.bind_to_any_port(address);
    else if (!http.bind_to_port(address, port))
        port = -1;
    if (port < 0)
        throw std::runtime_error("cannot listen on " + address);
    // The library listens with a backlog that a burst of connections overflows.
    ::listen(m_implementation->listening, Backlog);
    return port;
}

void Server::Run()
{
    m_implementation->http.listen_after_bind();
}

void Server::Stop()
{
    // Unlike the library's own stop, this is not lost when the service does not accept connections yet.
    ::shutdown(m_implementation->listening, SHUT_RDWR);
}
} // namespace svc
