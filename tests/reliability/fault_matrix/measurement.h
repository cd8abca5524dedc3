#ifndef TESTS_RELIABILITY_FAULT_MATRIX_MEASUREMENT_H
#define TESTS_RELIABILITY_FAULT_MATRIX_MEASUREMENT_H

#include "tests/reliability/fault_matrix/matrix_rules.h"

#include <nlohmann/json.hpp>

namespace fault_matrix {

/// What a host saw in one cell. Times are in seconds; -1 stands for what did not happen.
struct Measurement
{
    bool began = false;        ///< values came before the fault
    double struck = -1;        ///< from the beginning of the fault to the first request it struck
    double seen = -1;          ///< from the beginning to the expected status
    double on = -1;            ///< from the beginning to new values under status 0, fault in force
    double back = -1;          ///< from the end of the fault to new values under status 0
    double held = 0;           ///< how long the fault was in force
    int attempts = 0;          ///< reconnects meanwhile
    QList<int> statuses;       ///< all that were seen meanwhile, in order of appearance
    int left_with = 0;         ///< the last one of them
    double close = -1;         ///< closing
    bool closed_amid = false;  ///< the fault held a request, or had just struck one
    int requests = 0;          ///< the host's, of both kinds
    int answers = 0;           ///< to them
    int astray = 0;            ///< requests not answered exactly once before the emission returned
    double longest_answer = 0; ///< by the clock, with whatever else the computer did meanwhile
    double longest_work = 0;   ///< the processor's time for an answer
    QStringList lost;          ///< values of the cache that are no longer what they were
    // How the process ended.
    int signal = 0;
    QString last_words;

    nlohmann::json toJson() const;
    static Measurement fromJson(const nlohmann::json& json);
};

/// What is added to the documented times.
struct Limits
{
    double slack = 1.0;   ///< a loaded computer, handshakes, the granularity of looking
    double close = 1.0;   ///< closing takes no longer
    double answer = 0.25; ///< an answer takes no longer, however loaded the computer

    /// All of them times \a factor.
    static Limits patient(double factor);
};

/// Whether \a measured breaks nothing but limits of time, as it does on a computer that is too
/// busy.
bool isOnlyLate(const Cell& cell, const Measurement& measured);

/// The rules that \a measured breaks, in words; empty when all is as documented.
QStringList breaches(const Cell& cell, const Measurement& measured, const Limits& limits);

/// A status as the documents write it.
QString statusText(int status);

} // namespace fault_matrix

#endif
