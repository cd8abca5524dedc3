#include "tools/host/service/cloud_client.h"

#include "tools/host/terminal/unix_signals.h"

#include "cloud/post.h"

#include <QEventLoop>
#include <QTimer>
#include <QUrl>

#include <atomic>
#include <stdexcept>

namespace tovik_host::service {

ClientOutcome clientOutcome(const ::service::Outcome& outcome, const QString& type_name)
{
    ClientOutcome told;
    told.result = outcome.result;
    told.kind = ClientOutcome::BadReply;
    told.reason = u"the reply is not understood: %1"_s.arg(outcome.detail);
    switch (outcome.reason) {
    case ::service::Outcome::fine:
        told.kind = ClientOutcome::Done;
        told.reason.clear();
        break;
    case ::service::Outcome::unknown_type:
        told.kind = ClientOutcome::Done;
        told.reason = u"\"%1\" is no type"_s.arg(type_name);
        break;
    case ::service::Outcome::other_kind:
        told.kind = ClientOutcome::Done;
        told.reason = u"the value is %1, which is no %2"_s.arg(outcome.detail, type_name);
        break;
    case ::service::Outcome::refused:
        told.kind = ClientOutcome::Failed;
        told.reason = u"the service refused with its error code %1"_s.arg(outcome.result);
        break;
    case ::service::Outcome::no_answer:
        told.kind = ClientOutcome::Failed;
        told.reason = outcome.detail;
        break;
    default:
        break;
    }
    return told;
}

QString withoutUserInfo(const QString& text, const QString& url)
{
    const QUrl parsed(url);
    QString shown = text;
    if (parsed.userInfo().isEmpty())
        return shown;
    for (const auto form : {QUrl::FullyEncoded, QUrl::PrettyDecoded, QUrl::FullyDecoded}) {
        const QString user = parsed.userName(form);
        shown.remove(user + u':' + parsed.password(form) + u'@');
        shown.replace(u"//%1@"_s.arg(user), u"//"_s);
    }
    return shown;
}

/// One step, as both threads see it. The client's thread writes, and the other one reads once
/// `ended` is told or the thread is over.
struct CloudClient::Step
{
    QList<PropertyTovikIotGroup> groups;
    PropertyTovikIotDataItem item;
    ::service::Outcome outcome;
    bool raised = false;
    std::atomic<bool> ended{false};
    std::atomic<bool> given_up{false};
    std::atomic<int> signs_of_life{0};

    void run(const Work& work)
    {
        // Left over from a thread that ended before it came to it.
        if (given_up)
            return;
        try {
            outcome = work();
        } catch (const std::runtime_error&) {
            // It must not leave through Qt's event loop.
            raised = true;
        }
        ended = true;
    }
};

CloudClient::CloudClient(const config::Account& service)
    : property_(config::recordOf(service, {})),
      conversation_(&property_)
{
    worker_.moveToThread(&thread_);
}

CloudClient::~CloudClient()
{
    endThread();
}

void CloudClient::setListener(TrafficListener* listener)
{
    conversation_.memory()->listener = listener;
}

ClientOutcome CloudClient::login(double timeout)
{
    return run(std::make_shared<Step>(), timeout, [this] {
        return conversation_.login(property_.project, property_.email, property_.password, &token_);
    });
}

ClientOutcome
CloudClient::loadCatalogue(double timeout,
                           const std::function<void(const CatalogueProgress&)>& progress)
{
    const StepPtr step = std::make_shared<Step>();
    const auto tell = [this, step, progress](const CatalogueProgress& done) {
        ++step->signs_of_life;
        if (!progress)
            return;
        const auto pass_on = [step, progress, done] {
            if (!step->given_up)
                progress(done);
        };
        QMetaObject::invokeMethod(this, pass_on, Qt::QueuedConnection);
    };
    const ClientOutcome outcome = run(step, timeout, [this, step, tell] {
        return conversation_.groupList(token_, &step->groups, tell);
    });
    groups_ = step->groups;
    return outcome;
}

ClientOutcome CloudClient::readValue(const QString& id, const QString& type_name, double timeout,
                                     QVariant* value)
{
    const StepPtr step = std::make_shared<Step>();
    step->item.dataitem_id = id;
    step->item.type = type_name;
    step->item.value = *value;
    const ClientOutcome outcome =
        run(step, timeout, [this, step] { return conversation_.readValue(token_, &step->item); });
    *value = step->item.value;
    return outcome;
}

bool CloudClient::hasResumed() const
{
    return conversation_.memory()->session.isResumed();
}

void CloudClient::interrupt()
{
    interrupted_ = true;
    Q_EMIT stepOver();
}

ClientOutcome CloudClient::run(const StepPtr& step, double timeout, const Work& work)
{
    const terminal::Stopwatch elapsed;
    if (!interrupted_) {
        start(step, work);
        waitFor(step, timeout);
    }
    if (!step->ended) {
        step->given_up = true;
        endThread();
    }
    ClientOutcome outcome = judge(*step, timeout);
    outcome.seconds = elapsed.seconds();
    return outcome;
}

void CloudClient::start(const StepPtr& step, const Work& work)
{
    if (!thread_.isRunning())
        thread_.start();
    const auto do_work = [this, step, work] {
        step->run(work);
        // By way of this object, so that it comes after the progress that was told before it.
        QMetaObject::invokeMethod(this, &CloudClient::stepOver, Qt::QueuedConnection);
    };
    QMetaObject::invokeMethod(&worker_, do_work, Qt::QueuedConnection);
}

void CloudClient::waitFor(const StepPtr& step, double timeout)
{
    QEventLoop loop;
    QTimer timer;
    int signs_seen = 0;
    const auto look = [&] {
        const int signs = step->signs_of_life;
        if (signs == signs_seen)
            loop.quit();
        signs_seen = signs;
    };
    // A sign of life is heard at the end of an interval, so a silence lasts up to twice as long.
    connect(&timer, &QTimer::timeout, &loop, look);
    connect(this, &CloudClient::stepOver, &loop, [&] {
        if (step->ended || interrupted_)
            loop.quit();
    });
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(int(timeout * 1000));
    loop.exec();
}

ClientOutcome CloudClient::judge(const Step& step, double timeout) const
{
    ClientOutcome outcome;
    // A step that is given up ends as well, with the client's thread, and says nothing then.
    if (!step.given_up && step.raised) {
        outcome.kind = ClientOutcome::BadReply;
        outcome.result = ::service::client_failure;
        outcome.reason =
            u"the reply, or an entry of the list in it, is no JSON object; such a reply ends a "
            "host that runs the driver"_s;
    } else if (!step.given_up) {
        outcome = clientOutcome(step.outcome, step.item.type);
    } else if (interrupted_) {
        outcome.kind = ClientOutcome::Interrupted;
        outcome.reason = u"interrupted"_s;
    } else {
        outcome.kind = ClientOutcome::TimedOut;
        outcome.reason = u"no answer within %1 s"_s.arg(timeout);
    }
    outcome.reason = withoutUserInfo(outcome.reason, property_.host);
    return outcome;
}

void CloudClient::endThread()
{
    thread_.quit();
    thread_.wait();
}

} // namespace tovik_host::service
