#include "tests/examples/modbus/scripted_device.h"

#include "examples/modbus/modbus_rtu.h"
#include "examples/modbus/modbus_tcp.h"

#include <arpa/inet.h>
#include <chrono>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using modbus::Transport;

namespace {

const int poll_interval = 5; // ms
const int many_writes = 15;  // from this function code on, a request says its own length

} // namespace

ScriptedDevice::ScriptedDevice(Transport transport) : transport_(transport)
{
    if (transport == Transport::Rtu) {
        line_.reset(new PseudoLine);
        connection_ = line_->descriptor();
    } else {
        listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        if (bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
            listen(listener_, 4) != 0 ||
            getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0)
            qFatal("no listening socket");
        port_ = ntohs(address.sin_port);
    }
    thread_ = std::thread([this] { run(); });
}

ScriptedDevice::~ScriptedDevice()
{
    stop_ = true;
    thread_.join();
    if (!line_)
        closeConnection();
    if (listener_ >= 0)
        close(listener_);
}

void ScriptedDevice::setBehaviour(const Behaviour& behaviour)
{
    const std::lock_guard<std::mutex> locker(mutex_);
    behaviour_ = behaviour;
}

QList<QByteArray> ScriptedDevice::requests() const
{
    const std::lock_guard<std::mutex> locker(mutex_);
    return requests_;
}

void ScriptedDevice::waitUntilServed(int requests)
{
    std::unique_lock<std::mutex> locker(mutex_);
    if (!changed_.wait_for(locker, std::chrono::seconds(30), [&] { return served_ >= requests; }))
        qFatal("the device has not got the request");
}

void ScriptedDevice::send(const QByteArray& bytes)
{
    writeAll(connection_, bytes.constData(), bytes.size());
}

void ScriptedDevice::hangUp()
{
    hang_up_ = true;
    while (hang_up_)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void ScriptedDevice::closeConnection()
{
    const int connection = connection_.exchange(-1);
    input_.clear();
    if (line_)
        line_->close();
    else if (connection >= 0)
        close(connection);
}

void ScriptedDevice::run()
{
    while (!stop_) {
        pollfd polled[] = {{connection_, POLLIN, 0}, {listener_, POLLIN, 0}};
        poll(polled, 2, poll_interval);
        if (hang_up_) {
            closeConnection();
            hang_up_ = false;
        }
        if ((polled[1].revents & POLLIN) != 0)
            acceptConnection();
        if (connection_ >= 0)
            receive();
    }
}

void ScriptedDevice::acceptConnection()
{
    const int connection = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (connection < 0)
        return;
    closeConnection();
    connection_ = connection;
}

void ScriptedDevice::receive()
{
    char buffer[1024];
    const ssize_t size = read(connection_, buffer, sizeof(buffer));
    if (size == 0 && !line_)
        closeConnection();
    if (size <= 0)
        return;
    input_.append(buffer, int(size));
    for (QByteArray request = takeRequest(); !request.isEmpty(); request = takeRequest())
        serve(request);
}

QByteArray ScriptedDevice::takeRequest()
{
    const bool rtu = transport_ == Transport::Rtu;
    if (input_.size() < 7)
        return QByteArray();
    int size = rtu ? 8 : 6 + modbus::numberAt(input_, 4);
    if (rtu && input_.at(1) >= many_writes)
        size = 9 + modbus::byteAt(input_, 6);
    if (input_.size() < size)
        return QByteArray();
    const QByteArray request = input_.left(size);
    input_.remove(0, size);
    return request;
}

void ScriptedDevice::serve(const QByteArray& request)
{
    Behaviour behaviour;
    {
        const std::lock_guard<std::mutex> locker(mutex_);
        requests_.append(request);
        behaviour = behaviour_;
    }
    const QList<DeviceStep> steps = behaviour ? behaviour(request) : QList<DeviceStep>();
    for (const DeviceStep& step : steps) {
        std::this_thread::sleep_for(std::chrono::milliseconds(step.delay));
        if (connection_ >= 0)
            send(step.bytes);
        if (step.close)
            closeConnection();
    }
    const std::lock_guard<std::mutex> locker(mutex_);
    ++served_;
    changed_.notify_all();
}

QByteArray answerFrame(Transport transport, const QByteArray& request, const QByteArray& pdu)
{
    if (transport == Transport::Rtu)
        return modbus::rtuFrame(modbus::byteAt(request, 0), pdu);
    return modbus::tcpFrame(modbus::numberAt(request, 0), modbus::byteAt(request, 6), pdu);
}

QByteArray pduOf(Transport transport, const QByteArray& request)
{
    return transport == Transport::Rtu ? request.mid(1, request.size() - 3) : request.mid(7);
}
