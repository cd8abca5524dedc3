#include "tests/framework/driver_bench.h"
#include "tests/support/log_recorder.h"

#include <QTest>

#include <climits>
#include <cstring>
#include <memory>

namespace {

QStringList one(const char* line)
{
    return QStringList(QString::fromLatin1(line));
}

} // namespace

/// Reads and writes of the host: attempts, data, answers.
class TestDriverBasicSlots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { bench_.reset(); }
    void attempts_data();
    void attempts();
    void codesThatEndAttempts_data();
    void codesThatEndAttempts();
    void waitCodes_data();
    void waitCodes();
    void dataIsResetForEachAttempt();
    void codeIsResetForEachAttempt();
    void answerToAReadCarriesWhatWasRead();
    void answerToAWriteCarriesTheHostsBytes();
    void failedReadCarriesWhatTheParserLeft();
    void namesAreEchoed_data();
    void namesAreEchoed();
    void currentUnitNameIsKept();
    void lockIsHeldUntilTheAnswer();
    void stopFlag_data();
    void stopFlag();
    void stopBetweenAttempts();
    void nullAddress();
    void withoutALink_data();
    void withoutALink();

private:
    /// Has every exchange end in the parser with the next of \a codes; the last stays.
    void parseGives(const QList<int>& codes);

    std::unique_ptr<DriverBench> bench_;
    TestDriver* driver_ = nullptr;
};

void TestDriverBasicSlots::init()
{
    bench_.reset(new DriverBench(ScriptedDevice::Line::Tcp));
    QVERIFY(bench_->connectLink());
    driver_ = bench_->driver.get();
}

void TestDriverBasicSlots::parseGives(const QList<int>& codes)
{
    const auto left = std::make_shared<QList<int>>(codes);
    driver_->on_parse = [left](QByteArray*) {
        return left->size() > 1 ? left->takeFirst() : left->first();
    };
}

void TestDriverBasicSlots::attempts_data()
{
    QTest::addColumn<int>("retry_count");
    QTest::addColumn<QList<int>>("codes");
    QTest::addColumn<int>("attempts");
    QTest::addColumn<int>("status");
    QTest::newRow("0 repeats, failing") << 0 << QList<int>{7} << 1 << 7;
    QTest::newRow("0 repeats, good") << 0 << QList<int>{0} << 1 << 0;
    QTest::newRow("2 repeats, all failing") << 2 << QList<int>{7, 8, 9} << 3 << 9;
    QTest::newRow("2 repeats, good at once") << 2 << QList<int>{0, 8, 9} << 1 << 0;
    QTest::newRow("2 repeats, second good") << 2 << QList<int>{7, 0, 9} << 2 << 0;
    QTest::newRow("2 repeats, third good") << 2 << QList<int>{7, 8, 0} << 3 << 0;
    QTest::newRow("negative counts as 0") << -1 << QList<int>{7, 8} << 1 << 7;
    QTest::newRow("very negative counts as 0") << INT_MIN << QList<int>{7, 8} << 1 << 7;
    QTest::newRow("as many as can be said") << INT_MAX << QList<int>{7, 8, 0} << 3 << 0;
}

void TestDriverBasicSlots::attempts()
{
    QFETCH(int, retry_count);
    QFETCH(QList<int>, codes);
    QFETCH(int, attempts);
    QFETCH(int, status);
    driver_->retry_count_ = retry_count;
    parseGives(codes);
    const QString code = QString::number(status, 16);
    QCOMPARE(bench_->read(2), QStringList(QLatin1String("unit link - 0x") + code));
    QCOMPARE(driver_->countCalls("build read"), attempts);
    QCOMPARE(driver_->error_code_, status);
    QVERIFY(bench_->lockIsFree());

    driver_->takeCalls();
    parseGives(codes);
    QCOMPARE(bench_->write("a"), QStringList(QLatin1String("unit link 61 0x") + code));
    QCOMPARE(driver_->countCalls("build write"), attempts);
}

void TestDriverBasicSlots::codesThatEndAttempts_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("ends");
    QTest::newRow("success") << 0 << true;
    QTest::newRow("stopped") << 0x1002 << true;
    QTest::newRow("unit not served, which only counts for names in braces") << 0x2002 << false;
    QTest::newRow("no answer in time") << 0x400A0000 << false;
    QTest::newRow("receive failed") << 0x400A0002 << false;
    QTest::newRow("invalid length") << 0x20010003 << false;
    QTest::newRow("own code") << 1 << false;
    QTest::newRow("negative code") << -1 << false;
}

void TestDriverBasicSlots::codesThatEndAttempts()
{
    QFETCH(int, code);
    QFETCH(bool, ends);
    driver_->retry_count_ = 2;
    parseGives({code});
    QCOMPARE(bench_->read(2),
             QStringList(QLatin1String("unit link - 0x") + QString::number(code, 16)));
    QCOMPARE(driver_->countCalls("build"), ends ? 1 : 3);
}

