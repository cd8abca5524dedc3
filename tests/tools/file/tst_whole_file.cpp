#include "tools/file/whole_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <system_error>

// Calls of the writer go through those below, which stand in front of the C library's.
namespace {

enum class Trouble
{
    none,
    error,
    power_cut
};

Trouble trouble = Trouble::none;
int trouble_at = 0; ///< The number of the call that it comes with.
int trouble_error = 0;
QStringList calls; ///< What has been called since all was set.

const int power_cut_code = 77;

void expectTrouble(Trouble what, int call, int error = 0)
{
    trouble = what;
    trouble_at = call;
    trouble_error = error;
    calls.clear();
}

/// Whether the call fails, with errno set.
bool fails(const char* call)
{
    if (trouble_at == 0)
        return false;
    calls << QLatin1String(call);
    if (calls.size() != trouble_at || trouble == Trouble::none)
        return false;
    if (trouble == Trouble::power_cut)
        ::_exit(power_cut_code);
    errno = trouble_error;
    return true;
}

template <typename Function>
Function real(Function, const char* name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    const bool is_folder = (flags & O_DIRECTORY) != 0;
    return fails(is_folder ? "open folder" : "open") ? -1
                                                     : real(&::open, "open")(path, flags, mode);
}

/// Half of the bytes at most, as on a disk that becomes full.
ssize_t write(int descriptor, const void* bytes, size_t size)
{
    const size_t count = trouble_at > 0 && size > 1 ? size / 2 : size;
    return fails("write") ? -1 : real(&::write, "write")(descriptor, bytes, count);
}

int fchmod(int descriptor, mode_t mode) noexcept
{
    return fails("fchmod") ? -1 : real(&::fchmod, "fchmod")(descriptor, mode);
}

int fsync(int descriptor)
{
    return fails("fsync") ? -1 : real(&::fsync, "fsync")(descriptor);
}

int close(int descriptor)
{
    return fails("close") ? -1 : real(&::close, "close")(descriptor);
}

int rename(const char* from, const char* to) noexcept
{
    return fails("rename") ? -1 : real(&::rename, "rename")(from, to);
}

} // extern "C"

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

mode_t modeOf(const QString& path)
{
    struct stat what = {};
    return ::stat(QFile::encodeName(path).constData(), &what) == 0 ? what.st_mode & 07777 : 0;
}

} // namespace

/// A file is the old one or the new one, whole, whatever happens to whoever writes it.
class TestWholeFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void isOnTheDiskBeforeItHasItsName();
    void anyCallMayFail_data();
    void anyCallMayFail();
    void thePowerMayGoAtAnyCall();
    void needsAWritableFolder();
    void hasAMode_data();
    void hasAMode();
    void isWrittenThroughLinks_data();
    void isWrittenThroughLinks();
    void passesWhatAnEndedProcessLeft();

private:
    QString path(const char* name = "file") const { return folder_->filePath(QLatin1String(name)); }
    void write(const QByteArray& bytes,
               tovik_file::Readers readers = tovik_file::Readers::as_before) const
    {
        tovik_file::writeWholeFile(QFile::encodeName(path()).toStdString(), bytes.toStdString(),
                                   readers);
    }
    /// Writes, and gives the error, 0 without one.
    int errorOf(const QByteArray& bytes) const;
    QStringList names() const
    {
        return QDir(folder_->path()).entryList(QDir::Files | QDir::System | QDir::Hidden);
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestWholeFile::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(folder_->isValid());
}

void TestWholeFile::cleanup()
{
    expectTrouble(Trouble::none, 0);
}

int TestWholeFile::errorOf(const QByteArray& bytes) const
{
    try {
        write(bytes);
    } catch (const std::system_error& error) {
        return error.code().value();
    }
    return 0;
}

void TestWholeFile::isOnTheDiskBeforeItHasItsName()
{
    write("old");
    expectTrouble(Trouble::none, 1);
    write("new!");
    const QStringList expected{
        QStringLiteral("open"),  QStringLiteral("fchmod"), QStringLiteral("write"),
        QStringLiteral("write"), QStringLiteral("write"),  QStringLiteral("fsync"),
        QStringLiteral("close"), QStringLiteral("rename"), QStringLiteral("open folder"),
        QStringLiteral("fsync"), QStringLiteral("close")};
    QCOMPARE(calls, expected);
    QCOMPARE(contentOf(path()), QByteArray("new!"));
    QCOMPARE(names(), QStringList(QStringLiteral("file")));
}

