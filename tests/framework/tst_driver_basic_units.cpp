#include "tests/framework/driver_bench.h"

#include <QTest>

#include <memory>

namespace {

const char* const plain_names[] = {"A", "A1", "A12", "{A}1", "{A}12", "{A}x", "x{A}"};

QStringList texts(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* text : list)
        result.append(QString::fromUtf8(text));
    return result;
}

} // namespace

/// Which unit names the driver serves.
class TestDriverBasicUnits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void served_data();
    void served();
    void withoutAList();
    void listIsAskedAgain_data();
    void listIsAskedAgain();
    void unservedBeatsTheExchangesCode();
    void stopComesFirst();

private:
    std::unique_ptr<DriverBench> bench_;
    TestDriver* driver_ = nullptr;
    QStringList units_;
};

void TestDriverBasicUnits::init()
{
    bench_.reset(new DriverBench(ScriptedDevice::Line::Tcp));
    driver_ = bench_->driver.get();
    driver_->unit_list = &units_;
    units_.clear();
    // The exchange itself is not what this is about.
    driver_->on_wait = [](int, int*) { return 0; };
    driver_->on_abnormal = [](QByteArray*) { return 0; };
    driver_->on_parse = [](QByteArray*) { return 0; };
}

void TestDriverBasicUnits::served_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QStringList>("units");
    QTest::addColumn<bool>("is_served");
    const auto row = [](const char* name, const char* unit,
                        std::initializer_list<const char*> units, bool is_served) {
        QTest::newRow(name) << QString::fromUtf8(unit) << texts(units) << is_served;
    };
    row("itself", "{A}", {"{A}"}, true);
    row("one digit after it", "{A}", {"{A}1"}, true);
    row("many digits after it", "{A}", {"{A}1234567890"}, true);
    row("letter after it", "{A}", {"{A}x"}, false);
    row("digit and letter after it", "{A}", {"{A}1x"}, false);
    row("blank after it", "{A}", {"{A} "}, false);
    row("something before it", "{A}", {"x{A}"}, false);
    row("without braces", "{A}", {"A", "A1", "A12"}, false);
    row("another letter", "{A}", {"{B}", "{AA}", "{}"}, false);
    row("case counts", "{A}", {"{a}", "{a}1"}, false);
    row("digits inside belong to the name", "{A1}", {"{A}1"}, false);
    row("last of the list", "{A}", {"B", "{B}", "{A}x", "{A}7"}, true);
    row("empty list", "{A}", {}, true);
    row("list of an empty name", "{A}", {""}, false);
    row("digits of another alphabet", "{A}", {"{A}\xd9\xa3"}, true);
    row("blank inside", "{A B}", {"{A B}2"}, true);
    row("beyond Latin-1", "{\xe6\xbc\xa2}", {"{\xe6\xbc\xa2}2"}, true);

    // Only a name that is one pair of braces with something in it is looked up.
    for (const char* name : plain_names)
        QTest::addRow("not looked up: %s", name)
            << QString::fromUtf8(name) << texts({"other"}) << true;
    row("not looked up: empty", "", {"other"}, true);
    row("not looked up: {}", "{}", {"other"}, true);
    row("not looked up: {", "{", {"other"}, true);
    row("not looked up: {A", "{A", {"other"}, true);
    row("not looked up: A}", "A}", {"other"}, true);
    row("not looked up: {A}}", "{A}}", {"other"}, true);
    row("not looked up: {A}{B}", "{A}{B}", {"other"}, true);
    row("looked up: {{A}", "{{A}", {"other"}, false);

    // What stands between the braces goes into the pattern as it is.
    row("dot is any character", "{A.C}", {"{AbC}"}, true);
    row("dot is itself, too", "{A.C}", {"{A.C}"}, true);
    row("plus repeats", "{A+}", {"{AAA}"}, true);
    row("plus is not itself", "{A+}", {"{A+}"}, false);
    row("bar chooses", "{A|B}", {"{A|B}"}, false);
    row("brackets are a set", "{[AB]}", {"{B}3"}, true);
    row("backslash escapes", "{A\\d}", {"{A7}"}, true);
    row("question mark", "{AB?}", {"{A}"}, true);
    row("no pattern at all", "{A(}", {"{A(}", "{A}"}, false);
}

