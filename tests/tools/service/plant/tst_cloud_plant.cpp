#include "tools/service/plant/plant.h"

#include <QTest>

using namespace tovik_service::plant;

class TestCloudPlant : public QObject
{
    Q_OBJECT

private slots:
    void init() { now_ = 1000; }
    void valuesMoveWithTime();
    void writtenConstantStays();
    void writtenMovingValueHolds_data();
    void writtenMovingValueHolds();
    void refusesWrites_data();
    void refusesWrites();
    void controlMayWriteAnything();
    void updateTimeTellsTheLastChange();
    void findsGroupsOfItems();
    void replacedWhileItsViewsAreInUse();

private:
    Plant plant(Plant::WriteHold hold = {})
    {
        return {parseProject(text), hold, [this] { return now_; }, [this] { return now_; }};
    }

    static constexpr const char* text = R"({
        "accounts": [{"email": "e", "password": "p", "project": "x"}],
        "groups": [
            {"id": "g", "name": "G", "items": [
                {"id": "constant", "name": "C", "type": "16Bit-UINT", "value": 5},
                {"id": "moving", "name": "M", "type": "16Bit-UINT", "value": {"generator": "counter"}},
                {"id": "fixed", "name": "F", "type": "16Bit-UINT", "readonly": true}]},
            {"id": "r", "name": "R", "permission": "R", "items": [
                {"id": "guarded", "name": "G", "type": "16Bit-UINT"}]}]})";
    double now_ = 1000;
};

void TestCloudPlant::valuesMoveWithTime()
{
    Plant plant = this->plant();
    QVERIFY(plant.item("moving")->value == 0);
    now_ += 3;
    QVERIFY(plant.item("moving")->value == 3);
    QVERIFY(!plant.item("other"));
}

void TestCloudPlant::writtenConstantStays()
{
    Plant plant = this->plant(2);
    QVERIFY(plant.write("constant", 9, Writer::Client).outcome == WriteOutcome::Done);
    now_ += 100;
    QVERIFY(plant.item("constant")->value == 9);
}

void TestCloudPlant::writtenMovingValueHolds_data()
{
    QTest::addColumn<double>("hold");
    QTest::addColumn<int>("later");
    QTest::newRow("for ever unless told otherwise") << 0.0 << 9;
    QTest::newRow("for its time, then the counter goes on") << 2.0 << 50;
}

void TestCloudPlant::writtenMovingValueHolds()
{
    QFETCH(double, hold);
    QFETCH(int, later);
    Plant plant = this->plant(hold > 0 ? Plant::WriteHold(hold) : Plant::WriteHold());
    QVERIFY(plant.write("moving", 9, Writer::Client).outcome == WriteOutcome::Done);
    now_ += 1;
    QVERIFY(plant.item("moving")->value == 9);
    now_ += 49;
    QVERIFY(plant.item("moving")->value == later);
}

void TestCloudPlant::refusesWrites_data()
{
    QTest::addColumn<QByteArray>("item");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("outcome");
    QTest::newRow("unknown item") << QByteArray("x") << 1 << int(WriteOutcome::UnknownItem);
    QTest::newRow("read-only item") << QByteArray("fixed") << 1 << int(WriteOutcome::ReadOnly);
    QTest::newRow("read-only group") << QByteArray("guarded") << 1 << int(WriteOutcome::ReadOnly);
    QTest::newRow("out of range") << QByteArray("constant") << -1 << int(WriteOutcome::BadValue);
}

void TestCloudPlant::refusesWrites()
{
    QFETCH(QByteArray, item);
    QFETCH(int, value);
    QFETCH(int, outcome);
    Plant plant = this->plant();
    const WriteResult result = plant.write(item.toStdString(), value, Writer::Client);
    QCOMPARE(int(result.outcome), outcome);
    QVERIFY(!result.problem.empty());
}

void TestCloudPlant::controlMayWriteAnything()
{
    Plant plant = this->plant();
    for (const char* item : {"fixed", "guarded"}) {
        QVERIFY(plant.write(item, 7, Writer::Control).outcome == WriteOutcome::Done);
        QVERIFY(plant.item(item)->value == 7);
    }
    QVERIFY(plant.write("fixed", -7, Writer::Control).outcome == WriteOutcome::BadValue);
}

void TestCloudPlant::updateTimeTellsTheLastChange()
{
    Plant plant = this->plant();
    now_ = 1005;
    QCOMPARE(int(plant.item("constant")->update_time), 1000);
    QCOMPARE(int(plant.item("moving")->update_time), 1005);
    QVERIFY(plant.write("constant", 5, Writer::Client).outcome == WriteOutcome::Done);
    QCOMPARE(int(plant.item("constant")->update_time), 1005);
}

void TestCloudPlant::findsGroupsOfItems()
{
    Plant plant = this->plant();
    QVERIFY(plant.groupIdOf("guarded") == "r");
    QVERIFY(plant.groupIdOf("other").empty());
    QVERIFY(plant.findGroup("g")->items.size() == 3);
    QVERIFY(plant.findGroup("other") == nullptr);
    QVERIFY(plant.allItems().size() == 4);
}

void TestCloudPlant::replacedWhileItsViewsAreInUse()
{
    Plant plant = this->plant();
    plant.write("constant", 9, Writer::Client);
    const Group* const before = plant.findGroup("g");
    plant.replace(parseProject(R"({
        "accounts": [{"email": "e", "password": "p", "project": "x"}],
        "groups": [{"id": "new", "name": "N", "items": [
            {"id": "constant", "name": "C", "type": "16Bit-UINT", "value": 6},
            {"id": "added", "name": "A", "type": "Bit"}]}]})"));
    QVERIFY(plant.item("constant")->value == 6);
    QVERIFY(plant.item("added") && !plant.item("moving"));
    QVERIFY(plant.groupIdOf("constant") == "new");
    QVERIFY(plant.findGroup("new") && !plant.findGroup("g"));
    QCOMPARE(int(plant.allItems().size()), 2);
    // What was handed out before can still be used; only what is left of it has values.
    QVERIFY(before->id == "g");
    QCOMPARE(int(plant.itemsOf(*before).size()), 1);
}

QTEST_APPLESS_MAIN(TestCloudPlant)
#include "tst_cloud_plant.moc"
