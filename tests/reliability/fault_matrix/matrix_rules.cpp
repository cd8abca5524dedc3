#include "tests/reliability/fault_matrix/matrix_rules.h"

#include <QSet>

namespace fault_matrix {

namespace {

constexpr int client_failure = 256;
constexpr int unknown_token = 4;

bool isOneOf(const QString& kind, const QSet<QString>& kinds)
{
    return kinds.contains(kind);
}

/// Members that the driver can do without, and keep its values up to date.
bool isSpare(Operation operation, const QString& member)
{
    return (operation == Operation::Groups && member == latin1("group_id")) ||
           (operation == Operation::Items &&
            (member == latin1("dataitem_id") || member == latin1("value")));
}

/// A value of another JSON type is no failure: the item keeps the value that it had.
bool standsStill(const Cell& cell)
{
    return cell.operation == Operation::Value && kindOf(cell.fault) == latin1("mistyped") &&
           keyOf(cell.fault, "member") == latin1("value");
}

Outcome outcomeOf(const Cell& cell)
{
    const QString kind = kindOf(cell.fault);
    if (isOdd(cell.operation) || kind == latin1("not-object"))
        return Outcome::Dies;
    if (kind == latin1("hang"))
        return Outcome::Waits;
    if (isOneOf(kind, {latin1("drip"), latin1("delay")}))
        return Outcome::Slow;
    if (isOneOf(kind, {latin1("wrong-host"), latin1("expired")}))
        return Outcome::Carries;
    const bool at_login = cell.operation == Operation::Login || cell.operation == Operation::Start;
    if (kind == latin1("token-expiry"))
        return at_login ? Outcome::Carries : Outcome::Fails;
    if (isOneOf(kind, {latin1("missing"), latin1("mistyped")}))
        return isSpare(cell.operation, keyOf(cell.fault, "member")) || standsStill(cell)
                   ? Outcome::Carries
                   : Outcome::Fails;
    // Only the reply to a write consists of nothing but its error code.
    const bool says_yes = kind == latin1("errorcode") && keyOf(cell.fault, "code").toInt() == 0;
    return says_yes && cell.operation == Operation::Write ? Outcome::Carries : Outcome::Fails;
}

int resultOf(const Cell& cell)
{
    const QString kind = kindOf(cell.fault);
    if (kind == latin1("token-expiry"))
        return unknown_token;
    const int code = kind == latin1("errorcode") ? keyOf(cell.fault, "code").toInt() : 0;
    return code != 0 ? code : client_failure;
}

/// Faults that are over with the failure that they caused: one that strikes once, and a write,
/// which nothing repeats.
bool isOver(const Cell& cell)
{
    const QString kind = kindOf(cell.fault);
    return kind == latin1("token-expiry") ||
           (cell.operation == Operation::Write && kind != latin1("refuse"));
}

/// Seconds from a failure that the host is shown to the next attempt.
double untilRetry(Handling handling)
{
    return isTimed(handling) ? retryInterval(handling) : 2 * read_period / 1e3;
}

/// Seconds until the operation that the fault waits for happens.
double untilOperation(const Cell& cell)
{
    constexpr double cycle = 1;
    switch (cell.operation) {
    case Operation::Start:
    case Operation::Write:
    case Operation::OddReply:
    case Operation::OddWrite:
        return 0;
    case Operation::Value:
        return cycle;
    case Operation::Login:
    case Operation::Groups:
    case Operation::Items:
        break;
    }
    return cycle + untilRetry(cell.handling);
}

/// What a slow reply adds to a cycle, or to a reconnect.
double slowness(const Cell& cell)
{
    const QString kind = kindOf(cell.fault);
    if (kind == latin1("delay"))
        return cell.operation == Operation::Value ? 3 * 0.6 : 0.6;
    return kind == latin1("drip") ? 3 : 0;
}

} // namespace

int documentedStatus(int result)
{
    static const QSet<int> documented{1, 3, 4, 7, 8, 9, 15, 255, client_failure};
    if (!documented.contains(result))
        return 0;
    return 0x400F0000 + QString::number(result).toInt(nullptr, 16);
}

bool needsReconnect(Operation operation)
{
    return operation == Operation::Login || operation == Operation::Groups ||
           operation == Operation::Items;
}

Expectation expectationFor(const Cell& cell)
{
    constexpr double first_cycle = 1;
    constexpr double look = read_period / 1e3;
    Expectation expected;
    expected.outcome = outcomeOf(cell);
    const bool fails = expected.outcome == Outcome::Fails;
    expected.result = fails ? resultOf(cell) : 0;
    expected.status = documentedStatus(expected.result);
    // Who is shown no error never asks for a reconnect, and no timer does.
    expected.recovers = !fails || expected.status != 0 || isTimed(cell.handling);
    switch (expected.outcome) {
    case Outcome::Fails:
        expected.goes_on = isOver(cell) && expected.recovers;
        break;
    case Outcome::Carries:
    case Outcome::Slow:
        expected.goes_on = !standsStill(cell);
        break;
    case Outcome::Waits:
        expected.goes_on = cell.operation == Operation::Write; // the monitor runs meanwhile
        break;
    case Outcome::Dies:
        expected.death = cell.operation == Operation::OddWrite ? latin1("std::overflow_error")
                                                               : latin1("std::runtime_error");
        break;
    }
    const double retry = untilRetry(cell.handling);
    expected.seen_within = untilOperation(cell) + look;
    expected.on_within = untilOperation(cell) + retry + first_cycle + look + 2 * slowness(cell);
    expected.back_within = retry + first_cycle + look + slowness(cell);
    // Long enough for a second attempt of a timer, and for a hang to be one.
    expected.hold_at_least =
        untilOperation(cell) + (isTimed(cell.handling) ? retry + 0.3 : 1.0) + look;
    return expected;
}

} // namespace fault_matrix
