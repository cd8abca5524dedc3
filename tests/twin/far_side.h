#ifndef TESTS_TWIN_FAR_SIDE_H
#define TESTS_TWIN_FAR_SIDE_H

#include <QString>

#include <atomic>
#include <thread>

/// \file
/// The device at the other end of a line, in a thread of its own: a driver blocks the one that
/// asks.

/// A device that listens on a port of this machine.
class TcpFarSide
{
public:
    TcpFarSide();
    ~TcpFarSide();

    quint16 port() const { return port_; }

private:
    Q_DISABLE_COPY(TcpFarSide)

    void serve() const;

    int listener_;
    quint16 port_;
    std::thread thread_;
};

/// A device on a pty.
class PtyFarSide
{
public:
    PtyFarSide();
    ~PtyFarSide();

    /// A new line, in place of one that was hung up; the port's name.
    QString renew();

private:
    Q_DISABLE_COPY(PtyFarSide)

    void end();

    std::thread thread_;
    std::atomic<bool> is_ending_;
};

#endif
