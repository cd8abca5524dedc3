#ifndef TOOLS_HOST_SERVICE_CLOUD_CLIENT_H
#define TOOLS_HOST_SERVICE_CLOUD_CLIENT_H

#include "tools/host/config/config.h"

#include "cloud/conversation.h"
#include "property/property_tovik_iot.h"

#include <QObject>
#include <QThread>

#include <functional>
#include <memory>

class TrafficListener;

namespace tovik_host::service {

/// How one step of a conversation with the service ended.
struct ClientOutcome
{
    enum Kind
    {
        Done,
        Failed,     ///< The service refused, or could not be reached.
        TimedOut,   ///< Given up after the time.
        BadReply,   ///< A reply came and was not what the service's interface says.
        Interrupted ///< CloudClient::interrupt() was called.
    };

    /// Whether the service itself has said no, by a code of its own.
    bool isRefusal() const { return kind == Failed && result != 256; }

    Kind kind = Done;
    int result = 0;     ///< 0, 256 (found by the client), or the service's own code.
    double seconds = 0; ///< How long the step took.
    /// For the user, without secrets: the service's code, the network's words, or what was wrong
    /// with the reply. Empty when all is well.
    QString reason = QString();
};

/// \a outcome for the user. Does not know of times.
/// \param type_name of the item that was read, if one was
ClientOutcome clientOutcome(const ::service::Outcome& outcome,
                            const QString& type_name = QString());

/// \a text without user name and password of the address \a url, which Qt quotes in its messages.
QString withoutUserInfo(const QString& text, const QString& url);

using CatalogueProgress = Conversation::Progress;

/// A conversation with the service: what the driver's client says and hears, in a thread of its own
/// as in the driver, each step with a time limit.
///
/// To be used from one thread with a QCoreApplication; a step runs that thread's event loop, so
/// that signals are heard. A step that is given up leaves nothing running, and another one may
/// follow.
class CloudClient : public QObject
{
    Q_OBJECT

public:
    explicit CloudClient(const config::Account& service);
    /// Ends the client's thread at once, also while the service keeps a request waiting.
    ~CloudClient() override;

    /// Has \a listener hear of every request, in the client's thread. Not owned; to be called
    /// before the first step.
    void setListener(TrafficListener* listener);

    /// Logs in; needed before the other steps. \a timeout is in seconds here and below.
    ClientOutcome login(double timeout);
    /// Loads all groups and items. \a timeout is for each request of it, as their number is the
    /// service's; \a progress is called in the caller's thread.
    ClientOutcome loadCatalogue(double timeout,
                                const std::function<void(const CatalogueProgress&)>& progress = {});
    /// What loadCatalogue() has loaded; after a failure the groups that came before it.
    const QList<PropertyTovikIotGroup>& groups() const { return groups_; }
    /// Reads one value. A value that is not of the kind of the type \a type_name leaves \a value as
    /// it is, and the step is Done with the reason told.
    ClientOutcome readValue(const QString& id, const QString& type_name, double timeout,
                            QVariant* value);
    /// Whether the latest step's connection has resumed a TLS session; to be asked between steps.
    bool hasResumed() const;

public Q_SLOTS:
    /// Ends the current step and refuses all further ones; for UnixSignals::endAsked.
    void interrupt();

Q_SIGNALS:
    /// The client's thread has done its work for a step, or the step is to be given up.
    void stepOver();

private:
    struct Step;
    using StepPtr = std::shared_ptr<Step>;

    using Work = std::function<::service::Outcome()>;

    /// Runs \a work in the client's thread.
    ClientOutcome run(const StepPtr& step, double timeout, const Work& work);
    void start(const StepPtr& step, const Work& work);
    /// Until \a step has ended, has shown no sign of life for \a timeout, or is interrupted.
    void waitFor(const StepPtr& step, double timeout);
    ClientOutcome judge(const Step& step, double timeout) const;
    void endThread();

    PropertyTovikIot property_;
    const Conversation conversation_;
    QThread thread_;
    QObject worker_; ///< In the thread.
    QString token_;  ///< In the thread, too.
    QList<PropertyTovikIotGroup> groups_;
    bool interrupted_ = false;
};

} // namespace tovik_host::service

#endif
