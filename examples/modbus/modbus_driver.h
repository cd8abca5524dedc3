#ifndef MODBUS_DRIVER_H
#define MODBUS_DRIVER_H

#include "framework/driver_basic.h"
#include "modbus_address.h"
#include "modbus_framing.h"
#include "modbus_request.h"

#include <QElapsedTimer>

#include <memory>

/// Modbus: RTU on a serial link, TCP on an Ethernet link. docs/modbus-driver.md has the addresses,
/// the meaning of AddrData's members, and the status codes (modbus_status.h).
///
/// The pieces without a link do the protocol's work; this class has the waiting. All input goes to
/// the framing, which finds the answer in it; doCmdSM() never gets to see the link's bytes, but
/// what recv_abnormal_handler() puts in their place.
class ModbusDriver : public DriverBasic
{
    Q_OBJECT

public:
    /// Arguments as for DriverBasic.
    ModbusDriver(const QString& name, DrvSerial* serial, DrvEthernet* ethernet);
    ~ModbusDriver() override;

    /// True: whole frames, with header or checksum, can be passed through.
    bool IsTransparentModeSupported() override;
    /// To be called in the driver's thread: while it runs, input is left on the link.
    void RunTransparentRequest(const QByteArray& request) override;

    /// Also waits until the line may be used: this is the last hook before the frame is sent.
    int request_build(E_CMD_DIR dir, QString address, int field1, int data_length, QByteArray* data,
                      QByteArray* request, int station_no, int extra1, int extra2) override;
    int request_send_wait(int sent_length, int expected_length, int* ready) override;
    /// Hands over the answer that request_send_wait() has found.
    int recv_abnormal_handler(QByteArray* response) override;
    int response_parse(E_CMD_DIR dir, QString address, int field1, int data_length,
                       QByteArray* data, QByteArray* request, QByteArray* response, int station_no,
                       int extra1, int extra2) override;
    /// A write to a bit of a register is two exchanges: the register is read and written back.
    void doCmdSM(E_CMD_DIR dir, QString address, int field1, int data_length, QByteArray* data,
                 int station_no, int extra1, int extra2) override;
    /// Without a link there is no device: NotConnected.
    void doCmdSM_Offline(E_CMD_DIR dir, QString address, int field1, int data_length,
                         QByteArray* data, int station_no, int extra1, int extra2) override;

private Q_SLOTS:
    /// Takes what has come on the link; false if nothing has.
    bool collect();
    void onConnected();

private:
    Q_DISABLE_COPY(ModbusDriver)

    modbus::Transport transport() const;
    /// Whether a request may go: a link that is still connecting takes none.
    bool isLinkUp() const;
    /// \param asked the bit's value in one byte, and a read of it otherwise: the register must be
    ///        readable, too
    void writeBit(const modbus::Address& place, const modbus::HostRequest& asked);
    /// Waits for input, at most so long, and takes it; false if there was none.
    bool listen(qint64 milliseconds);
    /// Serial: false if the line does not become silent, with the reason in error_code_.
    bool waitForSilence();
    /// The silence that the line still needs, in milliseconds.
    qint64 missingSilence() const;
    /// Waits until the answer is found or it is clear that there will be none; after a broadcast,
    /// for all of the time.
    /// \return 0 with the result in answer_, Stopped or NoAnswerInTime.
    int waitForAnswer(qint64 budget);
    /// How long so many characters take on the line, in milliseconds; 0 for TCP.
    int lineTime(int characters) const;

    std::unique_ptr<modbus::Framing> framing_;
    modbus::Request request_;
    modbus::Answer answer_;
    int wait_code_ = 0;
    /// Serial: since the line was last known to be in use.
    QElapsedTimer line_idle_;
    /// Serial: an answer may still be under way, so the line needs a longer silence.
    bool is_out_of_step_ = false;
    /// Serial: requests without an answer since the last good one.
    int unanswered_ = 0;
    /// The bytes on the link are for the transparent mode.
    bool is_transparent_ = false;
};

#endif
