#ifndef TESTS_TOOLS_HOST_ECHO_DRIVER_ECHO_DRIVER_H
#define TESTS_TOOLS_HOST_ECHO_DRIVER_ECHO_DRIVER_H

#include "framework/driver_basic.h"

/// A driver on the framework for the devices of line_device.h.
///
/// A request is a line: `r STATION FIELD1 LENGTH EXTRA1 EXTRA2 ADDRESS` for a read, and with `w`
/// and the bytes after it for a write. An address says what the driver makes of it:
///   "hex:0500"     it expects as many bytes as stand there
///   "long:0500"    the same; the device sends one more
///   "code:00AB12"  it refuses with this code and sends nothing
///   "unbuildable"  it cannot build the request
///   "mute"         it gives no answer
///   others         it expects the length that the host asks for
/// Writes are answered by "ok". With link parameter a of 1 the driver does not support the
/// transparent mode.
class EchoDriver : public DriverBasic
{
    Q_OBJECT

public:
    EchoDriver(const QString& name, DrvSerial* serial, DrvEthernet* ethernet);
    ~EchoDriver() override;

    bool IsTransparentModeSupported() override;
    int request_build(E_CMD_DIR dir, QString address, int field1, int data_length, QByteArray* data,
                      QByteArray* request, int station_no, int extra1, int extra2) override;
    int response_parse(E_CMD_DIR dir, QString address, int field1, int data_length,
                       QByteArray* data, QByteArray* request, QByteArray* response, int station_no,
                       int extra1, int extra2) override;
    int request_send_wait(int sent_length, int expected_length, int* ready) override;

protected Q_SLOTS:
    void SlotGetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                QSharedPointer<AddrData> addr) override;

private Q_SLOTS:
    void onRelease();

private:
    bool released_ = false;
};

#endif