void TestDriverBasicSlots::waitCodes_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("attempts");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("a stop is answered, and not repeated") << 0x1002 << 1 << one("Dcc_Stop");
    QTest::newRow("unit not served is repeated") << 0x2002 << 3 << QStringList();
    QTest::newRow("time-out is repeated")
        << 0x400A0000 << 3
        << one("Command_Timeout") + one("Command_Timeout") + one("Command_Timeout");
}

void TestDriverBasicSlots::waitCodes()
{
    QFETCH(int, code);
    QFETCH(int, attempts);
    QFETCH(QStringList, lines);
    driver_->retry_count_ = 2;
    driver_->on_wait = [code](int, int*) { return code; };
    LogRecorder log;
    QCOMPARE(bench_->read(2),
             QStringList(QLatin1String("unit link - 0x") + QString::number(code, 16)));
    QCOMPARE(driver_->countCalls("build"), attempts);
    QCOMPARE(log.lines(), lines);
    QVERIFY(bench_->lockIsFree());
}

void TestDriverBasicSlots::dataIsResetForEachAttempt()
{
    driver_->retry_count_ = 2;
    driver_->on_parse = [](QByteArray* data) {
        data->append("left behind");
        return 7;
    };
    QCOMPARE(bench_->read(2), one("unit link 6c65667420626568696e64 0x7")); // once
    for (const QString& call : driver_->takeCalls())
        QVERIFY(!call.startsWith(QLatin1String("build")) ||
                call == QLatin1String("build read D7 1 2 - - 9 3 4"));
    bench_->write("ab");
    for (const QString& call : driver_->takeCalls())
        QVERIFY(!call.startsWith(QLatin1String("build")) ||
                call == QLatin1String("build write D7 1 2 6162 - 9 3 4"));
}

void TestDriverBasicSlots::codeIsResetForEachAttempt()
{
    driver_->retry_count_ = 1;
    driver_->error_code_ = 5;
    QList<int> on_entry;
    driver_->on_build = [&](QByteArray*, QByteArray*) {
        on_entry.append(driver_->error_code_);
        return 0;
    };
    QCOMPARE(bench_->read(2), one("unit link - 0x20010003"));
    QCOMPARE(on_entry, (QList<int>{0, 0}));
}

void TestDriverBasicSlots::answerToAReadCarriesWhatWasRead()
{
    const QString values = bytesText(TestDevice::valuesOf(1, 200));
    QCOMPARE(bench_->read(200),
             QStringList(QLatin1String("unit link ") + values + QLatin1String(" 0x0")));
}

void TestDriverBasicSlots::answerToAWriteCarriesTheHostsBytes()
{
    driver_->on_parse = [](QByteArray* data) {
        data->fill('?'); // the driver's own business
        return 0;
    };
    QCOMPARE(bench_->write("abc"), one("unit link 616263 0x0"));
}

void TestDriverBasicSlots::failedReadCarriesWhatTheParserLeft()
{
    driver_->on_parse = [](QByteArray* data) {
        data->append("half");
        return 7;
    };
    QCOMPARE(bench_->read(2), one("unit link 68616c66 0x7"));
}

void TestDriverBasicSlots::namesAreEchoed_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("link");
    QTest::newRow("plain") << QString::fromLatin1("unit") << QString::fromLatin1("link");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("braces") << QString::fromLatin1("{A}") << QString::fromLatin1("{B}");
    QTest::newRow("beyond Latin-1") << QString(QChar(0x6f22)) << QString(QChar(0x20ac));
}

void TestDriverBasicSlots::namesAreEchoed()
{
    QFETCH(QString, unit);
    QFETCH(QString, link);
    parseGives({0});
    const QString expected = unit + QLatin1Char(' ') + link + QLatin1String(" %1 0x0");
    Q_EMIT driver_->SigGetValuesByteArray(unit, link, 9, someAddress(2));
    QCOMPARE(bench_->answers->take(), QStringList(expected.arg(QLatin1String("-"))));
    Q_EMIT driver_->SigSetValuesByteArray(unit, link, 9, "a", someAddress(1));
    QCOMPARE(bench_->answers->take(), QStringList(expected.arg(QLatin1String("61"))));
    QCOMPARE(driver_->current_unit_name, unit);
}

void TestDriverBasicSlots::currentUnitNameIsKept()
{
    QString seen;
    driver_->on_build = [&](QByteArray*, QByteArray*) {
        seen = driver_->current_unit_name;
        return 0;
    };
    bench_->read(2, "first");
    QCOMPARE(seen, QString::fromLatin1("first"));
    bench_->write("a", "second");
    QCOMPARE(seen, QString::fromLatin1("second"));
    QCOMPARE(driver_->current_unit_name, QString::fromLatin1("second"));
}

