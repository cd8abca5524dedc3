#ifndef TESTS_RELIABILITY_FAULT_MATRIX_MATRIX_CELL_H
#define TESTS_RELIABILITY_FAULT_MATRIX_MATRIX_CELL_H

#include <QList>
#include <QString>
#include <QStringList>

namespace fault_matrix {

inline QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

/// What the fault strikes: the five requests and the first login of all; beyond what the simulated
/// service can do, replies that no service of this kind sends, and writes that JSON has no number
/// for.
enum class Operation
{
    Start,
    Login,
    Groups,
    Items,
    Value,
    Write,
    OddReply,
    OddWrite
};

/// An error-handling type with its settings.
enum class Handling
{
    Type0,
    Type1Timed,
    Type1Switch,
    Type2,
    Type3
};

/// One cell of the matrix.
struct Cell
{
    Operation operation;
    QString fault; ///< as `tovik-cloud --fault` takes it, without a path
    Handling handling;

    /// For example "value/drip:ms=2/type-3"; reads back with fromName().
    QString name() const;
    /// False when \a name is none of a cell.
    static bool fromName(const QString& name, Cell* cell);
};

const QList<Operation>& allOperations();
const QList<Handling>& allHandlings();
/// Short, as in names of cells.
QString nameOf(Operation operation);
QString nameOf(Handling handling);
/// For people.
QString titleOf(Operation operation);
QString titleOf(Handling handling);

/// Seconds of the return time that Handling::Type1Timed is run with.
constexpr int return_time = 2;
/// Whether a timer reconnects; otherwise the host's reads do.
bool isTimed(Handling handling);
/// Seconds between two attempts of the timer.
int retryInterval(Handling handling);

/// The kind of fault in a fault's text.
QString kindOf(const QString& fault);
/// Beyond what the simulated service can do: what ends the process, whatever the type.
bool isOdd(Operation operation);
/// The value of a key in a fault's text, or an empty text.
QString keyOf(const QString& fault, const char* key);
/// The fault's text with the path of \a operation, where the kind takes one.
QString withPath(const QString& fault, Operation operation);

/// Every fault at every operation that it can strike, with every type.
QList<Cell> allCells();
/// Every kind of fault at one operation with one type, and every type with one fault.
QList<Cell> quickCells();

} // namespace fault_matrix

#endif
