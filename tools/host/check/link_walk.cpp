#include "tools/host/check/check.h"
#include "tools/host/check/judge.h"
#include "tools/host/driver/setup.h"
#include "tools/host/terminal/exit_code.h"

#include <QMutexLocker>

#include <utility>

namespace tovik_host::check {

namespace {

/// Reads without an answer in a row after which the other items are left alone.
const int most_silent = 3;
/// So many answers tell how long they take.
const int enough_times = 5;

/// Hears how each request goes, and hands all on to the trace.
class LinkEar : public TrafficListener
{
public:
    void passOnTo(TrafficListener* next) { next_ = next; }
    void hear(const Traffic& traffic) override
    {
        if (next_)
            next_->hear(traffic);
        const QMutexLocker locker(&lock_);
        if (traffic.kind == Traffic::discarded) {
            heard_.stray_bytes += traffic.bytes.size();
        } else if (traffic.kind == Traffic::sent) {
            heard_.has_sent = true;
            sent_ = traffic.time;
        } else if (traffic.kind == Traffic::taken && heard_.has_sent) {
            heard_.bytes += traffic.bytes.size();
            heard_.seconds = double(traffic.time - sent_) / 1e6;
        }
    }
    /// What has been heard since the last call.
    LinkRead take()
    {
        const QMutexLocker locker(&lock_);
        LinkRead heard;
        std::swap(heard, heard_);
        return heard;
    }

private:
    TrafficListener* next_ = nullptr;
    QMutex lock_;
    LinkRead heard_;
    qint64 sent_ = 0;
};

/// One run: takes the steps one after the other and shows each as it comes.
class LinkWalk
{
public:
    LinkWalk(const config::CommonOptions& common, const QStringList& addresses)
        : setup_(common, addresses, context_),
          as_json_(common.json)
    {
        if (setup_.config.items.isEmpty()) {
            throw terminal::UsageError(
                u"there is nothing to ask the device for: name an address that it has"_s);
        }
        ear_.passOnTo(setup_.trace.get());
        setup_.plugin.setListener(&ear_);
    }

    int run()
    {
        if (open())
            readAll();
        return tellVerdict(context_, judgeAll(steps_, context_.unix_signals.endRequested()),
                           as_json_);
    }

private:
    void show(const CheckStep& step)
    {
        steps_ << step;
        context_.out.line(stepLine(step, as_json_));
    }

    bool open()
    {
        const terminal::Stopwatch elapsed;
        const QString problem = setup_.host.open();
        show(judgeOpening(setup_.config, problem, elapsed.seconds()));
        show(judgeLineSettings(setup_.config));
        if (problem.isEmpty())
            return true;
        QVector<LinkRead> none;
        for (const config::ItemConfig& item : qAsConst(setup_.config.items)) {
            none << LinkRead();
            none.last().item = item;
        }
        show(makeStep("answer", Severity::not_tried));
        show(judgeStation(none));
        showItems(none);
        return false;
    }

    void readAll()
    {
        QVector<LinkRead> reads;
        int silent = 0;
        for (const config::ItemConfig& item : qAsConst(setup_.config.items)) {
            LinkRead one;
            one.item = item;
            if (silent < most_silent && !context_.unix_signals.endRequested())
                one = read(item);
            silent = one.has_sent && one.bytes == 0 ? silent + 1 : 0;
            reads << one;
        }
        show(judgeAnyAnswer(setup_.config, reads));
        show(judgeStation(reads));
        showItems(reads);
        // The same item again, as often as it takes to tell a usual time.
        for (int i = 0; i < reads.size() && reads.size() < enough_times; ++i) {
            if (reads.at(i).isGood() && !context_.unix_signals.endRequested())
                reads << read(reads.at(i).item);
        }
        show(judgeTimes(setup_.config, reads));
    }

    LinkRead read(const config::ItemConfig& item)
    {
        ear_.take();
        const driver::Answer answer = setup_.host.read(item);
        LinkRead read = ear_.take();
        read.item = item;
        read.is_tried = true;
        read.status = answer.status;
        read.problem = setup_.problemOf(item, answer);
        if (read.isGood())
            read.value = config::valueOf(item, answer.bytes).value_or(QString());
        return read;
    }

    void showItems(const QVector<LinkRead>& reads)
    {
        for (const LinkRead& read : reads)
            show(judgeLinkItem(read));
    }

    terminal::Context context_;
    LinkEar ear_; ///< The driver in the next member speaks to it up to its end.
    driver::DeviceSetup setup_;
    bool as_json_;
    CheckSteps steps_;
};

} // namespace

int runLinkCheck(const config::CommonOptions& common, const QStringList& addresses)
{
    return LinkWalk(common, addresses).run();
}

} // namespace tovik_host::check
