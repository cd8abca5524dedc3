#ifndef FRAMEWORK_TOLD_TRAFFIC_H
#define FRAMEWORK_TOLD_TRAFFIC_H

#include "framework/driver_basic.h"

/// \file
/// What a driver tells of its link to whoever listens.
namespace told_traffic {

/// Who listens to the driver's link; null: nobody.
TrafficListener* listenerOf(const DriverBasic& driver);
/// Tells of \a bytes, unless there are none.
void tell(const DriverBasic& driver, Traffic::Kind kind, const QByteArray& bytes);
/// Throws away what has come before, and sends, both told.
void send(const DriverBasic& driver, const QByteArray& request);
/// Takes what has come, told.
QByteArray take(const DriverBasic& driver);
/// Tells the driver's error_code_.
void tellEnd(const DriverBasic& driver);

/// Tells how an exchange has ended, wherever it ends.
class EndTeller
{
public:
    explicit EndTeller(const DriverBasic& driver) : driver_(driver) {}
    ~EndTeller() { tellEnd(driver_); }

private:
    Q_DISABLE_COPY(EndTeller)

    const DriverBasic& driver_;
};

} // namespace told_traffic

#endif
