#include "tests/reliability/fault_matrix/cell_run.h"
#include "tests/reliability/fault_matrix/matrix_report.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSaveFile>
#include <QThread>

#include <sys/resource.h>

#include <cstdio>

using namespace fault_matrix;

namespace {

constexpr int usage_error = 2;
constexpr int jobs_per_core = 12; ///< a cell mostly waits for the next second

int fail(const QString& problem)
{
    std::fprintf(stderr, "fault_matrix: %s\n", qPrintable(problem));
    return usage_error;
}

/// One cell in this process; the measurement goes to standard output.
int runCell(const QString& name, double patience)
{
    Cell cell{};
    if (!Cell::fromName(name, &cell))
        return fail(latin1("no cell \"%1\", see --list").arg(name));
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none); // some end by a signal, on purpose
    std::puts(CellRun(cell, Limits::patient(patience)).run().toJson().dump().c_str());
    return 0;
}

double processorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

bool writeFile(const QString& name, const QString& text)
{
    QSaveFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0 && file.commit();
}

int runMatrix(const QList<Cell>& cells, int jobs, double patience, const QString& output)
{
    MatrixRun run(cells, jobs, patience);
    const int step = qMax(20, cells.size() / 20);
    int broken = 0;
    QObject::connect(&run, &MatrixRun::done,
                     [&](int count, const QString& cell, const QStringList& breaches) {
                         broken += breaches.isEmpty() ? 0 : 1;
                         for (const QString& breach : breaches)
                             std::fprintf(stderr, "%s: %s\n", qPrintable(cell), qPrintable(breach));
                         if (count % step == 0 || count == cells.size())
                             std::fprintf(stderr, "%d of %d cells, %d not as documented\n", count,
                                          int(cells.size()), broken);
                     });
    const QList<Result> results = run.run();
    const QString text = report(results, processorSeconds());
    if (output.isEmpty())
        std::fputs(qPrintable(text), stdout);
    else if (!writeFile(output, text))
        return fail(latin1("cannot write %1; choose another file with --output").arg(output));
    return broken ? 1 : 0;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        latin1("Runs the plug-in against every fault of the simulated service.\n"
               "Exit code: 0 when all is as documented, 1 when a cell is not, 2 for wrong usage."));
    parser.addHelpOption();
    parser.addOptions({
        {latin1("quick"), latin1("A cell for every kind of fault and for every type only.")},
        {latin1("list"), latin1("Print the names of the cells.")},
        {latin1("only"), latin1("Only the cells whose name matches."), latin1("PATTERN")},
        {latin1("jobs"), latin1("So many cells at a time (12 per core)."), latin1("N")},
        {latin1("patience"), latin1("Factor for all times that are limits (1)."), latin1("FACTOR"),
         latin1("1")},
        {latin1("output"), latin1("Write the tables to a file."), latin1("FILE")},
        {latin1("cell"), latin1("Run one cell in this process, print what was measured as JSON."),
         latin1("NAME")},
    });
    parser.process(app);
    bool ok = false;
    const double patience = parser.value(latin1("patience")).toDouble(&ok);
    if (!ok || patience <= 0 || patience > 100)
        return fail(latin1("--patience takes a number above 0, at most 100"));
    if (parser.isSet(latin1("cell")))
        return runCell(parser.value(latin1("cell")), patience);

    const QRegExp pattern(parser.value(latin1("only")));
    QList<Cell> cells;
    for (const Cell& cell : parser.isSet(latin1("quick")) ? quickCells() : allCells())
        if (pattern.isEmpty() || pattern.indexIn(cell.name()) >= 0)
            cells.append(cell);
    if (cells.isEmpty())
        return fail(latin1("no cell matches \"%1\", see --list").arg(pattern.pattern()));
    if (parser.isSet(latin1("list"))) {
        for (const Cell& cell : cells)
            std::puts(qPrintable(cell.name()));
        return 0;
    }
    const QString jobs_text = parser.value(latin1("jobs"));
    const int jobs =
        jobs_text.isEmpty() ? jobs_per_core * QThread::idealThreadCount() : jobs_text.toInt(&ok);
    if (!ok || jobs < 1)
        return fail(latin1("--jobs takes a number from 1"));
    return runMatrix(cells, jobs, patience, parser.value(latin1("output")));
}
