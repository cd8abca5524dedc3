#ifndef TESTS_COMPAT_PTY_H
#define TESTS_COMPAT_PTY_H

#include <QByteArray>
#include <QString>

#include <termios.h>

/// A pseudo terminal: a serial line without hardware. The test holds the far end.
class Pty
{
public:
    Pty();
    ~Pty();

    bool isValid() const { return descriptor_ >= 0 && !port_name_.isEmpty(); }
    /// The device that the port under test opens.
    QString portName() const { return port_name_; }
    /// How the line is set now.
    termios attributes() const;
    /// Sends all of \a bytes to the port under test.
    bool send(const QByteArray& bytes);
    /// Takes what the port under test has sent so far; does not wait.
    QByteArray take();
    /// Hangs up.
    void close();

private:
    Q_DISABLE_COPY(Pty)

    int descriptor_;
    QString port_name_;
};

#endif
