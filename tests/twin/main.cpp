#include "tests/twin/service_under_control.h"
#include "tests/twin/transcript.h"
#include "tests/twin/twin.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

/// Compiled with Qt 4 and with Qt 5, it prints what the library does. Both say the same, but for
/// what is named in tests/twin/differences.json.
int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "Usage: twin SERVICE-URL CONTROL-URL\n");
        return 2;
    }
    ServiceUnderControl service(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
    collectLog(service.url());
    twinConversions();
    twinProtocol();
    twinConfiguration();
    twinShapes();
    twinClient(service);
    twinFramework();
    return 0;
}
