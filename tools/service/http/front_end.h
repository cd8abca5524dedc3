#ifndef TOOLS_SERVICE_HTTP_FRONT_END_H
#define TOOLS_SERVICE_HTTP_FRONT_END_H

#include "tools/service/http/event_log.h"
#include "tools/service/http/http_engine.h"
#include "tools/service/http/port.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace tovik_service::http {

/// Accepts connections and gives each a thread of its own, so that clients that hang
/// around take nothing away from the others.
class FrontEnd
{
public:
    /// Speaks TLS unless the context is null; reserves the port; throws std::runtime_error.
    FrontEnd(HttpEngine& engine, TlsContext* tls, const std::string& host, int port, EventLog& log);
    ~FrontEnd();

    /// While this holds the port is closed. To be set before start().
    void setRefusing(std::function<bool()> is_refusing) { is_refusing_ = std::move(is_refusing); }

    /// Accepts connections once this returns; throws std::runtime_error.
    void start();

    /// Interrupts all that goes on and waits for its end.
    void stop();

    /// Opens or closes the port now if that is due, and returns when it is done.
    void applyRefusing();

    int port() const { return port_.number(); }
    bool isLoopback() const { return port_.isLoopback(); }
    std::string address() const { return port_.address(); }

private:
    struct Client
    {
        std::unique_ptr<Connection> connection;
        std::thread thread;
        std::atomic<bool> finished{false};
    };

    void run();
    void openOrClose();
    int waitForEvent();
    void acceptAll();
    void joinFinished();
    void serve(Client& client);
    void wake();

    HttpEngine& engine_;
    TlsContext* tls_;
    EventLog& log_;
    Port port_;
    std::function<bool()> is_refusing_;
    FileDescriptor wake_up_;
    std::thread thread_;
    std::atomic<bool> stopping_{false};
    bool open_failed_ = false;
    std::list<Client> clients_;
    std::mutex mutex_;
    std::condition_variable applied_;
    std::uint64_t wanted_round_ = 0;
    std::uint64_t done_round_ = 0;
};

} // namespace tovik_service::http

#endif
