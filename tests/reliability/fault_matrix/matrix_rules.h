#ifndef TESTS_RELIABILITY_FAULT_MATRIX_MATRIX_RULES_H
#define TESTS_RELIABILITY_FAULT_MATRIX_MATRIX_RULES_H

#include "tests/reliability/fault_matrix/matrix_cell.h"

namespace fault_matrix {

/// What a fault does to the operation that it strikes.
enum class Outcome
{
    Fails,   ///< the operation ends with a result that is not 0
    Carries, ///< nothing that the driver needs is harmed
    Slow,    ///< the operation is done, later
    Waits,   ///< the operation neither ends nor fails while the fault lasts
    Dies     ///< the host's process ends
};

/// What has to be seen in a cell, derived from how the driver is documented to behave.
struct Expectation
{
    Outcome outcome = Outcome::Fails;
    int result = 0; ///< of the operation, when it fails
    int status = 0; ///< what the host is shown then
    /// Values go on, with status 0, while the fault lasts.
    bool goes_on = false;
    /// After the fault, new values come without a new start of the driver.
    bool recovers = true;
    // Seconds at most, without what a loaded computer adds.
    double seen_within = 0;   ///< from the strike to the status
    double on_within = 0;     ///< from the strike to new values, when they go on
    double back_within = 0;   ///< from the end of the fault to new values
    double hold_at_least = 0; ///< so long the fault is left in force
    QString death;            ///< what the process prints when it ends

    bool isSeen() const { return outcome == Outcome::Fails && status != 0; }
};

/// Milliseconds between two reads of the host in the matrix.
constexpr int read_period = 100;

/// The expectation for a cell.
Expectation expectationFor(const Cell& cell);

/// The status that is documented for a result of the client (docs/configuration.md).
int documentedStatus(int result);

/// Whether the connection has to be lost before the operation happens at all.
bool needsReconnect(Operation operation);

} // namespace fault_matrix

#endif
