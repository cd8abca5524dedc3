#include "tools/host/value/status_text.h"

namespace tovik_host::value {

namespace {

const quint32 driver_error = 0x400F0000;
const int client_failure = 256;
const int client_failure_status = 0x400F0256;

} // namespace

QString statusText(int status, StatusOf whose)
{
    if (status == 0)
        return u"ok"_s;
    if (whose.is_device) {
        const QString words = whose.wordsFor(status);
        return words.isEmpty() ? u"driver's code %1"_s.arg(statusCode(status)) : words;
    }
    const quint32 bits = static_cast<quint32>(status);
    bool is_decimal = false;
    const int result = QString::number(bits & 0xFFFF, 16).toInt(&is_decimal, 10);
    if ((bits & 0xFFFF0000) != driver_error || !is_decimal)
        return u"unknown status %1"_s.arg(statusCode(status));
    if (result == client_failure)
        return u"service not reachable, or its reply not understood"_s;
    return u"service error %1"_s.arg(result);
}

QString statusCode(int status)
{
    if (status == 0)
        return u"0"_s;
    const QString digits = QString::number(static_cast<quint32>(status), 16).toUpper();
    return u"0x"_s + digits.rightJustified(8, u'0');
}

QString statusWord(int status)
{
    return status == 0 ? u"ok"_s : statusCode(status);
}

QString noValue()
{
    return QString(QChar(0x2013));
}

QString statusTextWithCode(int status, StatusOf whose)
{
    const QString words = statusText(status, whose);
    const QString code = statusCode(status);
    if (status == 0 || (whose.is_device && words.endsWith(code)))
        return words;
    return u"%1 (%2)"_s.arg(words, code);
}

bool isServiceError(int status)
{
    return status != 0 && status != client_failure_status;
}

QString loginAdvice()
{
    return u"look at e-mail, password and project"_s;
}

QString resultText(int result)
{
    return result == client_failure ? statusText(client_failure_status)
                                    : u"service error %1"_s.arg(result);
}

} // namespace tovik_host::value
