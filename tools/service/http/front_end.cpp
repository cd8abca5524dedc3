#include "tools/service/http/front_end.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <array>
#include <exception>

namespace tovik_service::http {

namespace {

// The HTTP library uses select(), which ends at descriptor 1024.
constexpr std::size_t mostClients = 800;
constexpr int mostRequests = 100;
constexpr int idleMilliseconds = 5000;
constexpr int shortWait = 20;
constexpr int longWait = 1000;

} // namespace

FrontEnd::FrontEnd(HttpEngine& engine, TlsContext* tls, const std::string& host, int port,
                   EventLog& log)
    : engine_(engine),
      tls_(tls),
      log_(log),
      port_(host, port),
      isRefusing_([] { return false; }),
      wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{}

FrontEnd::~FrontEnd()
{
    stop();
}

void FrontEnd::start()
{
    if (!isRefusing_()) {
        port_.open();
    }
    thread_ = std::thread([this] { run(); });
}

void FrontEnd::stop()
{
    if (!thread_.joinable()) {
        return;
    }
    stopping_ = true;
    wake();
    thread_.join();
    port_.close();
    for (Client& client : clients_) {
        client.connection->interrupt();
    }
    for (Client& client : clients_) {
        client.thread.join();
    }
    clients_.clear();
    const std::lock_guard<std::mutex> lock(mutex_);
    applied_.notify_all();
}

void FrontEnd::applyRefusing()
{
    std::unique_lock<std::mutex> lock(mutex_);
    const std::uint64_t round = ++wantedRound_;
    wake();
    applied_.wait(lock, [this, round] { return doneRound_ >= round || stopping_; });
}

void FrontEnd::run()
{
    while (!stopping_) {
        openOrClose();
        if (waitForEvent() > 0) {
            acceptAll();
        }
        joinFinished();
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    applied_.notify_all();
}

void FrontEnd::openOrClose()
{
    std::unique_lock<std::mutex> lock(mutex_);
    const std::uint64_t round = wantedRound_;
    lock.unlock();
    try {
        if (isRefusing_()) {
            port_.close();
        } else {
            port_.open();
            openFailed_ = false;
        }
    } catch (const std::exception& error) {
        // Tried again with the next round, but told only once.
        if (!openFailed_) {
            log_.note(error.what());
        }
        openFailed_ = true;
    }
    lock.lock();
    doneRound_ = round;
    applied_.notify_all();
}

int FrontEnd::waitForEvent()
{
    const bool full = clients_.size() >= mostClients;
    const bool closed = port_.descriptor() < 0;
    std::array<pollfd, 2> entries{
        {{wakeUp_.get(), POLLIN, 0}, {full ? -1 : port_.descriptor(), POLLIN, 0}}};
    ::poll(entries.data(), entries.size(), full || closed ? shortWait : longWait);
    std::uint64_t count = 0;
    if (::read(wakeUp_.get(), &count, sizeof(count)) > 0) {
        return 0;
    }
    return entries[1].revents != 0 ? 1 : 0;
}

void FrontEnd::acceptAll()
{
    while (clients_.size() < mostClients) {
        FileDescriptor socket = port_.accept();
        if (!socket.isOpen()) {
            return;
        }
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
    if (!problem.empty() && !stopping_) {
        log_.note("TLS handshake failed: " + problem);
    }
    for (int left = mostRequests; problem.empty() && left > 0 && !stopping_; --left) {
        if (!connection.waitForRequest(idleMilliseconds) ||
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
    [[maybe_unused]] const auto written = ::write(wakeUp_.get(), &one, sizeof(one));
}

} // namespace tovik_service::http
