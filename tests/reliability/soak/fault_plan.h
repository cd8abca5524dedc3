#ifndef TESTS_RELIABILITY_SOAK_FAULT_PLAN_H
#define TESTS_RELIABILITY_SOAK_FAULT_PLAN_H

#include <random>
#include <string>

/// One thing that goes wrong with the service.
struct PlannedFault
{
    std::string name;      ///< For the plot.
    std::string spec;      ///< As the control API takes it; empty for the two below.
    bool restarts = false; ///< The service's process ends, and comes back afterwards.
    bool expires = false;  ///< All tokens are forgotten.
    double pause = 0;      ///< Seconds of quiet before it.
    double length = 0;     ///< Seconds that it lasts.
};

/// Faults at random, the same for the same seed: outages, expired tokens, slow and broken replies.
/// Replies that end the client's process by contract are not among them.
class FaultPlan
{
public:
    /// \param pace divides all pauses and lengths
    FaultPlan(unsigned seed, double pace);

    PlannedFault next();

private:
    double between(double least, double most);

    std::mt19937 random_;
    double pace_;
};

#endif
