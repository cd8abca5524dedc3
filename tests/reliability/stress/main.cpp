#include "tests/reliability/stress/stress_run.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <atomic>
#include <cstdio>

// Several drivers of the built plug-in in one process, used as hard as a host can and closed at any
// moment. scripts/stress runs it for long, a test for a few seconds.

namespace {

std::atomic<int> warnings{0};

/// Drivers log each step; what Qt warns of is what must not be.
void onMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtDebugMsg || type == QtInfoMsg)
        return;
    // Two threads that make their first QNetworkAccessManager at once both tell Qt of one of its
    // own types; Qt keeps the first, says so, and nothing else comes of it.
    if (text.startsWith(QString::fromLatin1("Type conversion already registered from type "
                                            "QSharedPointer<QNetworkSession>")))
        return;
    if (++warnings <= 20)
        std::fprintf(stderr, "WARNING: %s\n", qPrintable(text));
}

const struct
{
    const char* name;
    const char* what;
    const char* value;
} options[] = {
    {"minutes", "Run for so many minutes (a part of one will do).", "1"},
    {"seed", "Start the random numbers with this one.", "1"},
    {"drivers", "So many drivers at a time.", "4"},
    {"items", "So many items for each.", "40"},
    {"reads", "So many reads of the host in a second, for all drivers together.", "4000"},
    {"writes", "So many writes likewise.", "100"},
    {"outstanding", "So many writes of a driver may be on their way.", "50"},
    {"faults", "So many of a thousand requests fail.", "5"},
    {"longest-close", "Closing may take so many milliseconds.", "1000"},
    {"round", "All drivers go, and come again, every so many seconds.", "10"},
};

/// The number that an option has been given; ends the program when it is none from \a least to
/// \a most.
double number(const QCommandLineParser& parser, const char* name, double least, double most)
{
    bool is_number = false;
    const QString text = parser.value(QString::fromLatin1(name));
    const double value = text.toDouble(&is_number);
    if (!is_number || value < least || value > most) {
        std::fprintf(stderr, "stress: --%s takes a number from %g to %g, not '%s'\n", name, least,
                     most, qPrintable(text));
        std::exit(2);
    }
    return value;
}

StressSettings settingsOf(const QCommandLineParser& parser)
{
    StressSettings settings;
    settings.milliseconds = qint64(number(parser, "minutes", 0.01, 100000) * 60000);
    settings.seed = quint32(number(parser, "seed", 0, 1e9));
    settings.drivers = int(number(parser, "drivers", 1, 50));
    settings.items = int(number(parser, "items", 1, 1000));
    settings.reads = int(number(parser, "reads", 1, 1e6));
    settings.writes = int(number(parser, "writes", 0, 10000));
    settings.outstanding = int(number(parser, "outstanding", 1, 300));
    settings.faults_per_mille = int(number(parser, "faults", 0, 1000));
    settings.longest_close = qint64(number(parser, "longest-close", 1, 1e6));
    settings.round = qint64(number(parser, "round", 1, 3600) * 1000);
    return settings;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QString::fromLatin1("Uses several drivers in one process and closes them at any moment.\n"
                            "Exit code: 0 when all was right, 1 when not, 2 for wrong usage."));
    parser.addHelpOption();
    for (const auto& option : options)
        parser.addOption(
            QCommandLineOption(QString::fromLatin1(option.name), QString::fromLatin1(option.what),
                               QString::fromLatin1("N"), QString::fromLatin1(option.value)));
    if (!parser.parse(QCoreApplication::arguments()) || !parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "stress: %s; see --help\n",
                     parser.errorText().isEmpty() ? "there are no arguments but options"
                                                  : qPrintable(parser.errorText()));
        return 2;
    }
    if (parser.isSet(QString::fromLatin1("help")))
        parser.showHelp(0);
    qInstallMessageHandler(onMessage);
    StressRun run(settingsOf(parser));
    const bool is_right = run.run();
    if (warnings > 0)
        std::fprintf(stderr, "FINDING: Qt has warned %d times\n", warnings.load());
    return is_right && warnings == 0 ? 0 : 1;
}
