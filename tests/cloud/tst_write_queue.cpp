#include "cloud/post.h"
#include "cloud/write_queue.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_service.h"

#include <QPointer>
#include <QTcpSocket>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <functional>
#include <memory>
#include <stdexcept>

namespace {

const int short_patience = 10;
const int endless_patience = 3600 * 1000;

/// Writes are posts of their numbers here, and -1 is one that cannot be put into a request.
class Writer : public WriteQueue::Sender
{
public:
    explicit Writer(const QString& url) : url_(url) {}

    Post* postWrite(int index, const QVariant& value) override
    {
        if (index < 0)
            throw std::overflow_error("no number");
        posts.append(new Post(value.toString(), url_, &memory_));
        return posts.last();
    }

    void endWrite(Post* post) override
    {
        const QString text = QString::fromStdString(post->takeBytes());
        if (text == QLatin1String("[]"))
            throw std::runtime_error("no object");
        ended.append(text);
    }

    QList<QPointer<Post>> posts;
    QStringList ended;

private:
    QString url_;
    PostMemory memory_;
};

} // namespace

/// The row in which writes go to the service.
class TestWriteQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWriteAloneIsWaitedFor();
    void aSecondOneIsNot();
    void noMoreThanSixteenAreOnTheirWay();
    void oneWithoutAnAnswerHoldsUpTheNextOnly();
    void anOldAnswerDoesNotLetTheNextGo();
    void whatWaitsEndsWithTheThread();
    void anErrorOfTheAwaitedOneLeavesAdd();
    void postsAreDeleted();
    void anErrorLeavesTheQueueUsable();
    void whatWaitsGoesWithTheQueue();

private:
    ScriptedService service_;
};

void TestWriteQueue::aWriteAloneIsWaitedFor()
{
    Writer writer(service_.url());
    WriteQueue queue(&writer);
    service_.queue("first");
    queue.add(0, 0);
    QCOMPARE(writer.ended, QStringList{QStringLiteral("first")});
    service_.queue("second");
    queue.add(0, 0);
    QCOMPARE(writer.ended.size(), 2);
}

void TestWriteQueue::aSecondOneIsNot()
{
    Writer writer(service_.url());
    WriteQueue queue(&writer, endless_patience);
    service_.reset();
    int ended_when_added = -1;
    QTimer::singleShot(0, &queue, [&] {
        queue.add(0, 1);
        ended_when_added = writer.ended.size();
    });
    queue.add(0, 0);
    QCOMPARE(ended_when_added, 0);
    QTRY_COMPARE(writer.ended.size(), 2);
    QCOMPARE(service_.bodies(), (QList<QByteArray>{"0", "1"}));
}

void TestWriteQueue::noMoreThanSixteenAreOnTheirWay()
{
    Writer writer(service_.url());
    WriteQueue queue(&writer, short_patience);
    service_.reset();
    bool is_silent = true;
    service_.setHandler([&](const ScriptedRequest&) {
        return is_silent ? ScriptedReply::hang() : ScriptedReply::json("{}");
    });
    int most = 0;
    // Looks when there was time for many more than sixteen, then lets the service speak.
    QTimer look;
    connect(&look, &QTimer::timeout, [&] {
        most = service_.requests().size();
        if (most < WriteQueue::most_posts)
            return;
        look.stop();
        QTimer::singleShot(10 * short_patience, &queue, [&] {
            most = service_.requests().size();
            is_silent = false;
            for (QTcpSocket* socket : service_.findChildren<QTcpSocket*>())
                socket->abort();
        });
    });
    look.start(5);
    QTimer::singleShot(0, &queue, [&] {
        for (int i = 1; i < 40; ++i)
            queue.add(0, i);
    });
    queue.add(0, 0);
    QTRY_COMPARE_WITH_TIMEOUT(writer.ended.size(), 40, 50000);
    QCOMPARE(most, int(WriteQueue::most_posts));
    // Those that were lost without an answer came twice, since Qt posts them again.
    QCOMPARE(service_.requests().size(), 40 + WriteQueue::most_posts);
}

