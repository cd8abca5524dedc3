// Uses something of every installed header that a host needs, and prints one line about it.
#include "compat/serial_port.h"
#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"
#include "interface/drv_serial.h"
#include "interface/drvlib.h"
#include "property/property_tovik_iot.h"
#include "property/warning_message.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QScopedPointer>

#include <cstdio>

namespace {

void ignoreMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

/// Bytes of a stored configuration, or 0 if it does not come back as it was.
int storedSize()
{
    PropertyTovikIot property;
    property.dataitems.append(PropertyTovikIotDataItem());
    property.groups.append(PropertyTovikIotGroup());
    QByteArray bytes;
    QDataStream writer(&bytes, QIODevice::WriteOnly);
    writer.setVersion(QDataStream::Qt_4_8);
    writer << property;

    PropertyTovikIot read;
    QDataStream reader(bytes);
    reader.setVersion(QDataStream::Qt_4_8);
    reader >> read;
    return read == property ? bytes.size() : 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    qInstallMessageHandler(ignoreMessage);

    QScopedPointer<DrvInterface> driver(create_drvlib(nullptr, nullptr, nullptr));
    DrvEthernet link;
    link.driver_specific_data.insert(QLatin1String("port"), 443);
    DrvSerial serial(QLatin1String("/dev/ttyS9"));
    serial.setBaudRate(BAUD19200);
    void (*warn)(QString, QString) = TovikIotWarningMsg;

    std::printf("version %u transparent %d port %d timeout %d baud %d stored %d warn %d\n",
                drv_version(), driver->IsTransparentModeSupported(),
                link.GetDriverSpecificData(QLatin1String("port")).toInt(), link.response_timeout,
                int(serial.baudRate()), storedSize(), warn != nullptr);
    return 0;
}
