#ifndef TESTS_FRAMEWORK_OWN_DEVICE_H
#define TESTS_FRAMEWORK_OWN_DEVICE_H

#include "interface/drv_ethernet.h"
#include "tests/framework/test_device.h"

#include <algorithm>

/// A TCP link that is none: it answers by itself, and the kernel knows nothing of it.
class OwnDevice : public DrvEthernet
{
public:
    explicit OwnDevice(SocketState state)
    {
        setOpenMode(QIODevice::ReadWrite);
        setSocketState(state);
    }

    QByteArray written;

protected:
    qint64 readData(char* data, qint64 max_size) override
    {
        const QByteArray bytes = answer_.left(int(qMin(max_size, qint64(answer_.size()))));
        answer_.remove(0, bytes.size());
        std::copy(bytes.begin(), bytes.end(), data);
        return bytes.size();
    }
    qint64 writeData(const char* data, qint64 size) override
    {
        written.append(data, int(size));
        if (written.size() % TestDevice::request_size == 0)
            answer_ = TestDevice::answerTo(written.right(TestDevice::request_size));
        return size;
    }

    QByteArray answer_;
};

/// One that also tells how many bytes it has.
class CountingDevice : public OwnDevice
{
public:
    using OwnDevice::OwnDevice;

    qint64 bytesAvailable() const override { return answer_.size() + QIODevice::bytesAvailable(); }
};

#endif
