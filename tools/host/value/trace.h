#ifndef TOOLS_HOST_VALUE_TRACE_H
#define TOOLS_HOST_VALUE_TRACE_H

#include "tools/host/terminal/output.h"
#include "tools/host/value/status_text.h"

#include "interface/traffic.h"

#include <QMutex>
#include <QString>
#include <QStringList>

#include <optional>

namespace tovik_host::value {

/// A driver's traffic in lines, with the moment of each and the time since the one before.
///
/// Bytes that come from a device in pieces are one line, which stands there once something else
/// happens: with the moment of the first, the number of the pieces and their time.
class TrafficText
{
public:
    explicit TrafficText(StatusOf whose = StatusOf::service) : whose_(whose) {}

    /// Whose codes they are that end an exchange.
    void setStatusOf(StatusOf whose) { whose_ = whose; }
    QStringList linesOf(const Traffic& traffic);
    /// What is held back of the latest bytes.
    QStringList rest();

private:
    QString start(qint64 time);
    QStringList dump(qint64 time, const char* arrow, const QByteArray& bytes, const QString& more);
    QStringList service(const Traffic& traffic);

    StatusOf whose_;
    qint64 latest_ = 0;
    qint64 asked_ = 0; ///< When the request was made that is under way.
    QByteArray held_;
    qint64 held_first_ = 0;
    qint64 held_last_ = 0;
    int held_pieces_ = 0;
};

/// Writes a driver's traffic to the standard error or to a file, from whichever thread it comes.
class Trace : public TrafficListener
{
public:
    /// \param path of the file that it is appended to; empty: the standard error
    /// Throws UsageError if the file cannot be written.
    explicit Trace(const QString& path);
    ~Trace() override;

    void setStatusOf(StatusOf whose) { text_.setStatusOf(whose); }
    void hear(const Traffic& traffic) override;

private:
    Q_DISABLE_COPY(Trace)

    void write(const QStringList& lines);

    QMutex lock_;
    std::optional<terminal::LineOutput> file_; ///< Nothing: it is the standard error.
    TrafficText text_;
};

} // namespace tovik_host::value

#endif
