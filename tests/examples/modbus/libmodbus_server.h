#ifndef TESTS_EXAMPLES_MODBUS_LIBMODBUS_SERVER_H
#define TESTS_EXAMPLES_MODBUS_LIBMODBUS_SERVER_H

#include "examples/modbus/modbus_request.h"

#include <QString>

#include <atomic>
#include <memory>
#include <thread>

struct _modbus;
struct _modbus_mapping_t;

/// The device of the interoperability tests on libmodbus, in a thread of its own: on a free port
/// of the loopback interface, or on a serial port.
class LibmodbusServer
{
public:
    explicit LibmodbusServer(modbus::Transport transport, const QString& port_name = QString());
    ~LibmodbusServer();

    int port() const { return port_; }

private:
    Q_DISABLE_COPY(LibmodbusServer)

    void listenOnLoopback();
    void openPort(const QString& port_name);
    void fillAreas();
    void run();
    void serveConnection();

    _modbus* modbus_ = nullptr;
    _modbus_mapping_t* areas_ = nullptr;
    int listener_ = -1;
    int port_ = 0;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

#endif
