#include "benchmarks/network/tls_service.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <openssl/ec.h>
#include <openssl/rsa.h>
#include <openssl/ssl.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>

namespace bench {

namespace {

/// Answers a login, a group list and a read alike.
std::string makeReply()
{
    const std::string body = R"({"errorcode":0,"value":5,"token":"t","Number":0,"groups":[]})";
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

/// A context with a key and a certificate of its own.
SSL_CTX* makeContext(const TlsKind& kind)
{
    SSL_CTX* context = SSL_CTX_new(TLS_server_method());
    const int version = kind.is_tls_1_2 ? TLS1_2_VERSION : TLS1_3_VERSION;
    SSL_CTX_set_min_proto_version(context, version);
    SSL_CTX_set_max_proto_version(context, version);
    EVP_PKEY* key = kind.is_p256 ? EVP_EC_gen("P-256") : EVP_RSA_gen(2048);
    X509* certificate = X509_new();
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 24L * 3600);
    X509_set_pubkey(certificate, key);
    X509_NAME* name = X509_get_subject_name(certificate);
    const unsigned char common_name[] = "service";
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, common_name, -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    X509_sign(certificate, key, EVP_sha256());
    SSL_CTX_use_certificate(context, certificate);
    SSL_CTX_use_PrivateKey(context, key);
    return context;
}

bool isWhole(const std::string& request)
{
    const std::size_t head = request.find("\r\n\r\n");
    if (head == std::string::npos)
        return false;
    const std::size_t length = request.find("ontent-Length: ");
    if (length == std::string::npos)
        return true;
    return request.size() >= head + 4 + std::size_t(std::atoi(request.c_str() + length + 15));
}

void serve(SSL_CTX* context, int descriptor)
{
    // As every well-made service does: the reply is written at once.
    const int on = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    SSL* ssl = SSL_new(context);
    SSL_set_fd(ssl, descriptor);
    if (SSL_accept(ssl) == 1) {
        std::string request;
        char bytes[8192];
        int size = 0;
        while (!isWhole(request) && (size = SSL_read(ssl, bytes, sizeof bytes)) > 0)
            request.append(bytes, std::size_t(size));
        const std::string reply = makeReply();
        SSL_write(ssl, reply.data(), int(reply.size()));
        SSL_shutdown(ssl);
    }
    SSL_free(ssl);
    close(descriptor);
}

int listenAnywhere(int* port)
{
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        listen(listener, 100) != 0)
        return -1;
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    *port = ntohs(address.sin_port);
    return listener;
}

[[noreturn]] void run(const TlsKind& kind, bool is_apart, int report)
{
    // Ends with the benchmark, however that ends.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    signal(SIGPIPE, SIG_IGN);
    if (is_apart && unshare(CLONE_NEWNET) != 0)
        _exit(1);
    SSL_CTX* context = makeContext(kind);
    int port = 0;
    const int listener = listenAnywhere(&port);
    if (listener < 0 || write(report, &port, sizeof port) != sizeof port)
        _exit(1);
    for (;;) {
        const int descriptor = accept(listener, nullptr, nullptr);
        if (descriptor >= 0)
            std::thread(serve, context, descriptor).detach();
    }
}

} // namespace

std::string TlsKind::name() const
{
    return std::string(is_tls_1_2 ? "TLS 1.2" : "TLS 1.3") + (is_p256 ? ", P-256" : ", RSA-2048");
}

TlsService::TlsService(const TlsKind& kind, bool is_apart)
{
    int ends[2];
    if (pipe(ends) != 0)
        return;
    process_ = fork();
    if (process_ == 0)
        run(kind, is_apart, ends[1]);
    close(ends[1]);
    if (read(ends[0], &port_, sizeof port_) != sizeof port_) {
        std::fprintf(stderr, "the service for %s does not start\n", kind.name().c_str());
        std::exit(2);
    }
    close(ends[0]);
}

TlsService::~TlsService()
{
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
}

double TlsService::processorTime() const
{
    clockid_t clock = 0;
    timespec time = {};
    if (clock_getcpuclockid(process_, &clock) != 0 || clock_gettime(clock, &time) != 0) {
        std::fprintf(stderr, "the service's processor time cannot be read\n");
        std::exit(2);
    }
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

std::string TlsService::url(const std::string& host) const
{
    return "https://" + host + ":" + std::to_string(port_) + "/qlix_api/imonitor/dataitem/value";
}

} // namespace bench