void TestDriverBasicUnits::served()
{
    QFETCH(QString, unit);
    QFETCH(QStringList, units);
    QFETCH(bool, is_served);
    units_ = units;
    const QString code = QLatin1String(is_served ? " link - 0x0" : " link - 0x2002");
    Q_EMIT driver_->SigGetValuesByteArray(unit, QLatin1String("link"), 9, someAddress(2));
    QCOMPARE(bench_->answers->take(), QStringList(unit + code));
    QCOMPARE(driver_->countCalls("build"), is_served ? 1 : 0);
    QVERIFY(bench_->lockIsFree());

    driver_->takeCalls();
    Q_EMIT driver_->SigSetValuesByteArray(unit, QLatin1String("link"), 9, "a", someAddress(1));
    QCOMPARE(bench_->answers->take().size(), 1);
    QCOMPARE(driver_->error_code_, is_served ? 0 : 0x2002);
    QCOMPARE(driver_->countCalls("build"), is_served ? 1 : 0);
    QCOMPARE(units_, units);
}

void TestDriverBasicUnits::withoutAList()
{
    driver_->unit_list = nullptr;
    QCOMPARE(bench_->read(2, "{A}"), QStringList(QLatin1String("{A} link - 0x0")));
    QCOMPARE(bench_->read(2, "A"), QStringList(QLatin1String("A link - 0x0")));
}

void TestDriverBasicUnits::listIsAskedAgain_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QStringList>("later_units");
    QTest::addColumn<int>("attempts");
    QTest::addColumn<int>("code");
    const QString braced = QLatin1String("{A}");
    QTest::newRow("still there") << braced << texts({"{A}2"}) << 3 << 7;
    QTest::newRow("list emptied") << braced << QStringList() << 3 << 7;
    QTest::newRow("given up") << braced << texts({"{B}"}) << 1 << 0x2002;
    QTest::newRow("unbraced names are not looked up")
        << QString::fromLatin1("A") << texts({"{B}"}) << 3 << 7;
}

void TestDriverBasicUnits::listIsAskedAgain()
{
    QFETCH(QString, unit);
    QFETCH(QStringList, later_units);
    QFETCH(int, attempts);
    QFETCH(int, code);
    units_ = texts({"{A}1"});
    driver_->retry_count_ = 2;
    driver_->on_parse = [&](QByteArray*) {
        units_ = later_units;
        return 7;
    };
    const QString expected = unit + QLatin1String(" link - 0x") + QString::number(code, 16);
    QCOMPARE(bench_->read(2, unit.toLatin1().constData()), QStringList(expected));
    QCOMPARE(driver_->countCalls("build"), attempts);
    QVERIFY(bench_->lockIsFree());
}

// Also after the last attempt; but a success stays one.
void TestDriverBasicUnits::unservedBeatsTheExchangesCode()
{
    for (const int code : {7, 0x400A0000, 0, 0x1002}) {
        units_ = texts({"{A}"});
        driver_->on_parse = [&](QByteArray*) {
            units_ = texts({"{B}"});
            return code;
        };
        const bool is_final = code == 0 || code == 0x1002;
        const QString status = QString::number(is_final ? code : 0x2002, 16);
        QCOMPARE(bench_->read(2, "{A}"), QStringList(QLatin1String("{A} link - 0x") + status));
    }
}

void TestDriverBasicUnits::stopComesFirst()
{
    units_ = texts({"{B}"});
    driver_->stop_flag = 1;
    QVERIFY(bench_->read(2, "{A}").isEmpty());
    QCOMPARE(driver_->error_code_, 0x1002);
}

QTEST_GUILESS_MAIN(TestDriverBasicUnits)
#include "tst_driver_basic_units.moc"
