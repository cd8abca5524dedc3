#ifndef TESTS_SUPPORT_FAR_END_H
#define TESTS_SUPPORT_FAR_END_H

#include "tests/support/pty.h"
#include "tests/support/scripted_device.h"

/// One kind of line, seen from the device. Nothing here waits.
class ScriptedDevice::FarEnd
{
public:
    virtual ~FarEnd() = default;

    virtual QByteArray receive() = 0;
    virtual void send(const QByteArray& bytes) = 0;
    virtual void hangUp() = 0;
    virtual void leave() {}
    virtual void comeBack() {}
    virtual quint16 port() const { return 0; }
    virtual QString portName() const { return QString(); }
    /// How many connections there have been.
    virtual int connections() const { return 0; }
};

/// Listens on a free port; one connection at a time, the latest.
class TcpFarEnd : public ScriptedDevice::FarEnd
{
public:
    explicit TcpFarEnd(quint32 address);
    ~TcpFarEnd() override;

    QByteArray receive() override;
    void send(const QByteArray& bytes) override;
    void hangUp() override;
    void leave() override;
    void comeBack() override;
    quint16 port() const override { return port_; }
    int connections() const override { return connections_; }

private:
    Q_DISABLE_COPY(TcpFarEnd)

    void acceptConnection();

    const quint32 address_;
    int listener_ = -1;
    int connection_ = -1;
    int connections_ = 0;
    quint16 port_ = 0;
};

/// Holds the far end of a pseudo terminal.
class PtyFarEnd : public ScriptedDevice::FarEnd
{
public:
    PtyFarEnd() : pty_(new Pty(Pty::Line)) {}

    QByteArray receive() override { return pty_->take(); }
    void send(const QByteArray& bytes) override { pty_->send(bytes); }
    void hangUp() override { pty_->close(); }
    void comeBack() override { pty_.reset(new Pty(Pty::Line)); }
    QString portName() const override { return pty_->portName(); }

private:
    std::unique_ptr<Pty> pty_;
};

#endif