void TestDriverBasicSlots::lockIsHeldUntilTheAnswer()
{
    bool free_in_hook = true;
    bool free_in_answer = true;
    driver_->on_build = [&](QByteArray*, QByteArray*) {
        free_in_hook = bench_->lockIsFree();
        return 0;
    };
    connect(driver_, &DrvInterface::SigResponse, [&] { free_in_answer = bench_->lockIsFree(); });
    bench_->read(2);
    QVERIFY(!free_in_hook);
    QVERIFY(!free_in_answer);
    QVERIFY(bench_->lockIsFree());
}

void TestDriverBasicSlots::stopFlag_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("stops");
    QTest::newRow("nothing") << QByteArray("\0\0\0\0", 4) << false;
    QTest::newRow("first byte 1") << QByteArray("\1\0\0\0", 4) << true;
    QTest::newRow("first byte 0xff") << QByteArray("\xff\0\0\0", 4) << true;
    QTest::newRow("first byte 0x80") << QByteArray("\x80\0\0\0", 4) << true;
    QTest::newRow("second byte") << QByteArray("\0\1\0\0", 4) << false;
    QTest::newRow("all but the first") << QByteArray("\0\xff\xff\xff", 4) << false;
}

void TestDriverBasicSlots::stopFlag()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, stops);
    for (const bool is_read : {true, false}) {
        init();
        std::memcpy(&driver_->stop_flag, bytes.constData(), size_t(bytes.size()));
        parseGives({0});
        const QStringList answers = is_read ? bench_->read(2, "u") : bench_->write("a", "u");
        QCOMPARE(answers.size(), stops ? 0 : 1);
        QCOMPARE(driver_->error_code_, stops ? 0x1002 : 0);
        QCOMPARE(driver_->countCalls("build"), stops ? 0 : 1);
        QCOMPARE(bench_->lockIsFree(), !stops);
        QCOMPARE(driver_->current_unit_name, QString::fromLatin1("u"));
    }
}

void TestDriverBasicSlots::stopBetweenAttempts()
{
    driver_->retry_count_ = 5;
    driver_->on_parse = [this](QByteArray*) {
        driver_->stop_flag = driver_->countCalls("build") == 2 ? 1 : 0;
        return 7;
    };
    QVERIFY(bench_->read(2).isEmpty());
    QCOMPARE(driver_->countCalls("build"), 2);
    QCOMPARE(driver_->error_code_, 0x1002);
    QVERIFY(!bench_->lockIsFree());

    // Not after the last attempt: then there is an answer.
    init();
    driver_->on_parse = [this](QByteArray*) {
        driver_->stop_flag = 1;
        return 7;
    };
    QCOMPARE(bench_->read(2), one("unit link - 0x7"));
}

void TestDriverBasicSlots::nullAddress()
{
    const QSharedPointer<AddrData> none;
    driver_->on_build = [](QByteArray*, QByteArray*) { return 0; };
    Q_EMIT driver_->SigGetValuesByteArray(QLatin1String("u"), QLatin1String("l"), 9, none);
    Q_EMIT driver_->SigSetValuesByteArray(QLatin1String("u"), QLatin1String("l"), 9, "a", none);
    QCOMPARE(bench_->answers->take(), one("u l - 0x20010003") + one("u l 61 0x20010003"));
    QCOMPARE(driver_->takeCalls(),
             one("build read  0 0 - - 9 0 0") + one("build write  0 0 61 - 9 0 0"));
}

void TestDriverBasicSlots::withoutALink_data()
{
    QTest::addColumn<bool>("overridden");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("read");
    QTest::newRow("default") << false << 0 << QString::fromLatin1("-");
    QTest::newRow("offline data") << true << 0 << QString::fromLatin1("6f6666");
    QTest::newRow("offline failure") << true << 7 << QString::fromLatin1("6f6666");
}

void TestDriverBasicSlots::withoutALink()
{
    QFETCH(bool, overridden);
    QFETCH(int, code);
    QFETCH(QString, read);
    TestDriver driver(nullptr);
    Answers answers(&driver);
    driver.stop_flag = 1;    // counts for attempts on a link only
    driver.retry_count_ = 3; // so do repeats
    driver.error_code_ = 5;
    if (overridden) {
        driver.on_offline = [&](QByteArray* data) {
            *data = "off";
            driver.error_code_ = code;
        };
    }
    Q_EMIT driver.SigGetValuesByteArray(QLatin1String("{A}"), QLatin1String("l"), 9,
                                        someAddress(2));
    Q_EMIT driver.SigSetValuesByteArray(QLatin1String("{A}"), QLatin1String("l"), 9, "ab",
                                        someAddress(2));
    QCOMPARE(answers.take(), (QStringList{QString::fromLatin1("{A} l %1 0x%2").arg(read).arg(code),
                                          QString::fromLatin1("{A} l 6162 0x%1").arg(code)}));
    QCOMPARE(driver.takeCalls(),
             one("offline read D7 1 2 - 9 3 4") + one("offline write D7 1 2 6162 9 3 4"));
    QVERIFY(driver.request_lock_.tryLock());
    driver.request_lock_.unlock();
}

QTEST_GUILESS_MAIN(TestDriverBasicSlots)
#include "tst_driver_basic_slots.moc"
