// The service as a real process, and a client of it over TLS.
#pragma once

#include "suite/rasko/transfer/channel.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace veltest
{
/// A folder of its own, removed at the end.
class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const std::filesystem::path& Path() const
    {
        return m_path;
    }

private:
    std::filesystem::path m_path;
};

std::string ReadBytes(const std::filesystem::path& file);
void WriteBytes(const std::filesystem::path& file, const std::string& bytes);
std::string Md5(const std::string& bytes);

/// Owns the process; killed by the destructor. Accounts "anna", "bert" and "carl" with passwords "pw-anna"
/// and so on.
class ServiceProcess
{
public:
    ServiceProcess();
    ~ServiceProcess();
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    /// SIGKILL, and a new process on the same data and port.
    void KillAndRestart();
    int Port() const
    {
        return m_port;
    }
    std::string Authority() const
    {
        return (m_data.Path() / "ca.pem").string();
    }
    std::filesystem::path Files() const
    {
        return m_data.Path() / "files";
    }
    /// Runs one of the administrator's commands; its output. The exit code has to be 0.
    std::string Administer(const std::string& arguments, const std::string& input = {}) const;

private:
    void Start();
    void Kill();

    TemporaryFolder m_data;
    int m_port = 0;
    pid_t m_pid = -1;
};

/// A user's way to the service, with its cookie.
class HttpsChannel : public rasko::Channel
{
public:
    explicit HttpsChannel(const ServiceProcess& service);
    ~HttpsChannel() override;

    rasko::Reply Post(const std::string& target, const char* contentType, std::string_view body) override;
    rasko::Reply Get(const std::string& target, const rasko::Receiver& receiver) override;

    /// Called before (true) and after every request; may throw Interrupted, or end the process.
    std::function<void(bool before)> atCall;
    /// Every reply body that is received in pieces is cut after so many bytes; 0: never.
    std::size_t cutAfter = 0;

private:
    struct Connection;
    std::unique_ptr<Connection> m_connection;
};

/// A signed-in user's commands and uploads.
class User
{
public:
    User(const ServiceProcess& service, const std::string& name);

    rasko::Reply Command(const std::string& form);
    rasko::Reply Upload(const std::string& query, const std::string& bytes);
    rasko::Reply Get(const std::string& query);

private:
    HttpsChannel m_channel;
};

/// One file of a record, with its content.
struct SampleFile
{
    std::string name, bytes;
};
/// A shared patient record: the images are in one timepoint.
std::string SampleDocument(const std::string& guid, const std::string& patientId,
                           const std::vector<SampleFile>& images);
} // namespace veltest
