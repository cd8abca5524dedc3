#include "fuzz/modbus_answers.h"
#include "fuzz/target.h"

#include "examples/modbus/modbus_status.h"
#include "examples/modbus/modbus_tcp.h"

namespace fuzz {

namespace {

QByteArray otherFrame(int transaction, int unit, const QByteArray& pdu)
{
    const int length = pdu.size() + 1;
    const char header[] = {char(transaction >> 8), char(transaction), 0,         0,
                           char(length >> 8),      char(length),      char(unit)};
    return QByteArray(header, sizeof header) + pdu;
}

bool isFailure(int status)
{
    return isWrongAnswer(status) || isAnswer(status) || status == modbus::NoAnswerInTime ||
           status == modbus::NotModbus;
}

/// Whether what has come may be taken for the start of the answer to the next request.
bool foretells(const QByteArray& come, int transaction)
{
    const char numbers[] = {char(transaction >> 8), char(transaction), 0, 0};
    const QByteArray begin(numbers, sizeof numbers);
    if (come.contains(begin))
        return true;
    // Its last bytes may become one together with those that follow.
    for (int size = 1; size < begin.size(); ++size) {
        if (come.endsWith(begin.left(size)))
            return true;
    }
    return false;
}

} // namespace

// The request, a byte for the size of the portions, one for what has gone before, then what comes.
void runModbusTcp(const QByteArray& input)
{
    Input next(input);
    const modbus::Request request = takeRequest(&next);
    const int portion = 4 + next.byte();
    const int earlier = next.byte() % 4;
    modbus::TcpFraming framing;
    QByteArray come;
    for (int i = 0; i < earlier; ++i) { // requests whose answers, or parts of them, come late
        framing.frame(request);
        const QByteArray late = next.bytes(next.byte() % 16);
        come += late;
        framing.add(late);
        framing.dropOldInput();
    }
    const int transaction = earlier + 1;
    require(framing.frame(request) ==
                otherFrame(transaction, request.station, modbus::buildPdu(request.pdu)),
            "a request's frame has the right header");
    framing.dropOldInput();

    modbus::Answer answer;
    if (!takeInPortions(portion, &next, &framing, &come, &answer))
        answer = framing.giveUp();
    require(isFailure(answer.status), "an answer is found, or there is a reason why not");
    if (isAnswer(answer.status)) {
        checkAnswer(request, answer);
        require(come.contains(otherFrame(transaction, request.station, answer.pdu)),
                "a frame that is taken has the right transaction, length and unit");
    }

    const QByteArray good = otherFrame(transaction + 1, request.station, goodAnswer(request));
    framing.frame(request);
    framing.dropOldInput();
    framing.add(good);
    if (foretells(come, transaction + 1))
        return;
    if (!framing.take(&answer))
        answer = framing.giveUp();
    require(answer.status == modbus::Ok && answer.pdu == goodAnswer(request),
            "nothing that came before disturbs the next request");
}

} // namespace fuzz