void TestWholeFile::anyCallMayFail_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("error");
    QTest::newRow("unwritable folder") << 1 << EACCES;
    QTest::newRow("no descriptor left") << 1 << EMFILE;
    QTest::newRow("somebody else's file system") << 2 << EPERM;
    QTest::newRow("full disk") << 3 << ENOSPC;
    QTest::newRow("disk that becomes full") << 4 << ENOSPC;
    QTest::newRow("quota") << 5 << EDQUOT;
    QTest::newRow("disk that does not take it") << 6 << EIO;
    QTest::newRow("network's disk, full when it is told") << 7 << ENOSPC;
    QTest::newRow("folder that may not be changed") << 8 << EROFS;
}

void TestWholeFile::anyCallMayFail()
{
    QFETCH(int, call);
    QFETCH(int, error);
    write("old");
    expectTrouble(Trouble::error, call, error);
    const int seen = errorOf("new!");
    expectTrouble(Trouble::none, 0);
    QCOMPARE(seen, error);
    QCOMPARE(contentOf(path()), QByteArray("old"));
    QCOMPARE(names(), QStringList(QStringLiteral("file")));
    write("new!");
    QCOMPARE(contentOf(path()), QByteArray("new!"));
}

void TestWholeFile::thePowerMayGoAtAnyCall()
{
    const int renaming = 8;
    int call = 0;
    for (int code = power_cut_code; code == power_cut_code;) {
        write("old");
        ++call;
        const pid_t child = ::fork();
        if (child == 0) {
            expectTrouble(Trouble::power_cut, call);
            ::_exit(errorOf("new!"));
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        code = WEXITSTATUS(status);
        QCOMPARE(contentOf(path()), QByteArray(call <= renaming ? "old" : "new!"));
    }
    QCOMPARE(call, 12); // the first that there is not
}

void TestWholeFile::needsAWritableFolder()
{
    const std::string nowhere = QFile::encodeName(path("none/file")).toStdString();
    QVERIFY_EXCEPTION_THROWN(tovik_file::writeWholeFile(nowhere, "x"), std::system_error);
    // The folder cannot be opened to be synchronized: the file stands nevertheless.
    expectTrouble(Trouble::error, 7, EACCES);
    QCOMPARE(errorOf("x"), 0);
    QVERIFY(calls.contains(QStringLiteral("open folder")));
    QCOMPARE(contentOf(path()), QByteArray("x"));
}

void TestWholeFile::hasAMode_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<bool>("is_secret");
    QTest::addColumn<int>("after");
    QTest::newRow("a new one, what the process does not withhold") << 0 << false << 0644;
    QTest::newRow("a new secret") << 0 << true << 0600;
    QTest::newRow("what it had") << 0664 << false << 0664;
    QTest::newRow("a secret in the place of what others read") << 0666 << true << 0600;
}

void TestWholeFile::hasAMode()
{
    QFETCH(int, before);
    QFETCH(bool, is_secret);
    QFETCH(int, after);
    const mode_t mask = ::umask(0022);
    if (before != 0) {
        write("old");
        ::chmod(QFile::encodeName(path()).constData(), mode_t(before));
    }
    write("new", is_secret ? tovik_file::Readers::owner : tovik_file::Readers::as_before);
    ::umask(mask);
    QCOMPARE(int(modeOf(path())), after);
}

void TestWholeFile::isWrittenThroughLinks_data()
{
    QTest::addColumn<QByteArray>("to");
    QTest::addColumn<bool>("is_there");
    QTest::newRow("beside it") << QByteArray("target") << true;
    QTest::newRow("beside it, not there yet") << QByteArray("target") << false;
    QTest::newRow("over another link") << QByteArray("second") << true;
}

void TestWholeFile::isWrittenThroughLinks()
{
    QFETCH(QByteArray, to);
    QFETCH(bool, is_there);
    QCOMPARE(::symlink("target", QFile::encodeName(path("second")).constData()), 0);
    QCOMPARE(::symlink(to.constData(), QFile::encodeName(path()).constData()), 0);
    if (is_there)
        write("old");
    write("new");
    QVERIFY(QFileInfo(path()).isSymLink());
    QCOMPARE(contentOf(path("target")), QByteArray("new"));
    QVERIFY(!QFileInfo(path("target")).isSymLink());
}

void TestWholeFile::passesWhatAnEndedProcessLeft()
{
    const QByteArray left =
        QFile::encodeName(path()) + '.' + QByteArray::number(::getpid()) + "-0.tmp";
    QFile file(QFile::decodeName(left));
    QVERIFY(file.open(QIODevice::WriteOnly));
    write("new");
    QCOMPARE(contentOf(path()), QByteArray("new"));
    QCOMPARE(contentOf(file.fileName()), QByteArray());
}

QTEST_GUILESS_MAIN(TestWholeFile)
#include "tst_whole_file.moc"
