#ifndef MODBUS_RTU_H
#define MODBUS_RTU_H

#include "modbus_framing.h"

namespace modbus {

/// The checksum of a serial frame (polynomial 0xA001, from 0xFFFF); sent least significant byte
/// first. Of 01 03 00 00 00 0A it is 0xCDC5.
unsigned short crc16(const QByteArray& bytes);
/// A serial frame: station, PDU, checksum.
QByteArray rtuFrame(int station, const QByteArray& pdu);

/// Frames of a serial line.
///
/// Nothing in such a frame says where it begins or to which request it belongs. So the answer is
/// looked for at every place: station, function, length and checksum must be right, and what a
/// write's answer repeats. Everything else is passed over.
class RtuFraming : public Framing
{
public:
    QByteArray frame(const Request& request) override;
    void dropOldInput() override;
    int answerSize() const override;
    bool take(Answer* answer) override;
    Answer giveUp() override;

private:
    int failure() const;
    bool isAnswerAt(int offset, int pdu_size, Answer* answer) const;
};

} // namespace modbus

#endif
