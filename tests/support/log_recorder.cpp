#include "tests/support/log_recorder.h"

#include <QMutexLocker>

namespace {

LogRecorder* current = nullptr;

} // namespace

LogRecorder::LogRecorder() : previous_(nullptr)
{
    current = this;
    previous_ = qInstallMessageHandler(record);
}

LogRecorder::~LogRecorder()
{
    qInstallMessageHandler(previous_);
    current = nullptr;
}

QStringList LogRecorder::lines() const
{
    const QMutexLocker locker(&mutex_);
    return lines_;
}

QStringList LogRecorder::take()
{
    const QMutexLocker locker(&mutex_);
    QStringList lines;
    lines.swap(lines_);
    return lines;
}

bool LogRecorder::contains(const char* line) const
{
    return lines().contains(QString::fromUtf8(line));
}

int LogRecorder::count(const char* line) const
{
    return lines().count(QString::fromUtf8(line));
}

void LogRecorder::record(QtMsgType, const QMessageLogContext&, const QString& text)
{
    const QMutexLocker locker(&current->mutex_);
    current->lines_.append(text);
}
