#ifndef TESTS_EXAMPLES_MODBUS_INTEROP_RUN_H
#define TESTS_EXAMPLES_MODBUS_INTEROP_RUN_H

#include "tests/examples/modbus/modbus_bench.h"

#include <QMap>

#include <random>

/// \file
/// What the servers of the interoperability tests have in common. Both are one device: station 1,
/// four areas of `interop::area_size` elements, and after them, from `interop::exceptions_at` on,
/// addresses each of which is answered by the exception of its number.
namespace interop {

const int station = 1;
const int area_size = 2500;
const int exceptions_at = 9000;

/// What the areas hold at first.
int firstBit(int area_digit, int address);
int firstRegister(int area_digit, int address);

/// A device as it should be: served by the peer and by this model, every value must be the same.
class Run
{
public:
    /// \a host is not owned.
    Run(MiniatureHost& host, unsigned seed);

    /// One random request; false if its answer is not what it should be: see complaint().
    bool step();
    QString complaint() const { return complaint_; }
    /// How many requests have used each function.
    QMap<int, int> functions() const { return functions_; }

private:
    int below(int limit);
    int randomCount(int largest);
    Asked randomAsked(int digit, bool registers, bool write);
    bool readsRight(const Asked& asked, int digit, bool registers, int start);
    void applyWrite(const Asked& asked, bool registers, int start);
    QByteArray expected(const Asked& asked, int digit, bool registers, int start) const;

    MiniatureHost& host_;
    std::mt19937 random_;
    int bits_[2][area_size];      // 0x and 1x
    int registers_[2][area_size]; // 3x and 4x
    QMap<int, int> functions_;
    QString complaint_;
};

} // namespace interop

#endif
