// Runs the lines of the README against a service whose item X is 21: exits with 0 if the reads and
// the write do what the README says.
// @headers@

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <cstdio>
#include <functional>

namespace {

bool is_written = false;
int answers = 0;

void listen(QtMsgType, const QMessageLogContext&, const QString& line)
{
    std::fprintf(stderr, "%s\n", qPrintable(line));
    if (line.contains(QLatin1String("Write value done!")))
        is_written = true;
}

/// Runs the event loop until it is so; false after two minutes, which only a failed test takes.
bool waitUntil(const std::function<bool()>& is_so)
{
    QEventLoop loop;
    QTimer often;
    QObject::connect(&often, &QTimer::timeout, &loop, [&] {
        if (is_so())
            loop.quit();
    });
    often.start(20);
    QTimer::singleShot(120000, &loop, &QEventLoop::quit);
    loop.exec();
    return is_so();
}

} // namespace

// @class@

void Host::onResponse(QString, QString, QByteArray bytes, int status)
{
    bytes_ = bytes;
    status_ = status;
    ++answers;
}

int Host::run()
{
    // @start@

    const auto polled = [&] {
        QSharedPointer<AddrData> address(new AddrData);
        address->address = QLatin1String("Temp");
        emit driver->SigGetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), 0,
                                           address);
        // @ages@

        return is_there && status_ == 0 && bytes_ == QByteArray("\x15\x00", 2);
    };
    if (!waitUntil(polled))
        return 1;
    answers = 0;
    // @requests@

    const bool is_answered = answers == 2;
    const bool is_sent = waitUntil([] { return is_written; });
    // @end@

    std::fprintf(stderr, "answered %d, sent %d\n", is_answered, is_sent);
    return is_answered && is_sent ? 0 : 1;
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    qInstallMessageHandler(listen);
    return Host().run();
}

#include "host.moc"
