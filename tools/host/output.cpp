#include "tools/host/output.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace tovik_host {

void Output::write(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    int done = 0;
    while (!broken_ && done < bytes.size()) {
        const ssize_t count =
            ::write(descriptor_, bytes.constData() + done, std::size_t(bytes.size() - done));
        if (count >= 0) {
            done += int(count);
        } else if (errno == EAGAIN) {
            // A terminal or pipe that another program has made non-blocking.
            pollfd ready = {descriptor_, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            broken_ = true;
        }
    }
}

bool Output::broken() const
{
    if (broken_)
        return true;
    // A pipe without a reader says so even while nothing is written to it.
    pollfd reader = {descriptor_, 0, 0};
    return ::poll(&reader, 1, 0) > 0 && reader.revents != 0;
}

void Output::line(const QString& text)
{
    write(text + QLatin1Char('\n'));
}

} // namespace tovik_host
