#include "tests/reliability/fault_matrix/matrix_cell.h"

#include "tools/service/faults/fault.h"

namespace fault_matrix {

namespace {

struct OperationRow
{
    Operation operation;
    const char* name;
    const char* title;
};

const OperationRow operation_rows[] = {
    {Operation::Start, "start", "First login, when the panel is switched on"},
    {Operation::Login, "login", "Login of a reconnect"},
    {Operation::Groups, "groups", "Group list of a reconnect"},
    {Operation::Items, "items", "Item list of a reconnect"},
    {Operation::Value, "value", "Reading a value"},
    {Operation::Write, "write", "Writing a value"},
    {Operation::OddReply, "odd-reply", "Replies that no service of this kind sends"},
    {Operation::OddWrite, "odd-write", "Writing a float that JSON has no number for"},
};

struct HandlingRow
{
    Handling handling;
    const char* name;
    const char* title;
};

const HandlingRow handling_rows[] = {
    {Handling::Type0, "type-0", "Type 0"},
    {Handling::Type1Timed, "type-1-timed", "Type 1, return time 2 s"},
    {Handling::Type1Switch, "type-1-switch", "Type 1, by the host's reads"},
    {Handling::Type2, "type-2", "Type 2"},
    {Handling::Type3, "type-3", "Type 3"},
};

template <typename Row, typename Key, std::size_t size>
const Row& rowOf(const Row (&rows)[size], Key Row::*member, Key key)
{
    for (const Row& row : rows)
        if (row.*member == key)
            return row;
    return rows[0];
}

template <typename Row, typename Key, std::size_t size>
bool findByName(const Row (&rows)[size], Key Row::*member, const QString& name, Key* key)
{
    for (const Row& row : rows) {
        if (name == latin1(row.name)) {
            *key = row.*member;
            return true;
        }
    }
    return false;
}

const tovik_service::faults::FaultDefinition* definitionOf(const QString& fault)
{
    for (const tovik_service::faults::FaultDefinition& definition :
         tovik_service::faults::faultDefinitions())
        if (kindOf(fault) == latin1(definition.name))
            return &definition;
    return nullptr;
}

bool strikesRequests(const QString& fault)
{
    const tovik_service::faults::FaultDefinition* definition = definitionOf(fault);
    return definition && definition->stage == tovik_service::faults::FaultStage::Request;
}

/// What happens to resumed TLS sessions depends on the requests before it: rows of its own show it
/// (tests/system/tst_plugin_resumption).
bool isAboutSessions(tovik_service::faults::FaultKind kind)
{
    using Kind = tovik_service::faults::FaultKind;
    return kind == Kind::TicketsLost || kind == Kind::NoTickets || kind == Kind::ResumeClose ||
           kind == Kind::ResumeReset || kind == Kind::TlsVersion;
}

/// The kinds, each with the parameters that make a difference wherever it strikes.
QStringList faultsAnywhere()
{
    QStringList faults;
    for (const tovik_service::faults::FaultDefinition& definition :
         tovik_service::faults::faultDefinitions()) {
        const QString name = latin1(definition.name);
        if (isAboutSessions(definition.kind))
            continue;
        if (name == latin1("errorcode")) {
            for (int code : {-1, 0, 1, 2, 3, 4, 7, 8, 9, 15, 255, 256})
                faults.append(name + latin1(":code=%1").arg(code));
        } else if (name == latin1("drip")) {
            faults.append(name + latin1(":ms=2"));
        } else if (name == latin1("delay")) {
            faults.append(name + latin1(":ms=600"));
        } else {
            faults.append(name);
        }
        if (name == latin1("http500"))
            faults += {name + latin1(":status=401"), name + latin1(":status=404")};
    }
    return faults;
}

/// Members of an operation's reply that can be missing or mistyped, besides "errorcode".
QStringList memberFaults(Operation operation)
{
    switch (operation) {
    case Operation::Start:
    case Operation::Login:
        return {latin1("missing:member=token"), latin1("mistyped:member=token")};
    case Operation::Groups:
        return {latin1("missing:member=Number"), latin1("mistyped:member=Number"),
                latin1("missing:member=groups"), latin1("mistyped:member=groups"),
                latin1("missing:member=group_id")};
    case Operation::Items:
        return {latin1("missing:member=Number"),      latin1("mistyped:member=Number"),
                latin1("missing:member=dataitems"),   latin1("mistyped:member=dataitems"),
                latin1("missing:member=dataitem_id"), latin1("mistyped:member=value")};
    case Operation::Value:
        return {latin1("missing:member=value"), latin1("mistyped:member=value")};
    case Operation::Write:
    case Operation::OddReply:
    case Operation::OddWrite:
        break;
    }
    return {};
}

/// Faults of the port and of the handshake strike whatever comes next; the login, a read and a
/// write stand for all.
bool canStrike(const QString& fault, Operation operation)
{
    return strikesRequests(fault) || operation == Operation::Start ||
           operation == Operation::Value || operation == Operation::Write;
}

QStringList faultsOf(Operation operation)
{
    if (operation == Operation::OddReply)
        return {latin1("array"), latin1("number"), latin1("text"), latin1("group-no-object"),
                latin1("item-no-object")};
    if (operation == Operation::OddWrite)
        return {latin1("nan"), latin1("infinity")};
    QStringList faults;
    for (const QString& fault : faultsAnywhere())
        if (canStrike(fault, operation))
            faults.append(fault);
    return faults + memberFaults(operation);
}

} // namespace

const QList<Operation>& allOperations()
{
    static const QList<Operation> operations = [] {
        QList<Operation> list;
        for (const OperationRow& row : operation_rows)
            list.append(row.operation);
        return list;
    }();
    return operations;
}

const QList<Handling>& allHandlings()
{
    static const QList<Handling> handlings = [] {
        QList<Handling> list;
        for (const HandlingRow& row : handling_rows)
            list.append(row.handling);
        return list;
    }();
    return handlings;
}

QString nameOf(Operation operation)
{
    return latin1(rowOf(operation_rows, &OperationRow::operation, operation).name);
}

QString nameOf(Handling handling)
{
    return latin1(rowOf(handling_rows, &HandlingRow::handling, handling).name);
}

QString titleOf(Operation operation)
{
    return latin1(rowOf(operation_rows, &OperationRow::operation, operation).title);
}

QString titleOf(Handling handling)
{
    return latin1(rowOf(handling_rows, &HandlingRow::handling, handling).title);
}

bool isTimed(Handling handling)
{
    return handling != Handling::Type1Switch && handling != Handling::Type3;
}

int retryInterval(Handling handling)
{
    return handling == Handling::Type1Timed ? return_time : 1;
}

QString Cell::name() const
{
    return nameOf(operation) + QLatin1Char('/') + fault + QLatin1Char('/') + nameOf(handling);
}

bool Cell::fromName(const QString& name, Cell* cell)
{
    const QStringList parts = name.split(QLatin1Char('/'));
    if (parts.size() != 3 || parts.at(1).isEmpty())
        return false;
    cell->fault = parts.at(1);
    return findByName(operation_rows, &OperationRow::operation, parts.at(0), &cell->operation) &&
           findByName(handling_rows, &HandlingRow::handling, parts.at(2), &cell->handling) &&
           (isOdd(cell->operation) ? faultsOf(cell->operation).contains(cell->fault)
                                   : definitionOf(cell->fault) != nullptr);
}

bool isOdd(Operation operation)
{
    return operation == Operation::OddReply || operation == Operation::OddWrite;
}

QString kindOf(const QString& fault)
{
    return fault.section(QLatin1Char(':'), 0, 0);
}

QString keyOf(const QString& fault, const char* key)
{
    const QString start = latin1(key) + QLatin1Char('=');
    for (const QString& part : fault.section(QLatin1Char(':'), 1).split(QLatin1Char(',')))
        if (part.startsWith(start))
            return part.mid(start.size());
    return QString();
}

QString withPath(const QString& fault, Operation operation)
{
    if (!strikesRequests(fault))
        return fault;
    const Operation path = operation == Operation::Start ? Operation::Login : operation;
    const char separator = fault.contains(QLatin1Char(':')) ? ',' : ':';
    return fault + QLatin1Char(separator) + latin1("path=") + nameOf(path);
}

QList<Cell> allCells()
{
    QList<Cell> cells;
    for (Operation operation : allOperations())
        for (const QString& fault : faultsOf(operation))
            for (Handling handling : allHandlings())
                if (!isOdd(operation) || handling == Handling::Type0)
                    cells.append({operation, fault, handling});
    return cells;
}

QList<Cell> quickCells()
{
    QList<Cell> cells;
    QStringList kinds;
    for (const QString& fault : faultsAnywhere()) {
        if (kinds.contains(kindOf(fault)))
            continue;
        kinds.append(kindOf(fault));
        cells.append({Operation::Value, fault, Handling::Type0});
    }
    for (Handling handling : allHandlings())
        cells.append({Operation::Value, latin1("errorcode:code=7"), handling});
    cells.append({Operation::Write, latin1("hang"), Handling::Type3});
    for (Operation operation : {Operation::OddReply, Operation::OddWrite})
        for (const QString& fault : faultsOf(operation))
            cells.append({operation, fault, Handling::Type0});
    return cells;
}

} // namespace fault_matrix
