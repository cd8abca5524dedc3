#include "tests/framework/test_device.h"

namespace {

using Steps = QList<DeviceStep>;

const int endless_pieces = 20000; // many more than anybody waits for

Steps pieceByPiece(const QByteArray& bytes)
{
    Steps steps;
    for (const char byte : bytes)
        steps.append({QByteArray(1, byte), 1});
    return steps;
}

/// What a device of that name makes of the answer that a good one gives.
Steps stepsOf(const QString& name, const QByteArray& answer)
{
    const QByteArray key = name.toLatin1();
    if (key == "answers")
        return {{answer}};
    if (key == "silent")
        return {};
    if (key == "late")
        return {{answer, 0, false, true}};
    if (key == "byte by byte")
        return pieceByPiece(answer);
    if (key == "too short")
        return {{answer.left(answer.size() - 1)}};
    if (key == "too long")
        return {{answer + '!'}};
    if (key == "two replies in one")
        return {{answer + answer}};
    if (key == "closes in mid-reply")
        return {{answer.left(answer.size() / 2), 0, true}};
    if (key == "endless")
        return pieceByPiece(QByteArray(endless_pieces, '.'));
    qFatal("no device behaves as \"%s\"", key.constData());
}

int requestIn(const QByteArray& input)
{
    return input.size() >= TestDevice::request_size ? TestDevice::request_size : 0;
}

} // namespace

TestDevice::TestDevice(Line line) : ScriptedDevice(line, requestIn)
{
    behave(QStringList(QLatin1String("answers")));
}

QByteArray TestDevice::valuesOf(int number, int size)
{
    QByteArray values;
    for (int i = 0; i < size; ++i)
        values.append(char(number * 7 + i * 3 + 1));
    return values;
}

QByteArray TestDevice::answerTo(const QByteArray& request)
{
    const QByteArray head = 'A' + request.mid(1, 2);
    if (request.at(0) == 'W')
        return head + request.at(3);
    const int number = uchar(request.at(1)) * 256 + uchar(request.at(2));
    return head + valuesOf(number, uchar(request.at(3)));
}

void TestDevice::behave(const QStringList& names)
{
    QList<Behaviour> behaviours;
    for (const QString& name : names)
        behaviours.append(
            [name](const QByteArray& request) { return stepsOf(name, answerTo(request)); });
    setBehaviours(behaviours);
}
