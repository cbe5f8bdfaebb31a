// Commands a second of the service with 50 sessions, against a static page of the same HTTP library in a
// process of its own; and the service's memory after each 10,000 of them.
//   service_bench PORT PID CA.PEM CERTIFICATE KEY     (accounts: "anna" with "first secret")
#include <httplib.h>

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace
{
constexpr int Sessions = 50, RequestsPerSession = 200; // 10,000 in all
constexpr char Script[] = "/beta/upload/veltrixserver.asp";
constexpr char Form[] = "application/x-www-form-urlencoded";

long Kilobytes(const std::string& pid)
{
    std::ifstream status("/proc/" + pid + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:"))
            return std::atol(line.c_str() + 6);
    return 0;
}

/// Requests a second; every session keeps its connection.
template <class Prepare, class Request>
double Rate(int port, const char* authority, Prepare prepare, Request request)
{
    std::vector<std::unique_ptr<httplib::SSLClient>> clients;
    for (int i = 0; i < Sessions; ++i)
    {
        clients.push_back(std::make_unique<httplib::SSLClient>("localhost", port));
        clients.back()->set_ca_cert_path(authority);
        clients.back()->set_keep_alive(true);
        clients.back()->set_tcp_nodelay(true); // head and body are two writes
        prepare(*clients.back());
    }
    std::atomic<int> failed = 0;
    std::vector<std::thread> threads;
    const auto start = std::chrono::steady_clock::now();
    for (const auto& client : clients)
        threads.emplace_back([&request, &failed, pClient = client.get()] {
            for (int i = 0; i < RequestsPerSession; ++i)
                if (const auto result = request(*pClient); !result || result->status != 200)
                    ++failed;
        });
    for (std::thread& thread : threads)
        thread.join();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    if (failed)
        std::printf("  %d requests failed\n", failed.load());
    return Sessions * RequestsPerSession / seconds.count();
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 6)
        return 2;
    const int port = std::atoi(argv[1]);
    int ready[2];
    if (pipe(ready) != 0)
        return 1;
    const pid_t page = fork();
    if (page == 0)
    {
        httplib::SSLServer server(argv[4], argv[5]);
        server.new_task_queue = [] { return new httplib::ThreadPool(Sessions + 10); };
        server.set_keep_alive_max_count(RequestsPerSession + 10);
        server.set_tcp_nodelay(true);
        server.Post(Script, [](const httplib::Request&, httplib::Response& response) {
            response.set_content("<record userGUID=\"{00000000-0000-4000-8000-000000000001}\"/>", "text/xml");
        });
        const int bound = server.bind_to_any_port("127.0.0.1");
        if (write(ready[1], &bound, sizeof bound) != sizeof bound)
            _exit(1);
        server.listen_after_bind();
        _exit(0);
    }
    int pagePort = 0;
    if (read(ready[0], &pagePort, sizeof pagePort) != sizeof pagePort)
        return 1;

    const auto nothing = [](httplib::SSLClient&) {};
    const auto signIn = [](httplib::SSLClient& client) {
        const auto reply = client.Post(Script, "cmd=login&Login=anna&password=first+secret&tz=0", Form);
        const std::string cookie = reply ? reply->get_header_value("Set-Cookie") : std::string();
        client.set_default_headers({{"Cookie", cookie.substr(0, cookie.find(';'))}});
    };
    const auto command = [](httplib::SSLClient& client) { return client.Post(Script, "cmd=getlist", Form); };
    const double ofPage = Rate(pagePort, argv[3], nothing, command);
    double ofService = 0;
    std::vector<long> memory;
    for (int round = 0; round < 4; ++round) // the first brings threads and statements into being
    {
        ofService = std::max(ofService, Rate(port, argv[3], signIn, command));
        memory.push_back(Kilobytes(argv[2]));
    }
    kill(page, SIGKILL);
    std::printf("commands a second, %d sessions: %.0f; static page: %.0f; ratio %.2f\n", Sessions, ofService,
                ofPage, ofPage / ofService);
    std::printf("memory after each %d commands, KB:", Sessions * RequestsPerSession);
    for (const long kilobytes : memory)
        std::printf(" %ld", kilobytes);
    std::printf("\n");
    return 0;
}
