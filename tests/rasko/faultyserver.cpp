// Servers that do what a service should not, beside a test:
//   tools/with-service SERVICE faulty_server command [argument...]
// runs the command and finds the service's certificate in VEL_SERVICE_DATA. The command finds the ports:
//   VEL_FAULTY_TLS      over TLS; the request's path says what is done with it (see Misbehave)
//   VEL_FAULTY_EXPIRED  the same, with a certificate that has ended
//   VEL_FAULTY_PLAIN    answers in plain text
//   VEL_FAULTY_DEAD     takes connections and says nothing
#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

namespace
{
constexpr char Html[] = "HTTP/1.1 200 OK\r\nContent-Length: 24\r\n\r\n<html><p>Welcome!</html>";

void Send(SSL* tls, const std::string& bytes)
{
    SSL_write(tls, bytes.data(), static_cast<int>(bytes.size()));
}

void Misbehave(SSL* tls, const std::string& request)
{
    const auto asked = [&request](const char* path) { return request.find(path) != std::string::npos; };
    if (asked("/html"))
        Send(tls, Html);
    else if (asked("/redirect"))
        Send(tls, "HTTP/1.1 302 Moved\r\nLocation: /html\r\nContent-Length: 5\r\n\r\nmoved");
    else if (asked("/cut"))
        Send(tls, "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf of it");
    else if (asked("/drip"))
    {
        Send(tls, "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
        for (int i = 0; i < 100; ++i, usleep(50'000))
            Send(tls, "x");
    }
    else if (asked("/silent"))
        sleep(60);
} // and "/drop": closed without a word

/// Serves on a thread for as long as the process lives; tells the port in a variable.
void Listen(const char* variable, const std::function<void(int)>& serve)
{
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 16) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        std::exit(1);
    setenv(variable, std::to_string(ntohs(address.sin_port)).c_str(), 1);
    std::thread([listener, serve] {
        for (;;)
        {
            const int client = accept(listener, nullptr, nullptr);
            std::thread([client, serve] {
                serve(client);
                close(client);
            }).detach();
        }
    }).detach();
}

std::function<void(int)> OverTls(SSL_CTX* context)
{
    return [context](int client) {
        SSL* tls = SSL_new(context);
        SSL_set_fd(tls, client);
        char request[4096];
        if (SSL_accept(tls) == 1)
            if (const int size = SSL_read(tls, request, sizeof request); size > 0)
                Misbehave(tls, {request, static_cast<std::size_t>(size)});
        SSL_free(tls);
    };
}

SSL_CTX* NewContext(const std::string& data, bool expired)
{
    SSL_CTX* context = SSL_CTX_new(TLS_server_method());
    FILE* file = std::fopen((data + "/server.pem").c_str(), "r");
    X509* certificate = PEM_read_X509(file, nullptr, nullptr, nullptr);
    std::fclose(file);
    if (expired)
    {
        file = std::fopen((data + "/ca.key").c_str(), "r");
        X509_gmtime_adj(X509_getm_notAfter(certificate), -3600);
        X509_sign(certificate, PEM_read_PrivateKey(file, nullptr, nullptr, nullptr), EVP_sha256());
        std::fclose(file);
    }
    if (SSL_CTX_use_certificate(context, certificate) != 1 ||
        SSL_CTX_use_PrivateKey_file(context, (data + "/server.key").c_str(), SSL_FILETYPE_PEM) != 1)
        std::exit(1);
    return context;
}
} // namespace

int main(int, char** argv)
{
    const char* data = std::getenv("VEL_SERVICE_DATA");
    if (!data || !argv[1])
        return 2;
    signal(SIGPIPE, SIG_IGN);
    Listen("VEL_FAULTY_TLS", OverTls(NewContext(data, false)));
    Listen("VEL_FAULTY_EXPIRED", OverTls(NewContext(data, true)));
    Listen("VEL_FAULTY_PLAIN", [](int client) { (void)!write(client, Html, sizeof Html - 1); });
    Listen("VEL_FAULTY_DEAD", [](int) { sleep(60); });
    const pid_t child = fork();
    if (child == 0)
    {
        execv(argv[1], argv + 1);
        _exit(127);
    }
    int state = 0;
    waitpid(child, &state, 0);
    _exit(WIFEXITED(state) ? WEXITSTATUS(state) : 1); // the threads are left as they are
}
