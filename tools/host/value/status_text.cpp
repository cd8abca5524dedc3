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
        return QStringLiteral("ok");
    if (whose.isDevice()) {
        const QString words = whose.wordsFor(status);
        return words.isEmpty() ? QStringLiteral("driver's code %1").arg(statusCode(status)) : words;
    }
    const quint32 bits = static_cast<quint32>(status);
    bool is_decimal = false;
    const int result = QString::number(bits & 0xFFFF, 16).toInt(&is_decimal, 10);
    if ((bits & 0xFFFF0000) != driver_error || !is_decimal)
        return QStringLiteral("unknown status %1").arg(statusCode(status));
    if (result == client_failure)
        return QStringLiteral("service not reachable, or its reply not understood");
    return QStringLiteral("service error %1").arg(result);
}

QString statusCode(int status)
{
    if (status == 0)
        return QStringLiteral("0");
    const QString digits = QString::number(static_cast<quint32>(status), 16).toUpper();
    return QStringLiteral("0x") + digits.rightJustified(8, QLatin1Char('0'));
}

QString statusWord(int status)
{
    return status == 0 ? QStringLiteral("ok") : statusCode(status);
}

QString noValue()
{
    return QString(QChar(0x2013));
}

QString statusTextWithCode(int status, StatusOf whose)
{
    const QString words = statusText(status, whose);
    const QString code = statusCode(status);
    if (status == 0 || (whose.isDevice() && words.endsWith(code)))
        return words;
    return QStringLiteral("%1 (%2)").arg(words, code);
}

bool isServiceError(int status)
{
    return status != 0 && status != client_failure_status;
}

QString loginAdvice()
{
    return QStringLiteral("look at e-mail, password and project");
}

QString resultText(int result)
{
    return result == client_failure ? statusText(client_failure_status)
                                    : QStringLiteral("service error %1").arg(result);
}

} // namespace tovik_host::value
