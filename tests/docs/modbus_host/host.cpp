// Runs the lines of the guide with the driver that the first argument names: exits with 0 if a read
// of holding register 1 answers 100, and the version is the one that the guide says.
#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"

#include <QCoreApplication>

#include <cstdio>
#include <dlfcn.h>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    void* library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!library) {
        std::fprintf(stderr, "no driver: %s\n", dlerror());
        return 1;
    }
    auto create =
        reinterpret_cast<DrvInterface* (*)(void*, void*, void*)>(dlsym(library, "create_drvlib"));
    auto version = reinterpret_cast<quint32 (*)()>(dlsym(library, "drv_version"));
    // @block@

    // The machine of a test may be slow.
    link->response_timeout = 30000;
    emit driver->SigUpdateDrvEthernet();
    QByteArray answer;
    int result = -1;
    QObject::connect(driver, &DrvInterface::SigResponse,
                     [&](const QString&, const QString&, const QByteArray& bytes, int status) {
                         answer = bytes;
                         result = status;
                     });
    const bool is_open = link->waitForConnected(30000);
    QSharedPointer<AddrData> address(new AddrData);
    address->address = QLatin1String("4x1");
    address->data_length = 2;
    emit driver->SigGetValuesByteArray(QString(), QString(), 1, address);
    delete driver;
    delete link;
    std::fprintf(stderr, "open %d, status %x, bytes %s, version %x\n", is_open, unsigned(result),
                 answer.toHex().constData(), version());
    return result == 0 && answer == QByteArray("\x64\x00", 2) && version() == 0x10000 ? 0 : 1;
}
