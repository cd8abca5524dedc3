#include "property/warning_message.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <functional>

#ifdef TOVIK_SANITIZED
// Qt's offscreen platform never frees its screen. Its name stands in whole stacks only.
extern "C" const char* __asan_default_options()
{
    return "fast_unwind_on_malloc=0";
}

extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libqoffscreen.so\n";
}
#endif

namespace {

/// Shows the message and hands the box to \a look as soon as it is open; the box is gone after it.
/// \return how many boxes were open when \a look was called; it is called once.
int showMessage(const QString& text, const QString& informative_text,
                const std::function<void(QMessageBox*)>& look)
{
    int seen = 0;
    QTimer::singleShot(0, qApp, [&] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (!box)
                continue;
            ++seen;
            look(box);
            if (box->isVisible())
                box->done(0);
        }
    });
    TovikIotWarningMsg(text, informative_text);
    return seen;
}

} // namespace

class TestWarningMessage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheTexts_data();
    void showsTheTexts();
    void isACriticalModalBox();
    void hasOneButton();
    void returnsWhenOkIsPressed();
    void isGoneAfterwards();
};

void TestWarningMessage::showsTheTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("informative_text");
    QTest::newRow("both") << QString::fromLatin1("No connection")
                          << QString::fromLatin1("Check the address.");
    QTest::newRow("beyond ASCII") << QString::fromUtf8("\xc3\x84 \xe2\x82\xac")
                                  << QString::fromUtf8("\xe6\xbc\xa2");
    QTest::newRow("several lines") << QString::fromLatin1("a\nb") << QString::fromLatin1("c\nd");
    QTest::newRow("none") << QString() << QString();
}

void TestWarningMessage::showsTheTexts()
{
    QFETCH(QString, text);
    QFETCH(QString, informative_text);
    QString seen_text, seen_informative_text;
    const int boxes = showMessage(text, informative_text, [&](QMessageBox* box) {
        seen_text = box->text();
        seen_informative_text = box->informativeText();
    });
    QCOMPARE(boxes, 1);
    QCOMPARE(seen_text, text);
    QCOMPARE(seen_informative_text, informative_text);
}

void TestWarningMessage::isACriticalModalBox()
{
    const int boxes = showMessage(QLatin1String("text"), QString(), [](QMessageBox* box) {
        QVERIFY(box->isVisible());
        QCOMPARE(QApplication::activeModalWidget(), static_cast<QWidget*>(box));
        QCOMPARE(box->windowModality(), Qt::ApplicationModal);
        QCOMPARE(box->icon(), QMessageBox::Critical);
        QVERIFY(box->windowTitle().isEmpty());
        QVERIFY(!box->parent());
        QVERIFY(box->detailedText().isEmpty());
    });
    QCOMPARE(boxes, 1);
}

void TestWarningMessage::hasOneButton()
{
    const int boxes = showMessage(QLatin1String("text"), QString(), [](QMessageBox* box) {
        QCOMPARE(box->buttons().size(), 1);
        QCOMPARE(box->standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
        QVERIFY(box->button(QMessageBox::Ok));
    });
    QCOMPARE(boxes, 1);
}

void TestWarningMessage::returnsWhenOkIsPressed()
{
    int result = -1;
    const int boxes = showMessage(QLatin1String("text"), QString(), [&](QMessageBox* box) {
        connect(box, &QDialog::finished, box, [&](int code) { result = code; });
        box->button(QMessageBox::Ok)->click();
    });
    QCOMPARE(boxes, 1);
    QCOMPARE(result, int(QMessageBox::Ok));
}

void TestWarningMessage::isGoneAfterwards()
{
    QCOMPARE(showMessage(QLatin1String("text"), QString(), [](QMessageBox*) {}), 1);
    QVERIFY(QApplication::topLevelWidgets().isEmpty());
    QVERIFY(!QApplication::activeModalWidget());
}

QTEST_MAIN(TestWarningMessage)
#include "tst_warning_message.moc"
