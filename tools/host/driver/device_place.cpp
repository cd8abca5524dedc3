#include "tools/host/driver/device_place.h"

#include "tools/host/terminal/text_width.h"
#include "tools/host/value/status_text.h"

#include <unistd.h>

namespace tovik_host::driver {

namespace {

DeviceConfig configFor(const config::CommonOptions& common, const QStringList& addresses,
                       terminal::Output& err)
{
    QStringList warnings;
    DeviceConfig config = deviceConfig(common, addresses, &warnings);
    for (const QString& warning : warnings)
        err.line(QStringLiteral("tovik-host: warning: ") + warning);
    return config;
}

/// What a user can try first.
QString adviceFor(const Answer& answer, const DeviceConfig& config)
{
    switch (answer.status) {
    case result_code::no_answer_in_time:
        return QStringLiteral("; are station, link settings and --response-timeout (%1 ms) right?")
            .arg(config.settings.response_timeout);
    case result_code::invalid_length:
        return QStringLiteral("; does the driver know this address, and is the type right? "
                              "--verbose shows its log");
    default:
        return answer.status_of.wordsFor(answer.status).isEmpty()
                   ? QStringLiteral("; what it means, the driver's documentation says")
                   : QString();
    }
}

} // namespace

DevicePlace::DevicePlace(const config::CommonOptions& common, const QStringList& addresses)
    : out(STDOUT_FILENO),
      err(STDERR_FILENO),
      config(configFor(common, addresses, err)),
      plugin(common.library)
{
    if (!common.log.isEmpty())
        log.writeToFile(common.log);
    if (common.verbose)
        log.echo();
}

void DevicePlace::complain(const QString& subject, const QString& problem)
{
    err.line(QStringLiteral("tovik-host: %1: %2")
                 .arg(terminal::printable(subject), terminal::printable(problem)));
}

void DevicePlace::complainOfLink(const QString& problem)
{
    complain(linkText(config.link), problem);
}

QString DevicePlace::failureOf(const DeviceAnswer& answer) const
{
    const int status = answer.answer.status;
    if (unix_signals.endRequested() && (!answer.answer.arrived || status != 0))
        return QStringLiteral("interrupted");
    if (!answer.answer.arrived) {
        return QStringLiteral("the driver does not answer; a driver of a device answers each "
                              "request before it returns from it");
    }
    if (status == 0)
        return QString();
    return value::statusTextWithCode(status, answer.answer.status_of) +
           (answer.link_problem.isEmpty() ? adviceFor(answer.answer, config)
                                          : QStringLiteral(": ") + answer.link_problem);
}

QString DevicePlace::problemOf(const config::ItemConfig& item, const DeviceAnswer& answer) const
{
    const QString failure = failureOf(answer);
    if (!failure.isEmpty())
        return failure;
    const QByteArray& bytes = answer.answer.bytes;
    if (value::decodeValue(*item.type, bytes))
        return QString();
    return QStringLiteral("the driver's bytes [%1] are no %2")
        .arg(value::hexText(bytes), QLatin1String(item.type->name));
}

} // namespace tovik_host::driver
