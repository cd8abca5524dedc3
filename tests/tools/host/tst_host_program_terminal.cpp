#include "tests/support/host_process.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <vector>

/// The program on a terminal of its own.
class TerminalProgram
{
public:
    TerminalProgram(const QStringList& arguments, unsigned short columns, unsigned short rows);
    ~TerminalProgram();
    TerminalProgram(const TerminalProgram&) = delete;
    TerminalProgram& operator=(const TerminalProgram&) = delete;

    /// Reads until \a text comes, and drops everything up to its end.
    bool waitFor(const QByteArray& text);
    void resize(unsigned short columns, unsigned short rows);
    /// Types \a key and returns what comes then, to the end of the program.
    QByteArray rest(char key);
    int exitCode();

private:
    bool readMore(int milliseconds);

    int terminal_ = -1;
    pid_t child_ = -1;
    QByteArray seen_;
};

TerminalProgram::TerminalProgram(const QStringList& arguments, unsigned short columns,
                                 unsigned short rows)
{
    std::vector<QByteArray> texts = {HostProcess::program().toLocal8Bit()};
    for (const QString& argument : arguments)
        texts.push_back(argument.toLocal8Bit());
    std::vector<char*> pointers;
    for (QByteArray& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    const winsize size = {rows, columns, 0, 0};
    child_ = forkpty(&terminal_, nullptr, nullptr, &size);
    if (child_ == 0) {
        execv(pointers.front(), pointers.data());
        _exit(127);
    }
}

TerminalProgram::~TerminalProgram()
{
    if (child_ > 0) {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    close(terminal_);
}

bool TerminalProgram::readMore(int milliseconds)
{
    pollfd ready = {terminal_, POLLIN, 0};
    if (poll(&ready, 1, milliseconds) <= 0)
        return false;
    std::array<char, 4096> buffer = {};
    const ssize_t count = read(terminal_, buffer.data(), buffer.size());
    if (count <= 0)
        return false;
    seen_.append(buffer.data(), int(count));
    return true;
}

bool TerminalProgram::waitFor(const QByteArray& text)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!seen_.contains(text)) {
        if (elapsed.elapsed() > 30000 || !readMore(30000))
            return false;
    }
    seen_.remove(0, seen_.indexOf(text) + text.size());
    return true;
}

void TerminalProgram::resize(unsigned short columns, unsigned short rows)
{
    const winsize size = {rows, columns, 0, 0};
    ioctl(terminal_, TIOCSWINSZ, &size);
}

QByteArray TerminalProgram::rest(char key)
{
    if (write(terminal_, &key, 1) != 1)
        return QByteArray();
    while (readMore(30000)) {
    }
    return seen_;
}

int TerminalProgram::exitCode()
{
    int status = 0;
    waitpid(child_, &status, 0);
    child_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class TestHostProgramTerminal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void drawsATableInPlace();
    void followsTheSizeOfTheTerminal();
    void keepsTheLogOutWhenItGoesToAFile();
    void hidesControlCharactersOfAValue();
    void wantsAFileForATraceBesideATable();

private:
    QStringList arguments() const;

    HostProcess host_;
};

void TestHostProgramTerminal::initTestCase()
{
    host_.addItem(QStringLiteral("Pumpengeschwindigkeit"), QStringLiteral("hex:0500/0600"),
                  QStringLiteral("16Bit-INT"));
    host_.addItem(QStringLiteral("T\u00fcr"), QStringLiteral("hex:01"), QStringLiteral("Bit"));
    host_.writeConfig();
}

QStringList TestHostProgramTerminal::arguments() const
{
    return {QStringLiteral("watch"),     QStringLiteral("--config"), host_.configFile(),
            QStringLiteral("--library"), HostProcess::fakeDriver(),  QStringLiteral("--interval"),
            QStringLiteral("50")};
}

