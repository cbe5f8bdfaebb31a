// The service's program: serves, and lets its administrator set accounts and messages.
#include "service/accounts.h"
#include "service/failure.h"
#include "service/records.h"
#include "service/server.h"
#include "service/text.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <limits>
#include <map>
#include <set>
#include <thread>
#include <vector>

namespace
{
constexpr char Usage[] = R"(velservice COMMAND [--data FOLDER] [option...]

  serve            [--port N] [--bind ADDRESS] [--name HOST]...
                   port 0 takes a free one; says "READY port=N pid=N ca=FILE" when it listens
  add-account      --name NAME --email ADDRESS [--first NAME] [--last NAME] [--quota MEGABYTES]
  set-password     --name NAME
                   both read the password from standard input
  remove-account   --name NAME
  accounts         lists them
  add-message      --text TEXT [--stop] [--link ADDRESS] [--linkname TEXT] [--name ACCOUNT]
  messages         lists them
  withdraw-message --id N
)";
constexpr int DefaultPort = 8443;
constexpr std::int64_t DefaultQuotaMegabytes = 50LL * 1024;
constexpr std::int64_t MostQuotaMegabytes = 1024LL * 1024 * 1024;

struct UsageError
{
    std::string text;
};

class Options
{
public:
    Options(int argc, char** argv)
    {
        static const std::set<std::string> Known = {"data", "port",  "bind", "name", "email",    "first",
                                                    "last", "quota", "text", "link", "linkname", "id"};
        for (int i = 2; i < argc; ++i)
        {
            const std::string word = argv[i];
            if (word == "--stop")
                m_stop = true;
            else if (word.starts_with("--") && Known.contains(word.substr(2)) && i + 1 < argc)
                m_values.emplace(word.substr(2), argv[++i]);
            else
                throw UsageError{"\"" + word + "\" is not understood or lacks its value."};
        }
    }

    std::string Get(const std::string& key, const std::string& fallback = {}) const
    {
        const auto found = m_values.find(key);
        return found == m_values.end() ? fallback : found->second;
    }
    std::vector<std::string> All(const std::string& key) const
    {
        std::vector<std::string> values;
        const auto [first, last] = m_values.equal_range(key);
        for (auto value = first; value != last; ++value)
            values.push_back(value->second);
        return values;
    }
    std::int64_t Number(const std::string& key, std::int64_t fallback,
                        std::int64_t most = std::numeric_limits<std::int64_t>::max()) const
    {
        const auto number = svc::ParseNumber(Get(key, std::to_string(fallback)));
        if (!number || *number > most)
            throw UsageError{"--" + key + " needs a number" +
                             (number ? " up to " + std::to_string(most) + "." : ".")};
        return *number;
    }
    std::string Required(const std::string& key) const
    {
        std::string value = Get(key);
        if (value.empty())
            throw UsageError{"--" + key + " is missing."};
        return value;
    }
    bool Stop() const
    {
        return m_stop;
    }

private:
    std::multimap<std::string, std::string> m_values;
    bool m_stop = false;
};

std::string ReadPassword()
{
    std::string password;
    if (isatty(STDIN_FILENO))
        std::cerr << "Password (shown as you type): ";
    std::getline(std::cin, password);
    return password;
}

// Ends the server cleanly on SIGTERM and SIGINT, which every thread leaves to this one.
class StopOnSignal
{
public:
    explicit StopOnSignal(svc::Server& server)
    {
        m_thread = std::thread([this, &server] {
            int signal = 0;
            sigwait(&m_signals, &signal);
            server.Stop();
        });
    }
    static sigset_t Block()
    {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGTERM);
        sigaddset(&signals, SIGINT);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        return signals;
    }
    ~StopOnSignal()
    {
        // It waits for the signal, which ends nothing by itself.
        pthread_kill(m_thread.native_handle(), SIGTERM); // NOLINT(bugprone-bad-signal-to-kill-thread)
        m_thread.join();
    }
    StopOnSignal(const StopOnSignal&) = delete;
    StopOnSignal& operator=(const StopOnSignal&) = delete;

private:
    sigset_t m_signals = Block();
    std::thread m_thread;
};

void Serve(const std::string& data, const Options& options, svc::Database& database, svc::Accounts& accounts)
{
    std::vector<std::string> names = options.All("name");
    if (names.empty())
        names.emplace_back("localhost");
    const svc::CertificateFiles certificate = svc::EnsureCertificates(data, names);
    svc::Records records(database, data + "/files");
    StopOnSignal::Block();
    signal(SIGPIPE, SIG_IGN);
    svc::Server server(accounts, records, certificate);
    const int port = server.Bind(options.Get("bind", "127.0.0.1"),
                                 static_cast<int>(options.Number("port", DefaultPort, 65535)));
    const StopOnSignal stop(server);
    std::cout << "READY port=" << port << " pid=" << getpid() << " ca=" << certificate.authority << std::endl;
    server.Run();
}

int Run(const std::string& command, const Options& options)
{
    umask(077);
    const std::string data = std::filesystem::absolute(options.Get("data", "service-data")).string();
    std::filesystem::create_directories(data);
    svc::Database database(data + "/service.db");
    svc::Accounts accounts(database);
    if (command == "serve")
        Serve(data, options, database, accounts);
    else if (command == "add-account")
    {
        svc::Account account;
        account.name = options.Required("name");
        account.email = options.Required("email");
        account.first = options.Get("first");
        account.last = options.Get("last", account.name);
        account.quota = options.Number("quota", DefaultQuotaMegabytes, MostQuotaMegabytes) << 20;
        accounts.Add(account, ReadPassword());
    }
    else if (command == "set-password")
        accounts.SetPassword(options.Required("name"), ReadPassword());
    else if (command == "remove-account")
        accounts.Remove(options.Required("name"));
    else if (command == "accounts")
        for (const svc::Account& account : accounts.List())
            std::cout << account.name << "\t" << account.email << "\t" << account.last << ", "
                      << account.first << "\t" << (account.quota >> 20) << " MB\n";
    else if (command == "add-message")
        accounts.AddMessage({0, options.Get("name"), options.Required("text"), options.Get("link"),
                             options.Get("linkname"), options.Stop() ? "stop" : "continue"});
    else if (command == "messages")
        for (const svc::Message& message : accounts.Messages())
            std::cout << message.id << "\t" << (message.account.empty() ? "(all)" : message.account) << "\t"
                      << message.action << "\t" << message.text << "\n";
    else if (command == "withdraw-message")
    {
        if (!accounts.WithdrawMessage(options.Number("id", 0)))
            throw svc::Failure(404, "There is no such message.");
    }
    else
        throw UsageError{command.empty() ? "A command is missing." : "\"" + command + "\" is no command."};
    return 0;
}
} // namespace

int main(int argc, char** argv)
{
    try
    {
        const std::string command = argc > 1 ? argv[1] : "";
        if (command == "--help" || command == "-h" || command == "help")
        {
            std::cout << Usage;
            return 0;
        }
        return Run(command, Options(argc, argv));
    }
    catch (const UsageError& error)
    {
        std::cerr << error.text << "\n" << Usage;
        return 2;
    }
    catch (const std::exception& error)
    {
        std::cerr << "error: " << error.what() << std::endl;
        return 1;
    }
}
