#ifndef PROPERTY_CHECKED_VALUE_H
#define PROPERTY_CHECKED_VALUE_H

#include <QDataStream>
#include <QVariant>

/// What reading one record may spend on `QRegExp`s, which Qt compiles as soon as it has them: at
/// most 700 bytes and 3 microseconds a unit. One for addresses or dates costs a few hundred, and
/// none may cost more than 4,000.
struct ExpressionAllowance
{
    int left;

    ExpressionAllowance() : left(20000) {}
    /// Takes off what \a pattern costs. \return whether there is enough.
    bool spend(const QString& pattern);
};

/// Reads what stands after the type and the null flag of a bit array, a date-time, a URL or a
/// `QRegExp`, as far as Qt's reader can be given it.
///
/// Qt's reader makes room for whatever count of bits it reads; it opens the file of any time zone
/// that it is told, and ends the process with zones and kinds of time that there are not; its time
/// for a URL grows with the square of the host's length; expressions use up stack, memory and time.
/// \param value is of the type, and empty
/// \return false when \a value cannot be had from the bytes
bool ReadChecked(QDataStream& stream, QVariant* value, ExpressionAllowance* expressions);

#endif
