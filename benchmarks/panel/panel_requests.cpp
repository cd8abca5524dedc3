// Logs in to a service and polls one of its items a number of times, as the driver does, and no
// more: what one poll takes is the difference of two runs (scripts/panel-cost).
#include "cloud/conversation.h"

#include <QCoreApplication>

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>

namespace {

void ignore(QtMsgType, const QMessageLogContext&, const QString&) {}

double milliseconds(const timeval& time)
{
    return double(time.tv_sec) * 1000 + double(time.tv_usec) / 1000;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("Usage: panel_requests URL COUNT\n", stderr);
        return 2;
    }
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler(ignore);
    PropertyTovikIot property;
    property.host = QString::fromLocal8Bit(argv[1]);
    const Conversation conversation(&property);
    QString token;
    const service::Outcome login =
        conversation.login(QLatin1String("plant"), QLatin1String("operator@example.com"),
                           QLatin1String("tovik"), &token);
    PropertyTovikIotDataItem item;
    item.dataitem_id = QLatin1String("boiler-flow");
    item.type = QLatin1String("32Bit-FLOAT");
    rusage before;
    getrusage(RUSAGE_SELF, &before);
    for (int left = std::atoi(argv[2]); left > 0; --left) {
        const service::Outcome outcome = conversation.readValue(token, &item);
        if (login.result != service::success || outcome.result != service::success) {
            std::fprintf(stderr, "panel_requests: %s\n",
                         qPrintable(login.detail + QLatin1Char(' ') + outcome.detail));
            return 1;
        }
    }
    rusage after;
    getrusage(RUSAGE_SELF, &after);
    std::printf("%.1f %.1f\n", milliseconds(after.ru_utime) - milliseconds(before.ru_utime),
                milliseconds(after.ru_stime) - milliseconds(before.ru_stime));
}
