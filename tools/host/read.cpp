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
QString problemOf(const driver::FirstValue& value, const driver::FirstValues& first)
{
    if (value.arrived && value::decodeValue(*value.item.type, value.answer.bytes))
        return QString();
    const QString type = QString::fromLatin1(value.item.type->name);
    if (value.arrived) {
        return QStringLiteral("the driver's bytes [%1] are no %2")
            .arg(value::hexText(value.answer.bytes), type);
    }
    if (first.waited == terminal::Waited::interrupted)
        return QStringLiteral("interrupted");
    if (first.status != 0) {
        return QStringLiteral("no value: %1 (%2)")
            .arg(value::statusText(first.status), value::statusCode(first.status));
    }
    if (first.all_read && value.answer.arrived) {
        return QStringLiteral("the service's value is no %1: compare the item's type with the "
                              "service's")
            .arg(type);
    }
    return QStringLiteral("no value came in time, and the driver reports no error; --verbose "
                          "shows its log");
}

void printText(driver::Workplace& place, const driver::FirstValue& value, const QString& problem,
               bool quiet)
{
    if (!problem.isEmpty()) {
        place.err.line(QStringLiteral("tovik-host: %1: %2")
                           .arg(terminal::printable(value.item.name), problem));
        return;
    }
    const QString text = value::decodeValue(*value.item.type, value.answer.bytes).value();
    place.out.line(quiet ? text : QStringLiteral("%1 = %2").arg(value.item.name, text));
}

void printJson(driver::Workplace& place, const driver::FirstValue& value, const QString& problem,
               int status)
{
    // Bytes that are not the service's would only mislead.
    driver::Answer answer = value.arrived ? value.answer : driver::Answer();
    answer.arrived = true;
    answer.status = value.arrived ? answer.status : status;
    value::OrderedJson line;
    driver::addAnswer(line, value.item, answer,
                      problem.isEmpty() ? value::decodeValue(*value.item.type, answer.bytes)
                                        : std::nullopt);
    if (!problem.isEmpty())
        line["problem"] = problem.toStdString();
    place.out.line(value::jsonLine(line));
}

QVector<config::ItemConfig> requestedItems(const driver::Workplace& place, const QStringList& names)
{
    QVector<config::ItemConfig> items;
    for (const QString& name : names)
        items << place.item(name);
    return items;
}

} // namespace

int runRead(const config::CommonOptions& common, const config::ReadOptions& options)
{
    driver::Workplace place(common);
    const driver::FirstValues first =
        driver::fetchFirstValues(place.plugin, place.config, requestedItems(place, options.items),
                                 place.unix_signals, int(options.timeout * 1000));
    bool complete = true;
    for (const driver::FirstValue& value : first.values) {
        const QString problem = problemOf(value, first);
        complete = complete && problem.isEmpty();
        if (common.json)
            printJson(place, value, problem, first.status);
        else
            printText(place, value, problem, options.quiet);
    }
    return complete ? terminal::exitDone : terminal::exitRefused;
}

} // namespace tovik_host
