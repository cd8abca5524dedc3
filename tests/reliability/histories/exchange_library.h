#ifndef TESTS_RELIABILITY_HISTORIES_EXCHANGE_LIBRARY_H
#define TESTS_RELIABILITY_HISTORIES_EXCHANGE_LIBRARY_H

#include "tests/reliability/histories/exchange.h"

#include <memory>

/// The library in a history: a driver on DriverBasic, and a link that is a device of our own.
class ExchangeLibrary
{
public:
    explicit ExchangeLibrary(const ExchangeHistory& history);
    ~ExchangeLibrary();

    void play(const ExchangeEvent& event);
    QStringList take();

private:
    class Link;
    class Driver;

    exchange::World world_;
    QStringList seen_;
    std::unique_ptr<Link> link_;
    std::unique_ptr<Driver> driver_;
};

#endif
