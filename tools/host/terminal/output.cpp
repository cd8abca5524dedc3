#include "tools/host/terminal/output.h"

#include "tools/file/whole_file.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <system_error>

namespace tovik_host::terminal {

void reserveStandardDescriptors()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        // The lowest free number is taken, and that is this one.
        if (::fcntl(descriptor, F_GETFD) < 0 && ::open("/dev/null", O_RDONLY) < 0)
            return;
    }
}

void Output::write(const QByteArray& bytes)
{
    int done = 0;
    while (error_ == 0 && done < bytes.size()) {
        const ssize_t count =
            ::write(descriptor_, bytes.constData() + done, std::size_t(bytes.size() - done));
        if (count >= 0) {
            done += int(count);
        } else if (errno == EAGAIN) {
            // A terminal or pipe that another program has made non-blocking.
            pollfd ready = {descriptor_, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            error_ = errno;
        }
    }
}

bool Output::broken() const
{
    if (error_ != 0)
        return true;
    // A pipe without a reader says so even while nothing is written to it.
    pollfd reader = {descriptor_, 0, 0};
    return ::poll(&reader, 1, 0) > 0 && reader.revents != 0;
}

ScreenSize Output::screenSize() const
{
    winsize size = {};
    if (::ioctl(descriptor_, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0)
        return {80, 24};
    return {size.ws_col, size.ws_row};
}

void Output::line(const QString& text)
{
    write(text + u'\n');
}

void Output::foreignLine(const QString& text)
{
    line(::isatty(descriptor_) == 1 ? printable(text) : text);
}

namespace {

tovik_file::LineFile opened(const QString& name, const QString& path)
{
    try {
        return tovik_file::LineFile(QFile::encodeName(path).toStdString());
    } catch (const std::system_error& error) {
        throw UsageError(u"cannot write %1: %2"_s.arg(name, qt_error_string(error.code().value())));
    }
}

} // namespace

LineOutput::LineOutput(const QString& what, const QString& path)
    : name_(u"%1 \"%2\""_s.arg(what, printable(path))),
      file_(opened(name_, path))
{}

void LineOutput::line(const QString& text)
{
    const int error = file_.append((text + u'\n').toStdString());
    if (error != 0) {
        Output(STDERR_FILENO)
            .line(u"tovik-host: warning: %1 lacks lines from here on: %2"_s.arg(
                name_, qt_error_string(error)));
    }
}

void checkOutputFile(const QString& path, bool may_replace)
{
    const QFileInfo info(path);
    if (info.isDir())
        throw UsageError(u"%1 is a folder; name a file"_s.arg(printable(path)));
    if (info.exists() && !info.isFile()) {
        throw UsageError(
            u"%1 is a device, a pipe or a socket, which is not replaced; name a file"_s.arg(
                printable(path)));
    }
    if (!may_replace && (info.exists() || info.isSymLink()))
        throw UsageError(u"%1 exists; --force replaces it"_s.arg(printable(path)));
}

void saveFile(const QString& path, const QByteArray& bytes, bool is_secret)
{
    checkOutputFile(path, true);
    try {
        tovik_file::writeWholeFile(QFile::encodeName(path).toStdString(), bytes.toStdString(),
                                   is_secret ? tovik_file::Readers::owner
                                             : tovik_file::Readers::as_before);
    } catch (const std::system_error& error) {
        throw UsageError(
            u"cannot write %1: %2"_s.arg(printable(path), qt_error_string(error.code().value())));
    }
}

} // namespace tovik_host::terminal
