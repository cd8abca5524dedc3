#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"
#include "interface/drvlib.h"
#include "tests/twin/ear.h"
#include "tests/twin/service_under_control.h"
#include "tests/twin/transcript.h"
#include "tests/twin/wait_until.h"

#include "property/property_tovik_iot.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QScopedPointer>

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace {

const int loads = 20;
const int any_age = 60000; // ms

/// The library, loaded by path as a host loads it.
class Library
{
public:
    explicit Library(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL))
    {
        if (!handle_)
            qFatal("%s", dlerror());
    }
    ~Library() { dlclose(handle_); }

    DrvInterface* create(DrvEthernet* link) const
    {
        typedef void* (*Create)(void*, void*, DrvEthernet*);
        const Create factory = reinterpret_cast<Create>(dlsym(handle_, "create_drvlib"));
        if (!factory)
            qFatal("%s", dlerror());
        return static_cast<DrvInterface*>(factory(0, 0, link));
    }

private:
    Q_DISABLE_COPY(Library)

    void* handle_;
};

void readAll(DrvInterface* driver, const PropertyTovikIot& property)
{
    QSharedPointer<AddrData> address(new AddrData);
    address->data_length = 20;
    for (int i = 0; i < property.dataitems.size(); ++i) {
        address->address = property.dataitems.at(i).name;
        driver->SigGetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), 1, address);
    }
}

bool isConnected(const DrvInterface* driver)
{
    return driver->property("connected").toBool();
}

/// \param whole with all that a host does; else only loading, a first cycle and closing
void session(const char* path, ServiceUnderControl& service, bool whole)
{
    const Library library(path);
    const PropertyTovikIot property = service.property();
    DrvEthernet link;
    link.driver_specific_data[QLatin1String("tovik_iot")] = QVariant::fromValue(property);
    const QScopedPointer<DrvInterface> driver(library.create(&link));
    Ear ear;
    QObject::connect(driver.data(), SIGNAL(SigResponse(QString, QString, QByteArray, int)), &ear,
                     SLOT(onResponse(QString, QString, QByteArray, int)));
    say("values " + QByteArray::number(waitUntil([&] { return hasValues(*driver, any_age); })));
    readAll(driver.data(), property);
    if (whole) {
        QSharedPointer<AddrData> address(new AddrData);
        for (int i = 0; i < property.dataitems.size(); ++i) {
            address->address = property.dataitems.at(i).name;
            const QByteArray bytes(i == 0 ? "\0\0\0\0" : "!21B", 4);
            driver->SigSetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), 1, bytes,
                                          address);
        }
        const uint all = uint(property.dataitems.size());
        say("written " + QByteArray::number(waitUntil(
                             [&] { return driver->property("write_count").toUInt() == all; })));
        for (int i = 0; i < property.dataitems.size(); ++i)
            say("has " + service.valueOf(property.dataitems.at(i).dataitem_id.toUtf8()));
        service.setFault("refuse");
        say("gone " + QByteArray::number(waitUntil([&] { return !isConnected(driver.data()); })));
        service.setFault("");
        say("back " + QByteArray::number(waitUntil([&] { return isConnected(driver.data()); })));
        QElapsedTimer time;
        time.start();
        say("values " +
            QByteArray::number(waitUntil([&] { return hasValues(*driver, time.elapsed()); })));
        readAll(driver.data(), property);
    }
    link.EmitNotifyBeforeRelease();
}

} // namespace

/// Loads the library by its path and does what a host does.
int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "Usage: twin_host LIBRARY SERVICE-URL CONTROL-URL\n");
        return 2;
    }
    ServiceUnderControl service(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
    collectLog(service.url());
    section("host");
    session(argv[1], service, true);
    section("loads");
    for (int i = 0; i < loads; ++i)
        session(argv[1], service, false);
    return 0;
}
