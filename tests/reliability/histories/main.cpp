// Draws histories, plays each with the library and with a model of it, and says where they differ.
#include "tests/reliability/histories/exchange_play.h"
#include "tests/reliability/histories/play.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <chrono>
#include <cstdio>

namespace {

int fail(const QString& text)
{
    QTextStream(stderr) << "histories: " << text << '\n';
    return 2;
}

/// Of one kind of histories: what is done with one of them.
template <typename History>
struct Functions
{
    QString (*difference)(const History&, Coverage*);
    QString (*drawn)(std::mt19937_64*, History*, Coverage*);
    History (*shrunk)(const History&);
};

const Functions<History> of_client = {play::difference, play::drawnDifference, play::shrunk};
const Functions<ExchangeHistory> of_exchange = {
    exchange_play::difference, exchange_play::drawnDifference, exchange_play::shrunk};

template <typename History>
int playOne(const Functions<History>& functions, const QString& text)
{
    QString problem;
    const History history = History::fromText(text, &problem);
    if (!problem.isEmpty())
        return fail(problem);
    const QString difference = functions.difference(history, nullptr);
    QTextStream(stdout) << (difference.isEmpty() ? QStringLiteral("no difference\n") : difference);
    return difference.isEmpty() ? 0 : 1;
}

template <typename History>
int search(const Functions<History>& functions, qint64 count, quint64 seed, bool tells)
{
    Coverage coverage;
    std::mt19937_64 random(seed);
    const auto began = std::chrono::steady_clock::now();
    auto told = began;
    for (qint64 number = 1; number <= count; ++number) {
        History history;
        if (!functions.drawn(&random, &history, &coverage).isEmpty()) {
            const History shortest = functions.shrunk(history);
            QTextStream(stdout) << "history " << number << " of seed " << seed
                                << " differs; at its shortest:\n"
                                << functions.difference(shortest, nullptr)
                                << play::row(shortest.text()) << '\n';
            return 1;
        }
        const auto now = std::chrono::steady_clock::now();
        if (tells && now - told > std::chrono::seconds(5)) {
            told = now;
            QTextStream(stderr) << number << " histories, " << coverage.states.size() << " states, "
                                << coverage.transitions.size() << " transitions\n";
        }
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
    QTextStream(stdout) << count << " histories with " << coverage.events << " events, "
                        << coverage.states.size() << " states, " << coverage.transitions.size()
                        << " transitions, " << QString::number(took.count(), 'f', 1)
                        << " s: no difference\n";
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption count(QStringLiteral("count"), QStringLiteral("So many histories."),
                                   QStringLiteral("N"), QStringLiteral("1000"));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("Which ones."),
                                  QStringLiteral("S"), QStringLiteral("1"));
    const QCommandLineOption of(QStringLiteral("of"), QStringLiteral("client or exchange."),
                                QStringLiteral("KIND"), QStringLiteral("client"));
    const QCommandLineOption play(QStringLiteral("play"), QStringLiteral("One, as a row has it."),
                                  QStringLiteral("TEXT"));
    const QCommandLineOption quiet(QStringLiteral("quiet"), QStringLiteral("Without progress."));
    parser.addOptions({count, seed, of, play, quiet});
    parser.process(application);
    const bool is_client = parser.value(of) == QLatin1String("client");
    if (!is_client && parser.value(of) != QLatin1String("exchange"))
        return fail(QStringLiteral("--of takes client or exchange"));
    if (parser.isSet(play)) {
        return is_client ? playOne(of_client, parser.value(play))
                         : playOne(of_exchange, parser.value(play));
    }
    bool is_count = false;
    bool is_seed = false;
    const qint64 histories = parser.value(count).toLongLong(&is_count);
    const quint64 number = parser.value(seed).toULongLong(&is_seed);
    if (!is_count || !is_seed || histories < 1)
        return fail(QStringLiteral("--count and --seed take whole numbers"));
    const bool tells = !parser.isSet(quiet);
    return is_client ? search(of_client, histories, number, tells)
                     : search(of_exchange, histories, number, tells);
}
