#ifndef BENCHMARKS_NETWORK_TLS_SERVICE_H
#define BENCHMARKS_NETWORK_TLS_SERVICE_H

#include <sys/types.h>

#include <string>

namespace bench {

/// What a service offers.
struct TlsKind
{
    bool is_tls_1_2; ///< Otherwise TLS 1.3.
    bool is_p256;    ///< Otherwise RSA-2048.

    std::string name() const;
};

/// A service in a process of its own, so that its processor time is nobody else's. It answers every
/// post with the same value, one connection for each, and acknowledges as the kernel does by
/// itself.
///
/// To be made before the process has threads.
class TlsService
{
public:
    /// \param is_apart in a network namespace of its own, without a way to it; a DelayLine makes
    /// one
    TlsService(const TlsKind& kind, bool is_apart);
    ~TlsService();
    TlsService(const TlsService&) = delete;
    TlsService& operator=(const TlsService&) = delete;

    pid_t process() const { return process_; }
    /// So far, in milliseconds.
    double processorTime() const;
    /// The address at \a host, where the service listens on a free port.
    std::string url(const std::string& host) const;

private:
    pid_t process_ = -1;
    int port_ = 0;
};

} // namespace bench

#endif
