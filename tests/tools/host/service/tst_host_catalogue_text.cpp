#include "tools/host/service/catalogue.h"
#include "tools/host/service/catalogue_fetch.h"

#include <QTemporaryFile>
#include <QTest>

using namespace tovik_host;
using namespace tovik_host::service;

class TestHostCatalogueText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void drawsATree();
    void drawsATable();
    void drawsAnEmptyCatalogue();
    void showsProgress_data();
    void showsProgress();
};

namespace {

Catalogue plant()
{
    const auto item = [](const char* id, const char* name, const char* type, int length,
                         bool alert) {
        PropertyTovikIotDataItem made;
        made.dataitem_id = QString::fromUtf8(id);
        made.name = QString::fromUtf8(name);
        made.type = QString::fromUtf8(type);
        made.length = length;
        made.alert = alert;
        return made;
    };
    const auto group = [](const char* id, const char* name, const char* location,
                          const char* permission, bool alert,
                          const QList<PropertyTovikIotDataItem>& items) {
        PropertyTovikIotGroup made;
        made.group_id = QString::fromUtf8(id);
        made.name = QString::fromUtf8(name);
        made.location = QString::fromUtf8(location);
        made.permission = QString::fromUtf8(permission);
        made.alert = alert;
        made.dataitems = items;
        return made;
    };
    Catalogue catalogue;
    catalogue.account.url = QStringLiteral("https://me:s3cret@h:1");
    catalogue.account.project = QStringLiteral("p");
    catalogue.groups = {
        group("b", "Boiler", "Cellar", "RW", true,
              {item("on", "On", "Bit", 1, true), item("t", "T\n\xC3\xBCr", "String", 16, false)}),
        group("e", "\xF0\x9F\x9A\x80", "", "R", false, {item("p", "Power", "32Bit-INT", 32, true)}),
        group("n", "None", "", "RW", false, {})};
    return catalogue;
}

} // namespace

void TestHostCatalogueText::drawsATree()
{
    QCOMPARE(catalogueTree(plant()), QString::fromUtf8("https://h:1  project p: 3 groups, 3 items\n"
                                                       "\n"
                                                       "Boiler  (b)  Cellar  alert\n"
                                                       "  On    on  Bit         alert\n"
                                                       "  T\u00b7\u00fcr  t   String(16)\n"
                                                       "\n"
                                                       "\xF0\x9F\x9A\x80  (e)  read-only\n"
                                                       "  Power  p  32Bit-INT  read-only, alert\n"
                                                       "\n"
                                                       "None  (n)\n"
                                                       "  (no items)\n"));
}

void TestHostCatalogueText::drawsATable()
{
    QCOMPARE(catalogueTable(plant()),
             QString::fromUtf8("GROUP   ITEM   ID  TYPE        REMARKS\n"
                               "Boiler  On     on  Bit         alert\n"
                               "Boiler  T\u00b7\u00fcr   t   String(16)\n"
                               "\xF0\x9F\x9A\x80      Power  p   32Bit-INT   read-only, alert\n"));
}

void TestHostCatalogueText::drawsAnEmptyCatalogue()
{
    QCOMPARE(catalogueTree(Catalogue()), QStringLiteral("  project : 0 groups, 0 items\n"));
    QCOMPARE(catalogueTable(Catalogue()), QStringLiteral("GROUP  ITEM  ID  TYPE  REMARKS\n"));
}

void TestHostCatalogueText::showsProgress_data()
{
    QTest::addColumn<bool>("is_quiet");
    QTest::addColumn<bool>("is_terminal");
    QTest::addColumn<int>("interval");
    QTest::addColumn<QByteArray>("shown");
    const QByteArray text = "Loading the catalogue: 1 of 3 groups, 12 items";
    const int day = 24 * 60 * 60 * 1000;
    QTest::newRow("terminal") << false << true << day
                              << '\r' + text + '\r' + QByteArray(text.size(), ' ') + '\r';
    QTest::newRow("terminal, quiet") << true << true << day << QByteArray();
    QTest::newRow("file") << false << false << 0 << text + '\n';
    QTest::newRow("file, too early") << false << false << day << QByteArray();
    QTest::newRow("file, quiet") << true << false << 0 << QByteArray();
}

void TestHostCatalogueText::showsProgress()
{
    QFETCH(bool, is_quiet);
    QFETCH(bool, is_terminal);
    QFETCH(int, interval);
    QFETCH(QByteArray, shown);
    QTemporaryFile file;
    QVERIFY(file.open());
    terminal::Output output(file.handle());
    {
        ProgressView view(output, is_quiet, is_terminal, interval);
        view.show({3, 1, 12});
    }
    QVERIFY(file.seek(0));
    QCOMPARE(file.readAll(), shown);
}

QTEST_GUILESS_MAIN(TestHostCatalogueText)
#include "tst_host_catalogue_text.moc"
