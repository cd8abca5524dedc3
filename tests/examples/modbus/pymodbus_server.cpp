#include "tests/examples/modbus/pymodbus_server.h"

#include <QFile>

namespace {

const int patience = 60000; // ms

// Debian's, which has Debian's modules; there may be others in the path.
const char* const interpreter = "/usr/bin/python3";

} // namespace

PymodbusServer::PymodbusServer(modbus::Transport transport, const QString& port_name)
{
    QStringList arguments(QFile::decodeName(PYMODBUS_SERVER));
    arguments << QLatin1String(transport == modbus::Transport::Tcp ? "tcp" : "rtu");
    if (!port_name.isEmpty())
        arguments << port_name;
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(QLatin1String(interpreter), arguments);
    while (!process_.canReadLine()) {
        if (!process_.waitForReadyRead(patience))
            qFatal("pymodbus does not start: %s", qPrintable(process_.errorString()));
    }
    const QByteArray line = process_.readLine().trimmed();
    if (!line.startsWith("ready "))
        qFatal("pymodbus says %s", line.constData());
    port_ = line.mid(6).toInt();
}

PymodbusServer::~PymodbusServer()
{
    process_.closeWriteChannel();
    process_.waitForFinished(patience);
}
