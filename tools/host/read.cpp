#include "tools/host/read.h"

#include "tools/host/driver/answer_json.h"
#include "tools/host/driver/first_values.h"
#include "tools/host/driver/workplace.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text_width.h"
#include "tools/host/value/status_text.h"

namespace tovik_host {

namespace {

/// Why there is no value; empty when there is one.
QString problemOf(const FirstValue& value, const FirstValues& values, Waited waited)
{
    if (value.arrived && decodeValue(*value.item.type, value.answer.bytes))
        return QString();
    const QString type = QString::fromLatin1(value.item.type->name);
    if (value.arrived) {
        return QStringLiteral("the driver's bytes [%1] are no %2")
            .arg(hexText(value.answer.bytes), type);
    }
    if (waited == Waited::interrupted)
        return QStringLiteral("interrupted");
    if (values.status() != 0) {
        return QStringLiteral("no value: %1 (%2)")
            .arg(statusText(values.status()), statusCode(values.status()));
    }
    if (value.ever_unchanged) {
        return QStringLiteral("the service's value is no %1: compare the item's type with the "
                              "service's")
            .arg(type);
    }
    return QStringLiteral("no value came in time, and the driver reports no error; --verbose "
                          "shows its log");
}

void printText(Workplace& place, const FirstValue& value, const QString& problem, bool quiet)
{
    if (!problem.isEmpty()) {
        place.err.line(
            QStringLiteral("tovik-host: %1: %2").arg(printable(value.item.name), problem));
        return;
    }
    const QString text = decodeValue(*value.item.type, value.answer.bytes).value();
    place.out.line(quiet ? text : QStringLiteral("%1 = %2").arg(value.item.name, text));
}

void printJson(Workplace& place, const FirstValue& value, const QString& problem, int status)
{
    // Bytes that are not the service's would only mislead.
    Answer answer = value.arrived ? value.answer : Answer();
    answer.arrived = true;
    answer.status = value.arrived ? answer.status : status;
    OrderedJson line;
    addAnswer(line, value.item, answer,
              problem.isEmpty() ? decodeValue(*value.item.type, answer.bytes) : std::nullopt);
    if (!problem.isEmpty())
        line["problem"] = problem.toStdString();
    place.out.line(jsonLine(line));
}

QVector<ItemConfig> requestedItems(const Workplace& place, const QStringList& names)
{
    QVector<ItemConfig> items;
    for (const QString& name : names)
        items << place.item(name);
    return items;
}

} // namespace

int runRead(const CommonOptions& common, const ReadOptions& options)
{
    Workplace place(common);
    FirstValues values(place.plugin, place.config, requestedItems(place, options.items));
    const Waited waited = values.run(place.unix_signals, int(options.timeout * 1000));
    bool complete = true;
    for (const FirstValue& value : values.values()) {
        const QString problem = problemOf(value, values, waited);
        complete = complete && problem.isEmpty();
        if (common.json)
            printJson(place, value, problem, values.status());
        else
            printText(place, value, problem, options.quiet);
    }
    return complete ? exitDone : exitRefused;
}

} // namespace tovik_host
