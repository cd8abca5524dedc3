#ifndef TESTS_RELIABILITY_HISTORIES_EXCHANGE_PLAY_H
#define TESTS_RELIABILITY_HISTORIES_EXCHANGE_PLAY_H

#include "tests/reliability/histories/exchange.h"
#include "tests/reliability/histories/play.h"

/// As play does it for the client, for DriverBasic.
namespace exchange_play {

QString difference(const ExchangeHistory& history, Coverage* coverage = nullptr);
QString drawnDifference(std::mt19937_64* random, ExchangeHistory* history, Coverage* coverage);
ExchangeHistory shrunk(const ExchangeHistory& history);

} // namespace exchange_play

#endif