void TestHostProgramTerminal::drawsATableInPlace()
{
    TerminalProgram program(arguments(), 80, 24);
    QVERIFY(program.waitFor("Service  https://127.0.0.1:1   project plant\033[K\r"));
    QVERIFY(program.waitFor("Driver   7.8.9"));
    QVERIFY(program.waitFor("Status   ok, since "));
    QVERIFY(program.waitFor("\033[1mITEM "));
    QVERIFY(program.waitFor("Values   2 of 2 have not come yet"));
    QVERIFY(program.waitFor("Pumpengeschwindigkeit  16Bit-INT  \u2013 "));
    QVERIFY(program.waitFor("LOG OF THE DRIVER"));
    // The next drawing goes back up over the first one, whose height the log decides.
    QVERIFY(program.waitFor("\033[?25h\033[?25l\033[1"));
    QVERIFY(program.waitFor("Pumpengeschwindigkeit  16Bit-INT  6 "));
    QVERIFY(program.waitFor("T\u00fcr"));
    QVERIFY(program.waitFor("[TOVIK IoT] Connected to Cloud Success!"));
    const QByteArray rest = program.rest('\003');
    QCOMPARE(program.exitCode(), 0);
    QVERIFY(rest.lastIndexOf("\033[?25h") > rest.lastIndexOf("\033[?25l"));
    QVERIFY(rest.endsWith("\r\033[K"));
}

void TestHostProgramTerminal::followsTheSizeOfTheTerminal()
{
    TerminalProgram program(arguments(), 80, 24);
    QVERIFY(program.waitFor("Pumpengeschwindigkeit  16Bit-INT  6 "));
    program.resize(30, 24);
    QVERIFY(program.waitFor("\033[H\033[J"));
    QVERIFY(program.waitFor("Service  https://127.0.0.1:1 \u2026\033[K"));
    QVERIFY(program.waitFor("Pumpenge"));
    program.resize(80, 8);
    QVERIFY(program.waitFor("\033[H\033[J"));
    QVERIFY(program.waitFor("Service  https://127.0.0.1:1   project plant"));
    program.rest('\003');
    QCOMPARE(program.exitCode(), 0);
}

void TestHostProgramTerminal::keepsTheLogOutWhenItGoesToAFile()
{
    TerminalProgram program(arguments() + QStringList{QStringLiteral("--log"), host_.logFile()}, 80,
                            24);
    QVERIFY(program.waitFor("Pumpengeschwindigkeit  16Bit-INT  6 "));
    const QByteArray drawing = program.rest('\003');
    QCOMPARE(program.exitCode(), 0);
    QVERIFY(drawing.contains("T\u00fcr"));
    QVERIFY(!drawing.contains("LOG OF THE DRIVER"));
    QVERIFY(!drawing.contains("Connected to Cloud"));
    QVERIFY(host_.log().contains(QLatin1String("Connected to Cloud")));
}

/// A value must not steer the terminal.
void TestHostProgramTerminal::wantsAFileForATraceBesideATable()
{
    TerminalProgram program(arguments() + QStringList{QStringLiteral("--trace")}, 80, 24);
    QVERIFY(program.waitFor("--trace=FILE"));
    QCOMPARE(program.exitCode(), 2);
}

void TestHostProgramTerminal::hidesControlCharactersOfAValue()
{
    HostProcess host;
    host.addItem(QStringLiteral("T"), QStringLiteral("hex:411b5b324a0a0742"),
                 QStringLiteral("String"));
    host.writeConfig();
    TerminalProgram program({QStringLiteral("read"), QStringLiteral("T"),
                             QStringLiteral("--config"), host.configFile(),
                             QStringLiteral("--library"), HostProcess::fakeDriver()},
                            80, 24);
    QVERIFY(program.waitFor("T = A\u00b7[2J\u00b7\u00b7B\r\n"));
    QCOMPARE(program.exitCode(), 0);
}

QTEST_GUILESS_MAIN(TestHostProgramTerminal)
#include "tst_host_program_terminal.moc"
