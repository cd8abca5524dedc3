#include "tests/reliability/stress/settle.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

namespace {

const int patience = 10000; // ms
const int calm = 500;       // ms
const int breath = 10;      // ms

ProcessFacts next()
{
    QThread::msleep(breath);
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return processFacts();
}

} // namespace

bool isWithin(const ProcessFacts& facts, const ProcessFacts& limit)
{
    return facts.threads <= limit.threads && facts.descriptors <= limit.descriptors;
}

ProcessFacts settleWithin(const ProcessFacts& limit)
{
    QElapsedTimer waited;
    waited.start();
    ProcessFacts facts = next();
    while (!isWithin(facts, limit) && waited.elapsed() < patience)
        facts = next();
    return facts;
}

ProcessFacts settle()
{
    QElapsedTimer waited;
    QElapsedTimer unchanged;
    waited.start();
    unchanged.start();
    ProcessFacts facts = next();
    while (unchanged.elapsed() < calm && waited.elapsed() < patience) {
        const ProcessFacts now = next();
        if (now.threads != facts.threads || now.descriptors != facts.descriptors)
            unchanged.start();
        facts = now;
    }
    return facts;
}
