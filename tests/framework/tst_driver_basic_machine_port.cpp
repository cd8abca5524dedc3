#include "tests/framework/machine_port.h"
#include "tests/framework/test_driver.h"
#include "tests/support/log_recorder.h"
#include "tests/support/pty.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

const int patience = 30000; // milliseconds; reached only by a failing test

} // namespace

/// A driver on the port class of the machine's own serial port library.
class TestDriverBasicMachinePort : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void lostLineHasNoAnswer();
    void lostLineHasNoTransparentAnswer();
    void waitsAsLongAsAnyOther();
    void inputEndsTheWait();
    void lostLineEndsTheWait();

private:
    std::unique_ptr<Pty> pty_;
    std::unique_ptr<MachinePort> port_;
    std::unique_ptr<TestDriver> driver_;
};

void TestDriverBasicMachinePort::init()
{
    driver_.reset();
    port_.reset();
    pty_.reset(new Pty);
    port_.reset(new MachinePort(pty_->portName()));
    QVERIFY(port_->open(QIODevice::ReadWrite));
    driver_.reset(new TestDriver(port_.get()));
}

void TestDriverBasicMachinePort::lostLineHasNoAnswer()
{
    driver_->on_wait = [](int, int* ready) {
        *ready = 1;
        return 0;
    };
    port_->has_hung_up = true;
    LogRecorder log;
    QByteArray data;
    driver_->doCmdSM(CMD_READ, QString(), 0, 2, &data, 0, 0, 0);
    QCOMPARE(driver_->error_code_, 0x20010003);
    QCOMPARE(log.take(), QStringList(QLatin1String("Protocol_Invalid_Length: 0 ( 5 )")));
}

void TestDriverBasicMachinePort::lostLineHasNoTransparentAnswer()
{
    port_->has_hung_up = true;
    driver_->response_timeout_ = 200;
    Answers answers(driver_.get());
    LogRecorder log;
    driver_->RunTransparentRequest("request");
    QCOMPARE(answers.take(), QStringList(QLatin1String("transparent - 0x400a0000")));
    QCOMPARE(log.take(), QStringList());
}

// Else the end of an answer would be judged by gaps half as long as with another port.
void TestDriverBasicMachinePort::waitsAsLongAsAnyOther()
{
    QVERIFY(pty_->send("before"));
    QTRY_COMPARE(port_->bytesAvailable(), 6);
    QElapsedTimer timer;
    timer.start();
    driver_->waitForLinkInput(50);
    QVERIFY(timer.elapsed() >= 49);
    QVERIFY(timer.elapsed() < patience);
}

// Input that comes between a look and the wait ends none: what can happen to one wait happens to
// hardly any of several.
void TestDriverBasicMachinePort::inputEndsTheWait()
{
    const int long_wait = 5000;
    bool has_ended = false;
    for (int rounds = 0; rounds < 5 && !has_ended; ++rounds) {
        QVERIFY(pty_->send("input"));
        QElapsedTimer timer;
        timer.start();
        while (port_->bytesAvailable() < 5 && timer.elapsed() < patience)
            driver_->waitForLinkInput(long_wait);
        has_ended = timer.elapsed() < long_wait;
        QCOMPARE(port_->readAll(), QByteArray("input"));
    }
    QVERIFY(has_ended);
}

void TestDriverBasicMachinePort::lostLineEndsTheWait()
{
    port_->has_hung_up = true;
    QElapsedTimer timer;
    timer.start();
    driver_->waitForLinkInput(patience);
    QVERIFY(timer.elapsed() < patience);
}

QTEST_GUILESS_MAIN(TestDriverBasicMachinePort)
#include "tst_driver_basic_machine_port.moc"
