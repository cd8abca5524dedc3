#ifndef TESTS_FRAMEWORK_DRIVER_BENCH_H
#define TESTS_FRAMEWORK_DRIVER_BENCH_H

#include "tests/framework/test_device.h"
#include "tests/framework/test_driver.h"

/// A device, a link to it and a driver on that link, in the thread of the test.
class DriverBench
{
public:
    explicit DriverBench(ScriptedDevice::Line line, const DrvBase& settings = DrvBase());
    ~DriverBench();

    /// Makes the connection, anew if there was one.
    bool connectLink();
    QIODevice* link() const;
    DrvBase& settings() const;
    /// Whether \a size bytes are waiting in the kernel, not yet in Qt; waits for them.
    bool waitInKernel(int size) const;
    /// Has Qt fetch \a size bytes from the kernel; waits for them.
    bool waitInQt(int size) const;

    /// One read of \a size bytes.
    /// \return the answers
    QStringList read(int size, const char* unit = "unit");
    /// One write of \a bytes.
    QStringList write(const QByteArray& bytes, const char* unit = "unit");
    QStringList transparent(const QByteArray& request);
    /// Whether nobody holds the driver's lock.
    bool lockIsFree() const;

    TestDevice device;
    std::unique_ptr<DrvEthernet> ethernet;
    std::unique_ptr<DrvSerial> serial;
    std::unique_ptr<TestDriver> driver;
    std::unique_ptr<Answers> answers;

private:
    Q_DISABLE_COPY(DriverBench)

    int connections_;
};

/// The record that all requests of the bench carry: "D7", 1, its length, 3, 4.
QSharedPointer<AddrData> someAddress(int data_length);

/// Rows for both kinds of line: column "line", 0 or 1.
ScriptedDevice::Line lineOf(int number);

#endif
