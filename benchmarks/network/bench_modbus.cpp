// A request of the Modbus driver beside libmodbus's own client, on the same server.
#include "benchmarks/network/samples.h"
#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/interop_run.h"
#include "tests/examples/modbus/libmodbus_server.h"
#include "tests/examples/modbus/port_pair.h"

#include <QCoreApplication>
#include <QHostAddress>

#include <cerrno>
#include <memory>
#include <modbus.h>

using modbus::Transport;

namespace {

const int patience = 30000; // ms
const double target = 1.0;
const double microseconds = 1000; // of a millisecond

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

    bool run(const Task& task)
    {
        const int bytes = 2 * task.registers;
        const Asked asked =
            task.write ? writeOf("4x1", QByteArray(bytes, '\1')) : readOf("4x1", bytes);
        const Got got = task.write ? host_->write(asked) : host_->read(asked);
        return got.status == modbus::Ok;
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

    bool run(const Task& task)
    {
        uint16_t values[MODBUS_MAX_READ_REGISTERS] = {0x0101};
        if (!task.write)
            return modbus_read_registers(modbus_, 0, task.registers, values) > 0;
        return task.registers == 1 ? modbus_write_register(modbus_, 0, values[0]) > 0
                                   : modbus_write_registers(modbus_, 0, task.registers, values) > 0;
    }

private:
    Q_DISABLE_COPY(LibmodbusClient)

    modbus_t* modbus_;
};

/// Both clients have a line and a server of their own of the same kind, so that they can take
/// turns.
void compare(Transport transport, int rounds, bench::Rows* rows)
{
    const bool tcp = transport == Transport::Tcp;
    const PortPair our_ports;
    const PortPair peer_ports;
    const LibmodbusServer our_server(transport, our_ports.secondPort());
    const LibmodbusServer peer_server(transport, peer_ports.secondPort());
    DriverClient driver(transport, our_server.port(), our_ports.firstPort());
    LibmodbusClient peer(transport, peer_server.port(), peer_ports.firstPort());
    for (const Task& task : tasks) {
        bench::Samples ours;
        bench::Samples theirs;
        const int block = tcp ? 200 : 20; // requests that are measured together
        bench::measureInTurn(rounds, bench::repeated(block, [&] { return driver.run(task); }),
                             bench::repeated(block, [&] { return peer.run(task); }), &ours,
                             &theirs);
        // On a serial line the driver keeps the silence between frames, the peer does not.
        rows->add(std::string(tcp ? "Modbus TCP, " : "Modbus RTU, ") + task.name,
                  microseconds * bench::Samples::median(ours.wall) / block,
                  microseconds * bench::Samples::median(theirs.wall) / block, tcp ? target : 0, 0,
                  "us");
    }
}

} // namespace

int main(int argc, char** argv)
{
    const bool is_quick = bench::readOptions(argc, argv).is_quick;
    bench::useOneProcessor();
    const QCoreApplication application(argc, argv);
    bench::Rows rows;
    compare(Transport::Tcp, is_quick ? 10 : 30, &rows);
    compare(Transport::Rtu, is_quick ? 5 : 15, &rows);
    rows.print();
    return 0;
}
