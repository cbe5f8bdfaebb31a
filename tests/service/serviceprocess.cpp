#include "tests/service/serviceprocess.h"

#include "service/secrets.h"
#include "service/server.h"
#include "suite/rasko/transfer/serviceclient.h"

#include <fcntl.h>
#include <httplib.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace veltest
{
TemporaryFolder::TemporaryFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "velservice-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder");
    m_path = pattern;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string ReadBytes(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void WriteBytes(const std::filesystem::path& file, const std::string& bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string Md5(const std::string& bytes)
{
    svc::FileDigest digest(32);
    digest.Add(bytes.data(), bytes.size());
    return digest.Finish();
}

ServiceProcess::ServiceProcess()
{
    for (const std::string name : {"anna", "bert", "carl"})
        Administer("add-account --name " + name + " --email " + name + "@example.org --last L" + name,
                   "pw-" + name);
    Start();
}

ServiceProcess::~ServiceProcess()
{
    Kill();
}

std::string ServiceProcess::Administer(const std::string& arguments, const std::string& input) const
{
    const auto in = m_data.Path() / "input", out = m_data.Path() / "output";
    WriteBytes(in, input + "\n");
    const std::string command = std::string(VEL_SERVICE_PROGRAM) + " " + arguments + " --data " +
                                m_data.Path().string() + " <" + in.string() + " >" + out.string();
    if (std::system(command.c_str()) != 0) // NOLINT(cert-env33-c): words of this file only
        throw std::runtime_error("failed: " + command);
    return ReadBytes(out);
}

void ServiceProcess::Start()
{
    const auto ready = m_data.Path() / "ready";
    std::filesystem::remove(ready);
    const std::string port = std::to_string(m_port), data = m_data.Path().string();
    m_pid = fork();
    if (m_pid == 0)
    {
        dup2(open(ready.c_str(), O_CREAT | O_WRONLY, 0600), STDOUT_FILENO);
        execl(VEL_SERVICE_PROGRAM, VEL_SERVICE_PROGRAM, "serve", "--data", data.c_str(), "--port",
              port.c_str(), nullptr);
        _exit(127);
    }
    std::string line;
    for (int i = 0; i < 3000 && !line.ends_with('\n') && waitpid(m_pid, nullptr, WNOHANG) == 0; ++i)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        line = ReadBytes(ready);
    }
    if (!line.starts_with("READY port="))
        throw std::runtime_error("the service does not start");
    m_port = std::atoi(line.c_str() + 11);
}

void ServiceProcess::Kill()
{
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
}

void ServiceProcess::KillAndRestart()
{
    Kill();
    Start();
}

struct HttpsChannel::Connection
{
    httplib::SSLClient client;
    std::string cookie;

    Connection(const ServiceProcess& service) : client("localhost", service.Port())
    {
        client.set_ca_cert_path(service.Authority().c_str());
        client.enable_server_certificate_verification(true);
        client.set_keep_alive(true);
        client.set_tcp_nodelay(true); // head and body are two writes
        client.set_read_timeout(60);
    }

    rasko::Reply Take(httplib::Result& result)
    {
        if (!result)
            throw rasko::Interrupted("no reply: " + httplib::to_string(result.error()));
        const std::string set = result->get_header_value("Set-Cookie");
        if (!set.empty())
            cookie = set.substr(0, set.find(';'));
        return {result->status, result->body};
    }
};

HttpsChannel::HttpsChannel(const ServiceProcess& service)
    : m_connection(std::make_unique<Connection>(service))
{
}

HttpsChannel::~HttpsChannel() = default;

rasko::Reply HttpsChannel::Post(const std::string& target, const char* contentType, std::string_view body)
{
    if (atCall)
        atCall(true);
    auto result =
        m_connection->client.Post(target, {{"Cookie", m_connection->cookie}}, std::string(body), contentType);
    rasko::Reply reply = m_connection->Take(result);
    if (atCall)
        atCall(false);
    return reply;
}

rasko::Reply HttpsChannel::Get(const std::string& target, const rasko::Receiver& receiver)
{
    if (atCall)
        atCall(true);
    int status = 0;
    std::size_t received = 0;
    bool stopped = false;
    std::string refusal;
    auto result = m_connection->client.Get(
        target, {{"Cookie", m_connection->cookie}},
        [&](const httplib::Response& response) {
            status = response.status;
            return true;
        },
        [&](const char* data, std::size_t size) {
            if (status != 200)
            {
                refusal.append(data, size);
                return true;
            }
            if (cutAfter != 0 && received + size > cutAfter)
                size = cutAfter - received;
            received += size;
            stopped = !receiver({data, size});
            return !stopped && (cutAfter == 0 || received < cutAfter);
        });
    if (stopped)
        return {status, {}};
    rasko::Reply reply = m_connection->Take(result);
    if (status != 200)
        reply.body = refusal;
    if (atCall)
        atCall(false);
    return reply;
}

User::User(const ServiceProcess& service, const std::string& name) : m_channel(service)
{
    const rasko::Reply reply = Command("cmd=login&Login=" + name + "&password=pw%2d" + name + "&tz=0");
    if (reply.status != 200)
        throw std::runtime_error("sign-in failed: " + reply.body);
}

rasko::Reply User::Command(const std::string& form)
{
    return m_channel.Post(svc::CommandScript, "application/x-www-form-urlencoded", form);
}

rasko::Reply User::Upload(const std::string& query, const std::string& bytes)
{
    return m_channel.Post(std::string(svc::UploadScript) + query, "application/octet-stream", bytes);
}

rasko::Reply User::Get(const std::string& query)
{
    std::string body;
    rasko::Reply reply =
        m_channel.Get(std::string(svc::UploadScript) + query, [&body](std::string_view bytes) {
            body += bytes;
            return true;
        });
    reply.body += body;
    return reply;
}

std::string SampleDocument(const std::string& guid, const std::string& patientId,
                           const std::vector<SampleFile>& images)
{
    std::string document =
        "<?xml version='1.0'?><patient patientid=\"" + patientId + "\" id=\"" + guid +
        "\" last=\"M\xC3\xBCller &amp; &lt;Co&gt;\" first=\"O'Neil\" birthdate=\"1999-05-17\""
        " gender=\"M\"><note>two\nlines</note><timepoints><timepoint name=\"Initial\" tpGUID=\"{T}\""
        " date=\"03/05/2009\" file=\"" +
        patientId + "07\"><images>";
    for (const SampleFile& image : images)
        document += "<image title=\"t\" file=\"" + image.name + "\" signature=\"" + Md5(image.bytes) + "\"/>";
    return document + "</images></timepoint></timepoints></patient>";
}
} // namespace veltest
