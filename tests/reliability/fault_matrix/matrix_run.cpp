#include "tests/reliability/fault_matrix/matrix_run.h"

#include "tests/support/bound_process.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <csignal>

namespace fault_matrix {

namespace {

constexpr int longest_cell = 60000; // ms

/// What the C++ library says of an exception that nobody catches.
QString lastWords(const QByteArray& errors)
{
    QStringList words;
    for (const QString& line : QString::fromLocal8Bit(errors).split(QLatin1Char('\n')))
        if (line.startsWith(latin1("terminate called")) || line.startsWith(latin1("  what():")))
            words.append(line.simplified());
    if (words.isEmpty())
        words.append(QString::fromLocal8Bit(errors.right(300)).simplified());
    return words.join(QLatin1Char(' '));
}

Measurement measurementOf(QProcess* process)
{
    const std::string output = process->readAllStandardOutput().toStdString();
    const nlohmann::json json = nlohmann::json::parse(output, nullptr, false);
    Measurement measured;
    if (process->error() == QProcess::FailedToStart) {
        measured.signal = SIGKILL;
        measured.last_words = process->errorString();
        return measured;
    }
    if (json.is_object())
        measured = Measurement::fromJson(json);
    else
        measured.signal =
            process->exitStatus() == QProcess::CrashExit ? process->exitCode() : SIGKILL;
    measured.last_words = lastWords(process->readAllStandardError());
    return measured;
}

} // namespace

MatrixRun::MatrixRun(const QList<Cell>& cells, int jobs, double patience)
    : jobs_(jobs),
      patience_(patience)
{
    for (const Cell& cell : cells) {
        waiting_.append(results_.size());
        results_.append({cell, {}, {}, 0});
    }
}

QList<Result> MatrixRun::run()
{
    QEventLoop loop;
    connect(this, &MatrixRun::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    for (int i = 0; i < jobs_; ++i)
        startNext();
    if (!results_.isEmpty())
        loop.exec();
    return results_;
}

void MatrixRun::startNext()
{
    if (waiting_.isEmpty())
        return;
    const int index = waiting_.takeFirst();
    auto* process = new BoundProcess(this);
    connect(process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this, process, index] { take(process, index); });
    connect(process, &QProcess::errorOccurred, this,
            [this, process, index](QProcess::ProcessError error) {
                if (error == QProcess::FailedToStart) // it does not finish then
                    take(process, index);
            });
    QTimer::singleShot(int(longest_cell * patience_), process, &QProcess::kill);
    process->start(QCoreApplication::applicationFilePath(),
                   {latin1("--cell"), results_.at(index).cell.name(), latin1("--patience"),
                    QString::number(patience_)});
}

void MatrixRun::take(QProcess* process, int index)
{
    Result& result = results_[index];
    const Measurement last = result.measured;
    result.measured = measurementOf(process);
    result.breaches = breaches(result.cell, result.measured, Limits::patient(patience_));
    const bool is_only_late = isOnlyLate(result.cell, result.measured);
    // What was late is not to be hidden by the run after it.
    result.measured.close = qMax(result.measured.close, last.close);
    result.measured.longest_answer = qMax(result.measured.longest_answer, last.longest_answer);
    process->deleteLater();
    // If many are late, it is not by chance.
    const int most = 20 + results_.size() / 5;
    if (++result.runs < 3 && !result.breaches.isEmpty() && again_ < most && is_only_late) {
        ++again_;
        waiting_.append(index);
        startNext();
        return;
    }
    Q_EMIT done(++done_, result.cell.name(), result.breaches);
    if (done_ == results_.size())
        Q_EMIT finished();
    else
        startNext();
}

} // namespace fault_matrix
