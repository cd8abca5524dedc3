#include "tests/twin/transcript.h"

#include <QMutex>
#include <QMutexLocker>
#include <QtGlobal>

#include <cstdio>

namespace {

QByteArray current_section;
QMutex log_lock; // The client logs in a thread of its own.
QStringList log_lines;
QString address;

void addToLog(QtMsgType kind, const QString& line)
{
    if (kind == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(line));
    const QMutexLocker locker(&log_lock);
    QString shown(line);
    if (!address.isEmpty())
        shown.replace(address, QLatin1String("SERVICE"));
    log_lines.append(shown);
}

#if QT_VERSION < 0x050000
void receiveMessage(QtMsgType kind, const char* text)
{
    addToLog(kind, QString::fromUtf8(text));
}
#else
void receiveMessage(QtMsgType kind, const QMessageLogContext&, const QString& text)
{
    addToLog(kind, text);
}
#endif

} // namespace

void section(const char* name)
{
    current_section = name;
}

void say(const QByteArray& line)
{
    QByteArray shown = current_section + ": ";
    for (int i = 0; i < line.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(line.at(i));
        if (c < 0x20 || c == 0x7F)
            shown += "\\x" + QByteArray(1, char(c)).toHex();
        else
            shown += char(c);
    }
    std::puts(shown.constData());
}

QByteArray hex(const QByteArray& bytes)
{
    return bytes.isEmpty() ? QByteArray("-") : bytes.toHex();
}

QByteArray textOf(const QVariant& value)
{
    const QByteArray type = value.isValid() ? QByteArray(value.typeName()) : QByteArray("invalid");
    if (type == "float" || type == "double")
        return type + ' ' + QByteArray::number(value.toDouble(), 'e', 9);
    if (type == "QByteArray")
        return type + ' ' + hex(value.toByteArray());
    return type + ' ' + value.toString().toUtf8();
}

void collectLog(const QString& service_url)
{
    address = service_url;
#if QT_VERSION < 0x050000
    qInstallMsgHandler(receiveMessage);
#else
    qInstallMessageHandler(receiveMessage);
#endif
}

QStringList takeLog()
{
    const QMutexLocker locker(&log_lock);
    const QStringList lines = log_lines;
    log_lines.clear();
    return lines;
}

void sayLog()
{
    const QStringList lines = takeLog();
    for (int i = 0; i < lines.size(); ++i)
        say("log " + lines.at(i).toUtf8());
}
