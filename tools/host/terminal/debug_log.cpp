#include "tools/host/terminal/context.h"

#include <QDateTime>
#include <QMutexLocker>

#include <atomic>
#include <unistd.h>

namespace tovik_host::terminal {

namespace {

const int kept_lines = 100;

std::atomic<DebugLog*> current_log{nullptr};

void handleMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    DebugLog* log = current_log;
    if (log)
        log->take(text);
    // The process ends with this message: nobody else will show it.
    if (type == QtFatalMsg)
        Output(STDERR_FILENO).foreignLine(text);
}

} // namespace

DebugLog::DebugLog()
{
    current_log = this;
    qInstallMessageHandler(handleMessage);
}

DebugLog::~DebugLog()
{
    qInstallMessageHandler(nullptr);
    current_log = nullptr;
}

void DebugLog::start(const QString& path, bool echoes)
{
    const QMutexLocker locker(&lock_);
    if (!path.isEmpty())
        file_.emplace(u"the log"_s, path);
    echoes_ = echoes;
}

QStringList DebugLog::lastLines(int count) const
{
    const QMutexLocker locker(&lock_);
    QStringList shown;
    for (const KeptLine& line : lines_.mid(qMax(0, lines_.size() - count))) {
        const QString times = line.count > 1 ? u"  (%1 times)"_s.arg(line.count) : QString();
        shown << line.text + times;
    }
    return shown;
}

void DebugLog::take(const QString& line)
{
    const QMutexLocker locker(&lock_);
    if (!lines_.isEmpty() && lines_.last().text == line)
        ++lines_.last().count;
    else
        lines_ << KeptLine{line, 1};
    if (lines_.size() > kept_lines)
        lines_.removeFirst();
    if (file_)
        file_->line(QDateTime::currentDateTime().toString(Qt::ISODateWithMs) + u' ' + line);
    if (echoes_)
        Output(STDERR_FILENO).foreignLine(line);
}

} // namespace tovik_host::terminal
