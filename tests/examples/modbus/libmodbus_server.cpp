#include "tests/examples/modbus/libmodbus_server.h"

#include "tests/examples/modbus/interop_run.h"

#include <cerrno>
#include <modbus.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using modbus::Transport;

namespace {

const int poll_interval = 100000; // us; how often the server looks whether it is to stop

} // namespace

LibmodbusServer::LibmodbusServer(Transport transport, const QString& port_name)
{
    if (transport == Transport::Tcp)
        listenOnLoopback();
    else
        openPort(port_name);
    // Portions of a request may come late on a busy machine.
    modbus_set_byte_timeout(modbus_, 30, 0);
    modbus_set_indication_timeout(modbus_, 0, poll_interval);
    fillAreas();
    thread_ = std::thread([this] { run(); });
}

LibmodbusServer::~LibmodbusServer()
{
    stop_ = true;
    thread_.join();
    modbus_close(modbus_);
    modbus_mapping_free(areas_);
    modbus_free(modbus_);
    if (listener_ >= 0)
        close(listener_);
}

void LibmodbusServer::listenOnLoopback()
{
    modbus_ = modbus_new_tcp("127.0.0.1", 0);
    listener_ = modbus_ ? modbus_tcp_listen(modbus_, 1) : -1;
    sockaddr_in address = {};
    socklen_t size = sizeof(address);
    if (listener_ < 0 || getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        qFatal("libmodbus does not listen: %s", modbus_strerror(errno));
    port_ = ntohs(address.sin_port);
}

void LibmodbusServer::openPort(const QString& port_name)
{
    modbus_ = modbus_new_rtu(port_name.toLocal8Bit().constData(), 115200, 'N', 8, 1);
    if (!modbus_ || modbus_set_slave(modbus_, interop::station) != 0 ||
        modbus_connect(modbus_) != 0)
        qFatal("libmodbus does not open the port: %s", modbus_strerror(errno));
}

void LibmodbusServer::fillAreas()
{
    areas_ = modbus_mapping_new(interop::area_size, interop::area_size, interop::area_size,
                                interop::area_size);
    for (int i = 0; i < interop::area_size; ++i) {
        areas_->tab_bits[i] = uint8_t(interop::firstBit(0, i));
        areas_->tab_input_bits[i] = uint8_t(interop::firstBit(1, i));
        areas_->tab_input_registers[i] = uint16_t(interop::firstRegister(3, i));
        areas_->tab_registers[i] = uint16_t(interop::firstRegister(4, i));
    }
}

void LibmodbusServer::run()
{
    while (!stop_) {
        if (listener_ >= 0) {
            pollfd polled = {listener_, POLLIN, 0};
            int listener = listener_;
            if (poll(&polled, 1, poll_interval / 1000) <= 0 ||
                modbus_tcp_accept(modbus_, &listener) < 0)
                continue;
        }
        serveConnection();
        if (listener_ >= 0)
            modbus_close(modbus_);
    }
}

void LibmodbusServer::serveConnection()
{
    const int header = modbus_get_header_length(modbus_);
    uint8_t query[MODBUS_TCP_MAX_ADU_LENGTH];
    while (!stop_) {
        const int size = modbus_receive(modbus_, query);
        if (size < 0 && errno != ETIMEDOUT && listener_ >= 0)
            return;
        if (size <= 0)
            continue;
        const int address = query[header + 1] << 8 | query[header + 2];
        if (address >= interop::exceptions_at)
            modbus_reply_exception(modbus_, query, unsigned(address - interop::exceptions_at));
        else
            modbus_reply(modbus_, query, size, areas_);
    }
}
