#ifndef TESTS_SUPPORT_PTY_H
#define TESTS_SUPPORT_PTY_H

#include <QByteArray>
#include <QString>

#include <termios.h>

/// A pseudo terminal: a serial line without hardware. The test holds the far end.
///
/// No other line has its name while it lives, even after close(), and no other process is still
/// about to give up a port of that name: so it can be opened, however many tests run side by side.
class Pty
{
public:
    enum Kind
    {
        Terminal, ///< Echoes and edits lines, as a person's does.
        Line      ///< Hands on every byte as it is, as a cable does.
    };

    Pty(Kind kind = Terminal);
    ~Pty();

    bool isValid() const { return descriptor_ >= 0 && port_ >= 0; }
    /// The device that the port under test opens.
    QString portName() const { return port_name_; }
    /// The far end; non-blocking.
    int descriptor() const { return descriptor_; }
    /// How the line is set now.
    termios attributes() const;
    /// Sends all of \a bytes to the port under test that fit.
    bool send(const QByteArray& bytes);
    /// Sends all of \a bytes, however long that takes; false if the line is gone.
    bool sendAll(const QByteArray& bytes);
    /// Takes what the port under test has sent so far; does not wait.
    QByteArray take();
    /// Hangs up.
    void close();

private:
    Q_DISABLE_COPY(Pty)

    int descriptor_;
    /// Keeps the line from counting as hung up while nobody has opened the port, and its name from
    /// being given away.
    int port_ = -1;
    QString port_name_;
};

#endif
