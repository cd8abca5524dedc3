#ifndef TESTS_RELIABILITY_SOAK_FAULT_PLAN_H
#define TESTS_RELIABILITY_SOAK_FAULT_PLAN_H

#include <random>
#include <string>

/// One thing that goes wrong with the service.
struct PlannedFault
{
    std::string name;      ///< For the plot.
    std::string spec;      ///< As the control API takes it; empty for the two below.
    bool restarts = false; ///< The service's process ends, and comes back with new keys.
    bool expires = false;  ///< All tokens are forgotten.
    double pause = 0;      ///< Seconds of quiet before it.
    double length = 0;     ///< Seconds that it lasts.
};

/// Faults at random, the same for the same seed: outages, expired tokens, slow and broken replies.
/// Replies that end the client's process by contract are not among them. A day has other
/// certificates and lost TLS sessions, too, and a night, of a third of it, without the service.
class FaultPlan
{
public:
    /// \param pace divides all pauses and lengths, but not the night's
    /// \param day_seconds how long a day takes; 0 for faults without one
    FaultPlan(unsigned seed, double pace, double day_seconds = 0);

    PlannedFault next();

private:
    double between(double least, double most);

    std::mt19937 random_;
    double pace_;
    double day_seconds_;
    double night_begins_; ///< Never again once it has been planned.
    double passed_ = 0;   ///< Seconds, with all that has been planned.
};

#endif
