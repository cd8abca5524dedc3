#include "tests/reliability/fault_matrix/matrix_report.h"

#include <QTextStream>

#include <algorithm>

namespace fault_matrix {

namespace {

/// Least and greatest of what was measured.
class Range
{
public:
    void add(double value)
    {
        least_ = count_ == 0 ? value : qMin(least_, value);
        most_ = count_ == 0 ? value : qMax(most_, value);
        ++count_;
    }

    double most() const { return most_; }

    QString seconds() const
    {
        const QString low = QString::number(least_, 'f', 1);
        const QString high = QString::number(most_, 'f', 1);
        return low == high ? high + latin1(" s") : low + latin1(" to ") + high + latin1(" s");
    }

private:
    double least_ = 0;
    double most_ = 0;
    int count_ = 0;
};

/// Results that share a row of a table.
struct Row
{
    QString key;
    Expectation expected; ///< with type 0
    QList<Result> results;
};

QString statusClass(const Cell& cell, const Expectation& expected)
{
    if (expected.outcome == Outcome::Dies)
        return latin1("none");
    const bool own_code = kindOf(cell.fault) == latin1("errorcode") && expected.result != 256;
    return own_code && expected.status != 0 ? latin1("`0x400F0000` + the code's digits")
                                            : latin1("`%1`").arg(statusText(expected.status));
}

/// Faults that have the same key are documented to be seen alike.
QString rowKey(const Cell& cell, const Expectation& expected)
{
    return latin1("%1 %2 %3 %4")
        .arg(int(expected.outcome))
        .arg(expected.result != 0 && expected.status == 0)
        .arg(expected.goes_on)
        .arg(statusClass(cell, expected));
}

QList<Row> rowsOf(Operation operation, const QList<Result>& results)
{
    QList<Row> rows;
    for (const Result& result : results) {
        if (result.cell.operation != operation)
            continue;
        Cell first_type = result.cell;
        first_type.handling = Handling::Type0;
        const Expectation expected = expectationFor(first_type);
        const QString key = rowKey(first_type, expected);
        auto row =
            std::find_if(rows.begin(), rows.end(), [&](const Row& r) { return r.key == key; });
        if (row == rows.end())
            row = rows.insert(rows.end(), {key, expected, {}});
        row->results.append(result);
    }
    return rows;
}

/// The parameter of a fault, as far as it is worth a word.
QString parameterOf(const QString& fault)
{
    for (const char* key : {"member", "code", "status"})
        if (!keyOf(fault, key).isEmpty())
            return keyOf(fault, key);
    const QString kind = kindOf(fault);
    if (kind == latin1("missing") || kind == latin1("mistyped"))
        return latin1("errorcode");
    return kind == latin1("http500") ? latin1("500") : QString();
}

QString faultsOf(const Row& row)
{
    QStringList kinds;
    QMap<QString, QStringList> parameters;
    for (const Result& result : row.results) {
        const QString kind = kindOf(result.cell.fault);
        const QString parameter = parameterOf(result.cell.fault);
        if (!kinds.contains(kind))
            kinds.append(kind);
        if (!parameter.isEmpty() && !parameters[kind].contains(parameter))
            parameters[kind].append(parameter);
    }
    QStringList names;
    for (const QString& kind : kinds) {
        QString name = latin1("`%1`").arg(kind);
        if (parameters.contains(kind))
            name += latin1(" (%1)").arg(parameters[kind].join(latin1(", ")));
        names.append(name);
    }
    return names.join(latin1(", "));
}

QString sentence(const Expectation& expected, const Measurement& one, const Range& seen,
                 const Range& on, const Range& back)
{
    switch (expected.outcome) {
    case Outcome::Dies:
        return latin1("process ends, signal %1").arg(one.signal);
    case Outcome::Slow:
    case Outcome::Carries:
        return expected.goes_on ? latin1("values go on, ") + on.seconds()
                                : latin1("values stand, `0` shown; back %1").arg(back.seconds());
    case Outcome::Waits:
        return expected.goes_on ? latin1("values go on, ") + on.seconds()
                                : latin1("values stand, `%1` shown; back %2")
                                      .arg(statusText(one.left_with), back.seconds());
    case Outcome::Fails:
        break;
    }
    const QString shown =
        expected.isSeen() ? latin1("seen %1; ").arg(seen.seconds()) : latin1("not shown; ");
    if (!expected.recovers)
        return shown + latin1("**never back**");
    return shown + (expected.goes_on ? latin1("back by itself ") + on.seconds()
                                     : latin1("back ") + back.seconds());
}

QString cellText(const Row& row, Handling handling)
{
    Range seen;
    Range on;
    Range back;
    const Result* one = nullptr;
    for (const Result& result : row.results) {
        if (result.cell.handling != handling)
            continue;
        one = &result;
        seen.add(result.measured.seen);
        on.add(result.measured.on);
        back.add(result.measured.back);
    }
    return one ? sentence(expectationFor(one->cell), one->measured, seen, on, back) : QString();
}

void writeTable(QTextStream& out, Operation operation, const QList<Row>& rows)
{
    out << "\n## " << titleOf(operation) << "\n\n| Fault | Status |";
    for (Handling handling : allHandlings())
        out << ' ' << titleOf(handling) << " |";
    out << "\n|---|---|" << latin1("---|").repeated(allHandlings().size()) << '\n';
    for (const Row& row : rows) {
        out << "| " << faultsOf(row) << " | " << statusClass(row.results.first().cell, row.expected)
            << " |";
        for (Handling handling : allHandlings())
            out << ' ' << cellText(row, handling) << " |";
        out << '\n';
    }
}

/// What ends the process does so whatever the type.
void writeEnds(QTextStream& out, Operation operation, const QList<Result>& results)
{
    out << "\n## " << titleOf(operation) << "\n\n| What | Signal | Printed |\n|---|---|---|\n";
    for (const Result& result : results)
        if (result.cell.operation == operation)
            out << "| " << result.cell.fault << " | " << result.measured.signal << " | `"
                << result.measured.last_words << "` |\n";
}

void writeSummary(QTextStream& out, const QList<Result>& results, double processor_seconds)
{
    qint64 requests = 0;
    qint64 answers = 0;
    int astray = 0;
    int ended = 0;
    int repeated = 0;
    Range answer;
    Range work;
    QMap<QString, Range> close;
    QMap<QString, int> closes;
    for (const Result& result : results) {
        const Measurement& measured = result.measured;
        ended += measured.signal != 0;
        repeated += result.runs - 1;
        if (measured.signal != 0)
            continue;
        requests += measured.requests;
        answers += measured.answers;
        astray += measured.astray;
        answer.add(measured.longest_answer);
        work.add(measured.longest_work);
        const QString kind = kindOf(result.cell.fault);
        const bool holds =
            kind == latin1("hang") || kind == latin1("drip") || kind == latin1("delay");
        const QString amid = !measured.closed_amid ? latin1("with nothing under way")
                             : holds               ? latin1("amid `%1`").arg(kind)
                                                   : latin1("amid any other fault");
        close[amid].add(measured.close);
        ++closes[amid];
    }
    out << "| Measured | |\n|---|---|\n"
        << "| Cells | " << results.size() << " |\n"
        << "| Repeated, because the computer was too busy to keep times | " << repeated << " |\n"
        << "| Processor time, service included | " << qRound(processor_seconds) << " s |\n"
        << "| Requests of the host | " << requests << " |\n"
        << "| Answers | " << answers << " |\n"
        << "| Requests not answered exactly once before their emission returned | " << astray
        << " |\n"
        << "| Longest time that an answer took, by the clock of a busy computer | "
        << QString::number(answer.most() * 1e3, 'f', 1) << " ms |\n"
        << "| Most processor time that an answer took | "
        << QString::number(work.most() * 1e3, 'f', 1) << " ms |\n";
    for (auto it = close.begin(); it != close.end(); ++it)
        out << "| Longest closing " << it.key() << ", of " << closes.value(it.key()) << " | "
            << QString::number(it.value().most() * 1e3, 'f', 1) << " ms |\n";
    out << "| Processes that ended, as documented | " << ended << " |\n";
}

void writeBreaches(QTextStream& out, const QList<Result>& results)
{
    int broken = 0;
    for (const Result& result : results)
        broken += result.breaches.isEmpty() ? 0 : 1;
    if (broken == 0)
        return;
    out << "\n## Not as documented\n\n";
    for (const Result& result : results)
        for (const QString& breach : result.breaches)
            out << "- " << result.cell.name() << ": " << breach << '\n';
}

const char introduction[] =
    R"(# Fault matrix

What a host sees of every fault that the [simulated service](simulated-service.md#faults) can produce,
as `scripts/fault-matrix` measured it. Every cell is a process of its own with the plug-in and a service
over HTTPS. The driver serves three items; the host reads one of them every 100 ms, all three while
there is no error, and writes one.

- *Seen*: from the beginning of the fault until the host is shown the status.
- *Back*: from the end of the fault until the host reads new values with status 0. *By itself*: the
  driver was back while the fault was still in force, counted from the fault's beginning.
- *Values go on*: new values, with status 0, this long after the beginning at the latest.
- *Values stand*: the cache holds the last good values, and the host is shown the status named.
- The faults of a reconnect begin together with the loss of the token, so that `0x400F0004` is shown
  first.

Closing is measured with the fault in force once more. The script fails when a cache loses a value, a
request is not answered exactly once and at once, a time is exceeded, or a driver does not recover.

)";

} // namespace

QString report(const QList<Result>& results, double processor_seconds)
{
    QString text;
    QTextStream out(&text);
    out << introduction;
    writeSummary(out, results, processor_seconds);
    for (Operation operation : allOperations()) {
        const QList<Row> rows = rowsOf(operation, results);
        if (!rows.isEmpty() && isOdd(operation))
            writeEnds(out, operation, results);
        else if (!rows.isEmpty())
            writeTable(out, operation, rows);
    }
    writeBreaches(out, results);
    out.flush();
    return text;
}

} // namespace fault_matrix
