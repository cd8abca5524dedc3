#include "tools/file/line_file.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace {

/// No file gets larger while it lives: what is written beyond fails, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &before_); }

private:
    rlimit before_{};
};

} // namespace

/// Lines get into a file, whole ones, when there is room.
class TestLineFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void appends();
    void saysThatItCannotBeOpened();
    void goesOnAfterAFullDisk_data();
    void goesOnAfterAFullDisk();

private:
    QString path() const { return folder_.filePath(QStringLiteral("file")); }
    std::string name() const { return QFile::encodeName(path()).toStdString(); }
    QByteArray content() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    QTemporaryDir folder_;
};

void TestLineFile::appends()
{
    QCOMPARE(tovik_file::LineFile(name()).append("one\n"), 0);
    tovik_file::LineFile file(name());
    QCOMPARE(file.append("two\nthree\n"), 0);
    QCOMPARE(content(), QByteArray("one\ntwo\nthree\n"));
    QVERIFY(QFile::remove(path()));
}

void TestLineFile::saysThatItCannotBeOpened()
{
    try {
        tovik_file::LineFile(name() + "/below");
        QFAIL("it could");
    } catch (const std::system_error& error) {
        QCOMPARE(error.code().value(), ENOENT);
    }
}

void TestLineFile::goesOnAfterAFullDisk_data()
{
    QTest::addColumn<int>("room");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("no room") << 0 << QByteArray("one\nfour\n");
    QTest::newRow("for a part of a line") << 3 << QByteArray("one\ntwo\nfour\n");
    QTest::newRow("for a whole line, but not for another") << 4 << QByteArray("one\ntwo\nfour\n");
    QTest::newRow("for a part of the second of two") << 6 << QByteArray("one\ntwo\nth\nfour\n");
}

void TestLineFile::goesOnAfterAFullDisk()
{
    QFETCH(int, room);
    QFETCH(QByteArray, expected);
    tovik_file::LineFile file(name());
    QCOMPARE(file.append("one\n"), 0);
    {
        const FullDisk disk(rlim_t(4 + room));
        QCOMPARE(file.append("two\nthree\n"), EFBIG);
        QCOMPARE(file.append("two\nthree\n"), 0); // no news
    }
    QCOMPARE(file.append("four\n"), 0);
    QCOMPARE(content(), expected);
    {
        const FullDisk disk(0);
        QCOMPARE(file.append("five\n"), EFBIG); // of another gap
    }
    QVERIFY(QFile::remove(path()));
}

QTEST_GUILESS_MAIN(TestLineFile)
#include "tst_line_file.moc"
