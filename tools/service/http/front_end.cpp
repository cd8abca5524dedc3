#include "tools/service/http/front_end.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <array>
#include <exception>

namespace tovik_service::http {

namespace {

// The HTTP library uses select(), which ends at descriptor 1024.
constexpr std::size_t most_clients = 800;
constexpr int most_requests = 100;
constexpr int idle_milliseconds = 5000;
constexpr int short_wait = 20;
constexpr int long_wait = 1000;

} // namespace

FrontEnd::FrontEnd(HttpEngine& engine, TlsContext* tls, const std::string& host, int port,
                   EventLog& log)
    : engine_(engine),
      tls_(tls),
      log_(log),
      port_(host, port),
      is_refusing_([] { return false; }),
      wake_up_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{}

FrontEnd::~FrontEnd()
{
    stop();
}

void FrontEnd::start()
{
    if (!is_refusing_())
        port_.open();
    thread_ = std::thread([this] { run(); });
}

void FrontEnd::stop()
{
    if (!thread_.joinable())
        return;
    stopping_ = true;
    wake();
    thread_.join();
    port_.close();
    for (Client& client : clients_)
        client.connection->interrupt();
    for (Client& client : clients_)
        client.thread.join();
    clients_.clear();
    const std::lock_guard<std::mutex> lock(mutex_);
    applied_.notify_all();
}

void FrontEnd::applyRefusing()
{
    std::unique_lock<std::mutex> lock(mutex_);
    const std::uint64_t round = ++wanted_round_;
    wake();
    applied_.wait(lock, [this, round] { return done_round_ >= round || stopping_; });
}

void FrontEnd::run()
{
    while (!stopping_) {
        openOrClose();
        if (waitForEvent() > 0)
            acceptAll();
        joinFinished();
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    applied_.notify_all();
}

void FrontEnd::openOrClose()
{
    std::unique_lock<std::mutex> lock(mutex_);
    const std::uint64_t round = wanted_round_;
    lock.unlock();
    try {
        if (is_refusing_()) {
            port_.close();
        } else {
            port_.open();
            open_failed_ = false;
        }
    } catch (const std::exception& error) {
        // Tried again with the next round, but told only once.
        if (!open_failed_)
            log_.note(error.what());
        open_failed_ = true;
    }
    lock.lock();
    done_round_ = round;
    applied_.notify_all();
}

int FrontEnd::waitForEvent()
{
    const bool full = clients_.size() >= most_clients;
    const bool closed = port_.descriptor() < 0;
    std::array<pollfd, 2> entries{
        {{wake_up_.get(), POLLIN, 0}, {full ? -1 : port_.descriptor(), POLLIN, 0}}};
    ::poll(entries.data(), entries.size(), full || closed ? short_wait : long_wait);
    std::uint64_t count = 0;
    if (::read(wake_up_.get(), &count, sizeof(count)) > 0)
        return 0;
    return entries[1].revents != 0 ? 1 : 0;
}

void FrontEnd::acceptAll()
{
    while (clients_.size() < most_clients) {
        FileDescriptor socket = port_.accept();
        if (!socket.isOpen())
            return;
        Client& client = clients_.emplace_back();
        client.connection = std::make_unique<Connection>(std::move(socket), tls_);
        client.thread = std::thread([this, &client] { serve(client); });
    }
}

void FrontEnd::joinFinished()
{
    for (auto client = clients_.begin(); client != clients_.end();) {
        if (client->finished) {
            client->thread.join();
            client = clients_.erase(client);
        } else {
            ++client;
        }
    }
}

void FrontEnd::serve(Client& client)
{
    Connection& connection = *client.connection;
    const std::string problem = connection.handshake();
    if (!problem.empty() && !stopping_)
        log_.note("TLS handshake failed: " + problem);
    for (int left = most_requests; problem.empty() && left > 0 && !stopping_; --left) {
        if (!connection.waitForRequest(idle_milliseconds) ||
            !engine_.serveOne(connection, left == 1)) {
            break;
        }
    }
    connection.close();
    client.finished = true;
}

void FrontEnd::wake()
{
    const std::uint64_t one = 1;
    // Fails only if the counter is full, and then the other side wakes anyway.
    [[maybe_unused]] const auto written = ::write(wake_up_.get(), &one, sizeof(one));
}

} // namespace tovik_service::http
