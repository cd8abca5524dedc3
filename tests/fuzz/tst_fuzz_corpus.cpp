#include "fuzz/target.h"
#include "tests/support/log_recorder.h"

#include <QDir>
#include <QTest>

namespace {

QDir folderOf(const fuzz::Target& target)
{
    return QDir(QString::fromLocal8Bit(FUZZ_CORPUS) + QLatin1Char('/') +
                QString::fromLatin1(target.name));
}

/// What does not hold with \a input; null when all does.
const char* violationBy(const fuzz::Target& target, const QByteArray& input)
{
    const LogRecorder silent;
    try {
        target.run(input);
    } catch (const fuzz::Violation& violation) {
        return violation.property;
    }
    return nullptr;
}

} // namespace

/// What the fuzz targets start with, and what they once found, with the compiler and the settings
/// of the other tests.
class TestFuzzCorpus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void storedInputs_data();
    void storedInputs();
    void everyCutOfAnInput_data() { storedInputs_data(); }
    void everyCutOfAnInput();
    void aViolationIsNoticed();
};

void TestFuzzCorpus::storedInputs_data()
{
    QTest::addColumn<int>("target");
    for (int i = 0; i < fuzz::target_count; ++i)
        QTest::newRow(fuzz::targets[i].name) << i;
}

void TestFuzzCorpus::storedInputs()
{
    QFETCH(int, target);
    const QDir folder = folderOf(fuzz::targets[target]);
    const QStringList names = folder.entryList(QDir::Files);
    QVERIFY2(!names.isEmpty(), qPrintable(folder.path()));
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
        const char* violation = violationBy(fuzz::targets[target], file.readAll());
        QVERIFY2(!violation, qPrintable(name + QLatin1String(": ") + QLatin1String(violation)));
    }
}

// Replies, streams and frames break off anywhere.
void TestFuzzCorpus::everyCutOfAnInput()
{
    QFETCH(int, target);
    const QDir folder = folderOf(fuzz::targets[target]);
    const QStringList names = folder.entryList(QDir::Files, QDir::Size);
    QVERIFY(!names.isEmpty());
    const QString name = names.at(names.size() / 2); // of middling length
    QFile file(folder.filePath(name));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    const QByteArray whole = file.readAll();
    for (int size = 0; size < whole.size(); ++size) {
        const char* violation = violationBy(fuzz::targets[target], whole.left(size));
        QVERIFY2(!violation, qPrintable(QString::fromLatin1("%1 cut to %2 bytes: %3")
                                            .arg(name)
                                            .arg(size)
                                            .arg(QLatin1String(violation))));
    }
}

void TestFuzzCorpus::aViolationIsNoticed()
{
    const fuzz::Target wrong = {
        "wrong", [](const QByteArray& input) { fuzz::require(input.isEmpty(), "no input"); }};
    QCOMPARE(violationBy(wrong, QByteArray("x")), "no input");
    QVERIFY(!violationBy(wrong, QByteArray()));
}

QTEST_GUILESS_MAIN(TestFuzzCorpus)
#include "tst_fuzz_corpus.moc"
