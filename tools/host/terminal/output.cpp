#include "tools/host/terminal/output.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text_width.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

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

void Output::line(const QString& text)
{
    write(text + QLatin1Char('\n'));
}

void Output::foreignLine(const QString& text)
{
    line(::isatty(descriptor_) == 1 ? printable(text) : text);
}

void checkOutputFile(const QString& path, bool may_replace)
{
    const QFileInfo info(path);
    if (info.isDir())
        throw UsageError(QStringLiteral("%1 is a folder; name a file").arg(printable(path)));
    if (info.exists() && !info.isFile()) {
        throw UsageError(
            QStringLiteral("%1 is a device, a pipe or a socket, which is not replaced; "
                           "name a file")
                .arg(printable(path)));
    }
    if (!may_replace && (info.exists() || info.isSymLink()))
        throw UsageError(QStringLiteral("%1 exists; --force replaces it").arg(printable(path)));
}

void saveFile(const QString& path, const QByteArray& bytes, bool is_secret)
{
    checkOutputFile(path, true);
    QSaveFile file(path);
    // Nobody else may open a secret before it has its mode, not even the empty file.
    const mode_t mask = is_secret ? ::umask(0077) : 0;
    bool is_done = file.open(QIODevice::WriteOnly);
    if (is_secret)
        ::umask(mask);
    // It has the mode of the file that it replaces.
    if (is_done && is_secret)
        is_done = file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    is_done = is_done && file.write(bytes) == bytes.size() && file.commit();
    if (!is_done) {
        throw UsageError(
            QStringLiteral("cannot write %1: %2").arg(printable(path), file.errorString()));
    }
}

} // namespace tovik_host::terminal
