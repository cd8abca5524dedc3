#include "examples/modbus/modbus_status.h"
#include "tests/examples_modbus/interop_run.h"
#include "tests/examples_modbus/libmodbus_server.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHostAddress>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <functional>
#include <modbus.h>
#include <vector>

// Requests per second of the driver and of libmodbus's own client, on the same server, in turns;
// each figure is the median of all rounds. Usage: compare_modbus [ROUNDS]

using modbus::Transport;

namespace {

const int patience = 30000; // ms
const int tcp_requests = 2000;
const int rtu_requests = 200;

/// One thing that both clients can do.
struct Task
{
    const char* name;
    bool write;
    int registers;
};

const Task tasks[] = {
    {"read 1 register", false, 1},
    {"read 125 registers", false, 125},
    {"write 1 register", true, 1},
    {"write 123 registers", true, 123},
};

using Client = std::function<void(const Task& task, int requests)>;

double perSecond(const Client& client, const Task& task, int requests)
{
    client(task, requests / 20 + 1); // warms up
    QElapsedTimer timer;
    timer.start();
    client(task, requests);
    return requests * 1e9 / double(timer.nsecsElapsed());
}

double median(std::vector<double> figures)
{
    std::sort(figures.begin(), figures.end());
    return figures[figures.size() / 2];
}

/// The driver on a link of its own, as a host uses it.
class DriverClient
{
public:
    DriverClient(Transport transport, int port, const QString& port_name)
    {
        ethernet_.response_timeout = patience;
        serial_.response_timeout = patience;
        const bool tcp = transport == Transport::Tcp;
        if (tcp) {
            ethernet_.connectToHost(QHostAddress(QHostAddress::LocalHost), quint16(port));
            ethernet_.waitForConnected(patience);
        } else {
            serial_.setPortName(port_name);
            serial_.setBaudRate(BAUD115200);
            serial_.open(QIODevice::ReadWrite);
        }
        driver_.reset(new ModbusDriver(QString(), tcp ? nullptr : &serial_, &ethernet_));
        host_.reset(new MiniatureHost(driver_.get()));
    }

    void run(const Task& task, int requests)
    {
        const int bytes = 2 * task.registers;
        const Asked asked =
            task.write ? writeOf("4x1", QByteArray(bytes, '\1')) : readOf("4x1", bytes);
        for (int i = 0; i < requests; ++i) {
            const Got got = task.write ? host_->write(asked) : host_->read(asked);
            if (got.status != modbus::Ok)
                qFatal("the driver answers %s", qPrintable(code(got.status)));
        }
    }

private:
    DrvEthernet ethernet_;
    DrvSerial serial_;
    std::unique_ptr<ModbusDriver> driver_;
    std::unique_ptr<MiniatureHost> host_;
};

class LibmodbusClient
{
public:
    LibmodbusClient(Transport transport, int port, const QString& port_name)
        : modbus_(transport == Transport::Tcp
                      ? modbus_new_tcp("127.0.0.1", port)
                      : modbus_new_rtu(port_name.toLocal8Bit().constData(), 115200, 'N', 8, 1))
    {
        if (!modbus_ || modbus_set_slave(modbus_, interop::station) != 0 ||
            modbus_connect(modbus_) != 0)
            qFatal("libmodbus does not connect: %s", modbus_strerror(errno));
        modbus_set_response_timeout(modbus_, patience / 1000, 0);
    }

    ~LibmodbusClient()
    {
        modbus_close(modbus_);
        modbus_free(modbus_);
    }

    void run(const Task& task, int requests)
    {
        uint16_t values[MODBUS_MAX_READ_REGISTERS] = {0x0101};
        for (int i = 0; i < requests; ++i) {
            if (once(task, values) < 0)
                qFatal("libmodbus: %s", modbus_strerror(errno));
        }
    }

private:
    Q_DISABLE_COPY(LibmodbusClient)

    int once(const Task& task, uint16_t* values)
    {
        if (!task.write)
            return modbus_read_registers(modbus_, 0, task.registers, values);
        return task.registers == 1 ? modbus_write_register(modbus_, 0, values[0])
                                   : modbus_write_registers(modbus_, 0, task.registers, values);
    }

    modbus_t* modbus_;
};

void compare(Transport transport, int rounds)
{
    const bool tcp = transport == Transport::Tcp;
    const PortPair ports;
    const LibmodbusServer server(transport, ports.secondPort());
    const int requests = tcp ? tcp_requests : rtu_requests;
    for (const Task& task : tasks) {
        std::vector<double> ours;
        std::vector<double> theirs;
        for (int round = 0; round < rounds; ++round) {
            {
                DriverClient client(transport, server.port(), ports.firstPort());
                ours.push_back(perSecond([&](const Task& t, int count) { client.run(t, count); },
                                         task, requests));
            }
            LibmodbusClient client(transport, server.port(), ports.firstPort());
            theirs.push_back(
                perSecond([&](const Task& t, int count) { client.run(t, count); }, task, requests));
        }
        std::printf("%-4s %-20s %9.0f %9.0f %6.2f\n", tcp ? "TCP" : "RTU", task.name, median(ours),
                    median(theirs), median(ours) / median(theirs));
        std::fflush(stdout);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int rounds = argc > 1 ? qBound(1, QByteArray(argv[1]).toInt(), 1000) : 9;
    std::printf("Requests per second, medians of %d rounds\n", rounds);
    std::printf("%-4s %-20s %9s %9s %6s\n", "", "", "driver", "libmodbus", "ratio");
    compare(Transport::Tcp, rounds);
    compare(Transport::Rtu, rounds);
    return 0;
}
