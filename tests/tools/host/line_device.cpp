#include "tests/tools/host/line_device.h"

#include <QFile>
#include <QHostAddress>

#include <unistd.h>

namespace {

/// An address of the machine itself that only this process uses: so the port stays ours while the
/// device is away.
quint32 ownAddress()
{
    return (127U << 24) | (1U << 23) | ((quint32(::getpid()) & 0x3FFFFF) << 1) | 1;
}

int lineIn(const QByteArray& input)
{
    return input.indexOf('\n') + 1;
}

} // namespace

LineDevice::LineDevice(ScriptedDevice::Line line) : device_(line, lineIn, ownAddress())
{
    device_.setBehaviour([this](const QByteArray& request) {
        return QList<DeviceStep>{answerTo(request.chopped(1))};
    });
    showPort();
}

DeviceStep LineDevice::answerTo(const QByteArray& line)
{
    if (line.startsWith('x'))
        return {line.mid(1)};
    const QList<QByteArray> words = line.split(' ');
    const int length = words.value(3).toInt();
    const QByteArray address = words.value(6);
    const QByteArray argument = QByteArray::fromHex(address.mid(address.indexOf(':') + 1));
    if (address == "silent" || address == "close")
        return {QByteArray(), 0, address == "close"};
    if (words.first() == "w") {
        memory_[address] = QByteArray::fromHex(words.value(7));
        return {"ok"};
    }
    if (address.startsWith("hex:"))
        return {argument};
    if (address.startsWith("long:"))
        return {argument + '\0'};
    if (address == "params")
        return {words.mid(1, 5).join(' ').leftJustified(length, '\0')};
    return {memory_.value(address, QByteArray(length, '\0'))};
}

/// A link to the pty, whose own name changes each time.
QString LineDevice::path() const
{
    return folder_.filePath(QStringLiteral("port"));
}

void LineDevice::showPort()
{
    if (device_.port() == 0 && !QFile::link(device_.portName(), path()))
        qFatal("cannot make a link to a pseudo terminal");
}

QString LineDevice::link() const
{
    return device_.port() == 0 ? QStringLiteral("serial:%1,115200,8N1").arg(path())
                               : QStringLiteral("tcp:%1:%2")
                                     .arg(QHostAddress(ownAddress()).toString())
                                     .arg(device_.port());
}

void LineDevice::leave()
{
    // In this order: a free pty's name may be somebody else's the next moment.
    QFile::remove(path());
    device_.leave();
}

void LineDevice::comeBack()
{
    device_.comeBack();
    showPort();
}

QList<QByteArray> LineDevice::lines() const
{
    QList<QByteArray> lines;
    for (const QByteArray& request : device_.requests())
        lines << request.chopped(1);
    return lines;
}