/// Were each of the ten to wait for its patience, they would need half a minute.
void TestWriteQueue::oneWithoutAnAnswerHoldsUpTheNextOnly()
{
    Writer writer(service_.url());
    WriteQueue queue(&writer, 3000);
    service_.reset();
    service_.setHandler([](const ScriptedRequest& request) {
        return request.body == "1" ? ScriptedReply::hang() : ScriptedReply::json("{}");
    });
    QTimer::singleShot(0, &queue, [&] {
        for (int i = 1; i <= 11; ++i)
            queue.add(0, i);
    });
    queue.add(0, 0);
    QTRY_COMPARE_WITH_TIMEOUT(writer.ended.size(), 11, 20000);
    QCOMPARE(service_.bodies(),
             (QList<QByteArray>{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"}));
}

/// The first write is left behind by the second; its late answer says nothing about the second, for
/// which the third one waits.
void TestWriteQueue::anOldAnswerDoesNotLetTheNextGo()
{
    Writer writer(service_.url());
    WriteQueue queue(&writer, 1000);
    service_.reset();
    QTcpSocket* first = nullptr;
    service_.setHandler([&](const ScriptedRequest& request) {
        if (request.body == "0")
            first = service_.findChildren<QTcpSocket*>().last();
        if (request.body == "1") {
            first->write(ScriptedReply::json("late").bytes);
            first->disconnectFromHost();
        }
        return ScriptedReply::hang();
    });
    int posted_when_answered = 0;
    QTimer look;
    connect(&look, &QTimer::timeout, [&] {
        if (!posted_when_answered && !writer.ended.isEmpty())
            posted_when_answered = writer.posts.size();
    });
    look.start(1);
    QTimer::singleShot(0, &queue, [&] {
        queue.add(0, 1);
        queue.add(0, 2);
    });
    queue.add(0, 0);
    QTRY_COMPARE(writer.posts.size(), 3);
    QCOMPARE(writer.ended, QStringList{QStringLiteral("late")});
    QCOMPARE(posted_when_answered, 2);
}

/// Timers and connections cannot be given back from another thread.
void TestWriteQueue::whatWaitsEndsWithTheThread()
{
    ScriptedService service;
    service.setHandler([](const ScriptedRequest&) { return ScriptedReply::hang(); });
    LogRecorder log;
    Writer writer(service.url());
    QThread thread;
    QObject inside;
    inside.moveToThread(&thread);
    std::unique_ptr<WriteQueue> queue;
    thread.start();
    QTimer::singleShot(0, &inside, [&] {
        queue.reset(new WriteQueue(&writer, endless_patience));
        QTimer::singleShot(0, queue.get(), [&] { queue->add(0, 1); });
        queue->add(0, 0);
    });
    const bool has_come = QTest::qWaitFor([&] { return !service.requests().isEmpty(); });
    thread.quit();
    QVERIFY(thread.wait(10000));
    QVERIFY(has_come);
    QVERIFY(!writer.posts.first());
    // Nothing old is written when the thread begins anew.
    thread.start();
    QTimer::singleShot(0, &inside, [&] { queue->add(0, 2); });
    const bool comes_again = QTest::qWaitFor([&] { return service.requests().size() == 2; });
    thread.quit();
    QVERIFY(thread.wait(10000));
    QVERIFY(comes_again);
    QCOMPARE(service.bodies(), (QList<QByteArray>{"0", "2"}));
    queue.reset();
    QVERIFY2(log.take().isEmpty(), "Qt complains of timers of another thread");
    QCOMPARE(writer.posts.size(), 2);
    QCOMPARE(writer.ended.size(), 2);
}

/// Not the event loop that runs inside, where nobody could catch it.
void TestWriteQueue::anErrorOfTheAwaitedOneLeavesAdd()
{
    Writer writer(service_.url());
    WriteQueue queue(&writer);
    service_.reset();
    service_.setHandler(nullptr);
    service_.queue("[]");
    QVERIFY_EXCEPTION_THROWN(queue.add(0, 0), std::runtime_error);
    service_.queue("after");
    queue.add(0, 0);
    QCOMPARE(writer.ended, QStringList{QStringLiteral("after")});
}

void TestWriteQueue::postsAreDeleted()
{
    Writer writer(service_.url());
    WriteQueue queue(&writer);
    service_.setHandler([](const ScriptedRequest&) { return ScriptedReply::json("{}"); });
    QTimer::singleShot(0, &queue, [&] {
        for (int i = 1; i < 5; ++i)
            queue.add(0, i);
    });
    queue.add(0, 0);
    QTRY_COMPARE(writer.ended.size(), 5);
    for (const QPointer<Post>& post : writer.posts)
        QTRY_VERIFY(!post);
}

void TestWriteQueue::anErrorLeavesTheQueueUsable()
{
    Writer writer(service_.url());
    WriteQueue queue(&writer);
    QVERIFY_EXCEPTION_THROWN(queue.add(-1, 0), std::overflow_error);
    service_.queue("after");
    queue.add(0, 0);
    QCOMPARE(writer.ended, QStringList{QStringLiteral("after")});
}

void TestWriteQueue::whatWaitsGoesWithTheQueue()
{
    Writer writer(service_.url());
    service_.reset();
    service_.setHandler([](const ScriptedRequest& request) {
        return request.body == "0" ? ScriptedReply::json("{}") : ScriptedReply::hang();
    });
    {
        WriteQueue queue(&writer, endless_patience);
        QTimer::singleShot(0, &queue, [&] {
            for (int i = 1; i < 5; ++i)
                queue.add(0, i);
        });
        queue.add(0, 0);
        QTRY_COMPARE(service_.requests().size(), 2);
    }
    QCOMPARE(writer.ended.size(), 1);
    QVERIFY(!writer.posts.last());
    QCOMPARE(writer.posts.size(), 2);
}

QTEST_GUILESS_MAIN(TestWriteQueue)
#include "tst_write_queue.moc"
