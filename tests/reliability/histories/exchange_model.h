#ifndef TESTS_RELIABILITY_HISTORIES_EXCHANGE_MODEL_H
#define TESTS_RELIABILITY_HISTORIES_EXCHANGE_MODEL_H

#include "tests/reliability/histories/exchange.h"

/// What the documents say of DriverBasic. All that can be seen goes into one list, in its order:
/// lines of the log, calls of hooks, what is sent, answers, the clock.
class ExchangeModel
{
public:
    explicit ExchangeModel(const ExchangeHistory& history);

    void play(const ExchangeEvent& event);
    QStringList take();
    /// A stopped driver serves nothing more.
    bool isStuck() const { return is_stuck_; }

private:
    void request(bool is_read, const QString& unit);
    void attempt(bool is_read, QByteArray* data);
    void raw();
    bool isServed(const QString& unit) const;
    int waitFor(const Behaviour& behaviour, bool* ready);
    void waitForInput(qint64 milliseconds);
    void pass(qint64 milliseconds);
    void say(const QString& line) { seen_.append(line); }

    const ExchangeHistory history_;
    exchange::World world_;
    QStringList seen_;
    int code_ = 0;
    bool is_stuck_ = false;
};

namespace exchange {

/// How the lines of both begin and look.
QString answerLine(const QString& unit, const QByteArray& bytes, int code);
QString callLine(const char* hook, const QByteArray& bytes);

} // namespace exchange

#endif
