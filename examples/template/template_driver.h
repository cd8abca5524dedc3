#ifndef TEMPLATE_DRIVER_H
#define TEMPLATE_DRIVER_H

#include "framework/driver_basic.h"
#include "framework/result_code.h"

/// A driver of devices with numbered 16-bit registers that speak one line of text at a time. It
/// works over a serial line and over TCP without a difference.
///
/// | | Frame | Example |
/// |---|---|---|
/// | read | `:` station (2 digits) `R` register (4 digits) CR | `:01R0010` CR |
/// | write | `:` station `W` register value (4 digits) CR | `:01W00101234` CR |
/// | answer to both | `:` station value CR | `:011234` CR |
/// | refusal | `!` station code (4 digits) CR | `!010002` CR |
///
/// All digits are hexadecimal. The host's address is the register's number in decimal; a value is
/// two bytes, least significant first.
class TemplateDriver : public DriverBasic
{
public:
    /// What the host sees beside the codes of DriverBasic. A refusal adds the device's own code.
    enum Status
    {
        bad_address = 0x4F000001,    ///< The address is no number from 0 to 65535.
        bad_length = 0x4F000002,     ///< The host's data is not two bytes long.
        wrong_answer = 0x4F000003,   ///< The answer is no line of this protocol.
        bad_station = 0x4F000004,    ///< The station is no number from 0 to 255.
        device_refused = 0x4F010000, ///< The device said no: 0x4F010002 for its code 0002.
    };

    /// The same in words.
    static const result_code::Words* resultCodes();

    TemplateDriver(const QString& name, DrvSerial* serial, DrvEthernet* ethernet);

    int request_build(E_CMD_DIR dir, QString address, int field1, int data_length, QByteArray* data,
                      QByteArray* request, int station_no, int extra1, int extra2) override;
    int request_send_wait(int sent_length, int expected_length, int* ready) override;
    int response_parse(E_CMD_DIR dir, QString address, int field1, int data_length,
                       QByteArray* data, QByteArray* request, QByteArray* response, int station_no,
                       int extra1, int extra2) override;
};

#endif
