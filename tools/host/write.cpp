#include "tools/host/write.h"

#include "tools/host/driver/confirm.h"
#include "tools/host/driver/sending.h"
#include "tools/host/driver/workplace.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text_width.h"
#include "tools/host/terminal/usage_error.h"

namespace tovik_host {

namespace {

int milliseconds(double seconds)
{
    return int(seconds * 1000);
}

} // namespace

int runWrite(const config::CommonOptions& common, const config::WriteOptions& options)
{
    driver::Workplace place(common);
    const config::ItemConfig& item = place.item(options.item);
    const value::EncodedValue encoded = value::encodeValue(*item.type, options.value, item.length);
    if (!encoded.ok())
        throw terminal::UsageError(QStringLiteral("%1: %2").arg(item.name, encoded.problem));
    const QString shown = value::decodeValue(*item.type, encoded.bytes).value_or(QString());

    QString problem = driver::sendValue(place, item, encoded.bytes, milliseconds(options.timeout));
    if (problem.isEmpty() && options.confirm > 0)
        problem = driver::confirmValue(place, item, encoded.bytes, milliseconds(options.confirm));
    if (!problem.isEmpty()) {
        place.err.line(QStringLiteral("tovik-host: %1: %2")
                           .arg(terminal::printable(item.name), terminal::printable(problem)));
        return terminal::exitRefused;
    }
    place.out.line(
        QStringLiteral("%1 = %2  %3")
            .arg(item.name, shown,
                 options.confirm > 0 ? QStringLiteral("confirmed") : QStringLiteral("sent")));
    return terminal::exitDone;
}

} // namespace tovik_host
