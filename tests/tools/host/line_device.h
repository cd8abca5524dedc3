#ifndef TESTS_TOOLS_HOST_LINE_DEVICE_H
#define TESTS_TOOLS_HOST_LINE_DEVICE_H

#include "tests/support/pty.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>

class QTcpSocket;

/// A device for the echo driver, which lives in the test's own event loop.
///
/// It answers the driver's lines by their address:
///   "hex:0500"     these bytes
///   "long:0500"    these bytes and one more
///   "params"       the numbers of the request as a text
///   "silent"       nothing
///   "close"        nothing, and it hangs up
///   others         the bytes that were written there last, or zeros
/// and a line that begins with "x" by the rest of it.
class LineDevice : public QObject
{
    Q_OBJECT

public:
    /// The argument of --link.
    virtual QString link() const = 0;
    /// Goes away, as a device that is switched off.
    virtual void leave() = 0;
    /// Comes back at the same place.
    virtual void comeBack() = 0;
    /// All lines that have come.
    const QList<QByteArray>& lines() const { return lines_; }

protected:
    /// Takes what has come, and returns what is to be sent.
    QByteArray answerTo(const QByteArray& bytes);
    virtual void hangUp() {}

private:
    QByteArray answerToLine(const QByteArray& line);

    QByteArray pending_;
    QList<QByteArray> lines_;
    QMap<QByteArray, QByteArray> memory_;
};

/// The device behind a TCP port.
class TcpLineDevice : public LineDevice
{
    Q_OBJECT

public:
    TcpLineDevice();

    QString link() const override;
    void leave() override;
    void comeBack() override;
    /// Closes the connections and goes on listening.
    void hangUp() override;
    int connections() const { return connections_; }

private Q_SLOTS:
    void onConnection();

private:
    QTcpServer server_;
    quint16 port_ = 0;
    int connections_ = 0;
};

/// The device on a serial line.
class SerialLineDevice : public LineDevice
{
    Q_OBJECT

public:
    SerialLineDevice();

    QString link() const override;
    void leave() override;
    void comeBack() override;

private Q_SLOTS:
    void look();

private:
    QString path() const;

    QTemporaryDir folder_;
    std::unique_ptr<Pty> pty_;
    QTimer timer_;
};

#endif
