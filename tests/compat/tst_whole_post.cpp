#include "compat/whole_post.h"

#include <QCoreApplication>
#include <QNetworkReply>
#include <QTest>

/// What holds a post's body, as Qt has it.
class BodyHolder : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    QList<qint64> wanted;

public Q_SLOTS:
    void wantUploadDataSlot(qint64 size) { wanted << size; }

Q_SIGNALS:
    void haveUploadData(qint64 position, QByteArray bytes, bool is_end, qint64 size);
};

/// Which object has the body, and when it is asked for it. That a real request leaves in one piece,
/// the client's tests see on the wire.
class TestWholePost : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsHandedOverWithoutAHolder();
    void childThatHasTheBodyIsAsked();
    void holderIsNotAskedWhenNobodyListens();
};

namespace {

/// A reply without a slot for its body, as in Qt 4.8.
class Reply : public QNetworkReply
{
public:
    void abort() override {}

protected:
    qint64 readData(char*, qint64) override { return 0; }
};

void runEvents()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

} // namespace

void TestWholePost::nothingIsHandedOverWithoutAHolder()
{
    Reply reply;
    QVERIFY(!whole_post::handOverBody(&reply, 5));
    new QObject(&reply);
    QVERIFY(!whole_post::handOverBody(&reply, 5));
    QCOMPARE(reply.children().size(), 1);
}

void TestWholePost::childThatHasTheBodyIsAsked()
{
    Reply reply;
    new QObject(&reply);
    auto* holder = new BodyHolder(&reply);
    connect(holder, &BodyHolder::haveUploadData, this, [] {});
    QVERIFY(whole_post::handOverBody(&reply, 5));
    QCOMPARE(holder->wanted, QList<qint64>());
    runEvents();
    QCOMPARE(holder->wanted, QList<qint64>{5});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(holder->children().isEmpty());
}

void TestWholePost::holderIsNotAskedWhenNobodyListens()
{
    Reply reply;
    auto* holder = new BodyHolder(&reply);
    QVERIFY(whole_post::handOverBody(&reply, 5));
    runEvents();
    QCOMPARE(holder->wanted, QList<qint64>());
}

QTEST_GUILESS_MAIN(TestWholePost)
#include "tst_whole_post.moc"
