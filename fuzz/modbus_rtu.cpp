#include "fuzz/modbus_answers.h"
#include "fuzz/target.h"

#include "examples/modbus/modbus_rtu.h"
#include "examples/modbus/modbus_status.h"

namespace fuzz {

namespace {

/// The checksum, calculated in another way than the driver's: most significant bit first, with all
/// bits turned round.
unsigned short otherChecksum(const QByteArray& bytes)
{
    const auto turned = [](unsigned value, int bits) {
        unsigned result = 0;
        for (int bit = 0; bit < bits; ++bit)
            result |= (value >> bit & 1) << (bits - 1 - bit);
        return result;
    };
    unsigned sum = 0xFFFF;
    for (const char byte : bytes) {
        sum ^= turned(static_cast<unsigned char>(byte), 8) << 8;
        for (int bit = 0; bit < 8; ++bit)
            sum = ((sum & 0x8000) != 0 ? sum << 1 ^ 0x8005 : sum << 1) & 0xFFFF;
    }
    return static_cast<unsigned short>(turned(sum, 16));
}

QByteArray otherFrame(int station, const QByteArray& pdu)
{
    QByteArray frame = char(station) + pdu;
    const unsigned short sum = otherChecksum(frame);
    frame.append(char(sum & 0xFF));
    frame.append(char(sum >> 8));
    return frame;
}

bool isFailure(int status)
{
    return isWrongAnswer(status) || isAnswer(status) || status == modbus::NoAnswerInTime ||
           status == modbus::BadChecksum;
}

} // namespace

// The request, a byte for the size of the portions, then what comes.
void runModbusRtu(const QByteArray& input)
{
    Input next(input);
    const modbus::Request request = takeRequest(&next);
    const int portion = 8 + next.byte();
    modbus::RtuFraming framing;
    require(framing.frame(request) == otherFrame(request.station, modbus::buildPdu(request.pdu)),
            "a request's frame has the right checksum");
    framing.dropOldInput();

    QByteArray come;
    modbus::Answer answer;
    if (takeInPortions(portion, &next, &framing, &come, &answer)) {
        require(isAnswer(answer.status), "only a good frame is taken");
        checkAnswer(request, answer);
        require(come.contains(otherFrame(request.station, answer.pdu)),
                "a frame that is taken has the right station and checksum");
    } else {
        require(isFailure(framing.giveUp().status), "there is a reason why nothing is taken");
    }

    const QByteArray good = otherFrame(request.station, goodAnswer(request));
    framing.add(good);
    require(framing.take(&answer), "a good answer is found after anything");
    framing.frame(request);
    framing.dropOldInput();
    framing.add(good);
    require(framing.take(&answer) && answer.status == modbus::Ok &&
                answer.pdu == goodAnswer(request),
            "nothing that came before disturbs the next request");
}

} // namespace fuzz
