// One read of the host through DriverBasic, from its signal to the answer, beside the same bytes on
// a bare socket and on a bare serial line.
#include "benchmarks/network/echo_device.h"
#include "benchmarks/network/samples.h"

#include "framework/driver_basic.h"
#include "framework/result_code.h"

#include <QCoreApplication>

#include <fcntl.h>
#include <termios.h>

namespace {

const double target = 1.3;
const double microseconds = 1000; // of a millisecond
const int patience = 10000;       // ms
const int block = 200;            // exchanges that are measured together

void ignore(QtMsgType, const QMessageLogContext&, const QString&) {}

class EchoDriver : public DriverBasic
{
public:
    EchoDriver(DrvSerial* serial, DrvEthernet* ethernet) : DriverBasic(QString(), serial, ethernet)
    {
        connect(this, &DrvInterface::SigResponse,
                [this](const QString&, const QString&, const QByteArray& ba, int status) {
                    answered_ = status == 0 && ba.size() == bench::answer_size;
                });
    }

    bool read()
    {
        answered_ = false;
        Q_EMIT SigGetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), 1, address_);
        return answered_;
    }

    int request_build(E_CMD_DIR, QString, int, int, QByteArray*, QByteArray* request, int, int,
                      int) override
    {
        request->fill('\0', bench::request_size);
        return bench::answer_size;
    }

    int request_send_wait(int, int expected_length, int* ready) override
    {
        while (device_->bytesAvailable() < expected_length) {
            if (!device_->waitForReadyRead(patience))
                return result_code::no_answer_in_time;
        }
        *ready = 1;
        return 0;
    }

    int response_parse(E_CMD_DIR, QString, int, int, QByteArray* data, QByteArray*,
                       QByteArray* response, int, int, int) override
    {
        *data = *response;
        return 0;
    }

private:
    QSharedPointer<AddrData> address_ = QSharedPointer<AddrData>(new AddrData);
    bool answered_ = false;
};

void compareOverTcp(const bench::EchoDevice& device, int rounds, bench::Rows* rows)
{
    DrvEthernet link;
    link.connectToHost(QLatin1String("127.0.0.1"), static_cast<quint16>(device.port()));
    link.waitForConnected(patience);
    EchoDriver driver(nullptr, &link);
    const int bare = device.connectBare();
    bench::Samples ours;
    bench::Samples peer;
    bench::measureInTurn(rounds, bench::repeated(block, [&] { return driver.read(); }),
                         bench::repeated(block, [&] { return bench::exchange(bare); }), &ours,
                         &peer);
    rows->add("an exchange over TCP", microseconds * bench::Samples::median(ours.wall) / block,
              microseconds * bench::Samples::median(peer.wall) / block, target, 0, "us");
}

void compareOverSerial(int rounds, bench::Rows* rows)
{
    DrvSerial link(QString::fromStdString(bench::EchoDevice::serialLine()));
    link.setBaudRate(BAUD115200);
    link.open(QIODevice::ReadWrite);
    EchoDriver driver(&link, nullptr);
    const int bare = open(bench::EchoDevice::serialLine().c_str(), O_RDWR | O_NOCTTY);
    bench::Samples ours;
    bench::Samples peer;
    bench::measureInTurn(
        rounds, bench::repeated(block, [&] { return driver.read(); }),
        bench::repeated(block,
                        [&] { return tcflush(bare, TCIOFLUSH) == 0 && bench::exchange(bare); }),
        &ours, &peer);
    rows->add("an exchange on a serial line",
              microseconds * bench::Samples::median(ours.wall) / block,
              microseconds * bench::Samples::median(peer.wall) / block, target, 0, "us");
}

} // namespace

int main(int argc, char** argv)
{
    const int rounds = bench::readOptions(argc, argv).is_quick ? 10 : 50;
    qInstallMessageHandler(ignore);
    bench::useOneProcessor();
    const QCoreApplication application(argc, argv);
    const bench::EchoDevice device;
    bench::Rows rows;
    compareOverTcp(device, rounds, &rows);
    compareOverSerial(rounds, &rows);
    rows.print();
    return 0;
}
