#ifndef TESTS_SUPPORT_TRAFFIC_LOG_H
#define TESTS_SUPPORT_TRAFFIC_LOG_H

#include "interface/traffic.h"

#include <QList>
#include <QMutex>
#include <QStringList>

/// Keeps what it hears, in whichever thread.
class TrafficLog : public TrafficListener
{
public:
    void hear(const Traffic& traffic) override;

    /// Since the last call: "sent 51", with bytes in hexadecimal, and "ended 0x0".
    QStringList takeLines();
    QList<Traffic> all() const;
    void clear();

private:
    mutable QMutex lock_;
    QList<Traffic> all_;
    int taken_ = 0;
};

#endif
