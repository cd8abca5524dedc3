#include "tools/host/cloud_client.h"

#include "cloud/tovik_iot.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <atomic>
#include <stdexcept>

namespace tovik_host {

namespace {

/// Where the lines of this thread's step go.
thread_local QStringList* captured_lines = nullptr;
std::atomic<QtMessageHandler> next_handler{nullptr};

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (captured_lines)
        captured_lines->append(text);
    if (const QtMessageHandler next = next_handler)
        next(type, context, text);
}

/// Listens to Qt's messages for the time of a step, and passes them on to whoever did before.
class MessageTap
{
public:
    MessageTap() { next_handler = qInstallMessageHandler(handleMessage); }
    ~MessageTap() { qInstallMessageHandler(next_handler); }
    MessageTap(const MessageTap&) = delete;
    MessageTap& operator=(const MessageTap&) = delete;
};

} // namespace

/// One step, as both threads see it. The client's thread writes, and the other one reads once
/// `ended` is told or the thread is over.
struct CloudClient::Step
{
    QList<PropertyTovikIotGroup> groups;
    QVariant value;
    QString problem; ///< Of a step that is done all the same.
    QStringList lines;
    int result = 0;
    bool raised = false;
    std::atomic<bool> ended{false};
    std::atomic<bool> given_up{false};
    std::atomic<int> signs_of_life{0};

    void run(const std::function<int()>& work)
    {
        // Left over from a thread that ended before it came to it.
        if (given_up)
            return;
        captured_lines = &lines;
        try {
            result = work();
        } catch (const std::runtime_error&) {
            // It must not leave through Qt's event loop.
            raised = true;
        }
        captured_lines = nullptr;
        ended = true;
    }
};

CloudClient::CloudClient(const ServiceConfig& service) : service_(service)
{
    property_.host = service.url;
    property_.project = service.project;
    property_.email = service.email;
    property_.password = service.password;
    client_ = std::make_unique<TovikIot>(&property_);
    client_->moveToThread(&thread_);
}

CloudClient::~CloudClient()
{
    endThread();
}

ClientOutcome CloudClient::login(double timeout)
{
    return run(std::make_shared<Step>(), timeout, [this] {
        return client_->Login(property_.project, property_.email, property_.password);
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
        return cloud_steps::loadGroups(*client_, property_.host, tell, &step->groups);
    });
    groups_ = step->groups;
    return outcome;
}

ClientOutcome CloudClient::readValue(const QString& id, const QString& type_name, double timeout,
                                     QVariant* value)
{
    const StepPtr step = std::make_shared<Step>();
    const ClientOutcome outcome = run(step, timeout, [this, step, id, type_name] {
        return cloud_steps::readValue(*client_, property_.host, id, type_name, &step->value,
                                      &step->problem);
    });
    if (step->value.isValid())
        *value = step->value;
    return outcome;
}

void CloudClient::interrupt()
{
    interrupted_ = true;
    Q_EMIT stepOver();
}

ClientOutcome CloudClient::run(const StepPtr& step, double timeout,
                               const std::function<int()>& work)
{
    QElapsedTimer elapsed;
    elapsed.start();
    const MessageTap tap;
    if (!interrupted_) {
        start(step, work);
        waitFor(step, timeout);
    }
    if (!step->ended) {
        step->given_up = true;
        endThread();
    }
    ClientOutcome outcome = judge(*step, timeout);
    outcome.seconds = double(elapsed.nsecsElapsed()) / 1e9;
    return outcome;
}

void CloudClient::start(const StepPtr& step, const std::function<int()>& work)
{
    if (!thread_.isRunning())
        thread_.start();
    const auto do_work = [this, step, work] {
        step->run(work);
        // By way of this object, so that it comes behind the progress that was told before it.
        QMetaObject::invokeMethod(this, &CloudClient::stepOver, Qt::QueuedConnection);
    };
    QMetaObject::invokeMethod(client_.get(), do_work, Qt::QueuedConnection);
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
    if (!step.given_up) {
        outcome = judgeStep(step.result, step.raised, step.lines);
        if (outcome.kind == ClientOutcome::Done)
            outcome.reason = step.problem;
    } else if (interrupted_) {
        outcome.kind = ClientOutcome::Interrupted;
        outcome.reason = QStringLiteral("interrupted");
    } else {
        outcome.kind = ClientOutcome::TimedOut;
        outcome.reason = QStringLiteral("no answer within %1 s").arg(timeout);
    }
    outcome.reason = withoutUserInfo(outcome.reason, service_.url);
    return outcome;
}

void CloudClient::endThread()
{
    thread_.quit();
    thread_.wait();
}

} // namespace tovik_host
