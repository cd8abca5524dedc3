#include "interface/drv_ethernet.h"
#include "interface/drvlib.h"
#include "property/property_tovik_iot.h"
#include "tests/support/host_side.h"
#include "tests/support/scripted_service.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QThread>

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <sys/resource.h>

// A host that takes the library out of its process and goes on, started by tst_plugin_unload: it
// may end badly. It compiles the records as every host does, but uses them only when the library
// has made them known to Qt, so that what Qt keeps are the library's functions.

namespace {

const int patience = 30000; // ms
const int round_count = 20;

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

void require(bool is_right, const char* what)
{
    if (is_right)
        return;
    std::printf("not so: %s\n", what);
    std::fflush(stdout);
    std::_Exit(1);
}

bool waitFor(const std::function<bool()>& is_there)
{
    QElapsedTimer waited;
    waited.start();
    while (!is_there() && waited.elapsed() < patience)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    return is_there();
}

ScriptedReply answer(const ScriptedRequest& request)
{
    if (request.path.endsWith("login"))
        return ScriptedReply::json("{\"errorcode\":0,\"token\":\"T\"}");
    if (request.path.endsWith("list"))
        return ScriptedReply::json("{\"errorcode\":0,\"Number\":0,\"groups\":[]}");
    return ScriptedReply::json("{\"errorcode\":0,\"value\":\"from the service\"}");
}

/// A library that is loaded, and can be let go.
class Library
{
public:
    explicit Library(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL))
    {
        require(handle_ != nullptr, "the library loads");
    }

    template <typename Function>
    Function* function(const char* name) const
    {
        void* const symbol = dlsym(handle_, name);
        require(symbol != nullptr, name);
        return reinterpret_cast<Function*>(symbol);
    }

    std::unique_ptr<DrvInterface> create(DrvEthernet* link) const
    {
        auto* const factory = function<decltype(create_drvlib)>("create_drvlib");
        return std::unique_ptr<DrvInterface>(factory(nullptr, nullptr, link));
    }

    void* handle() const { return handle_; }
    void unload() { require(dlclose(handle_) == 0, "dlclose"); }

private:
    void* handle_;
};

/// Has the library make its types known to Qt: the configuration by a driver that reaches nothing,
/// and how to stream it by the operator of its items.
void letTheLibraryRegister(const Library& library)
{
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, latin1("127.0.0.1"), 1));
    DrvEthernet link;
    const std::unique_ptr<DrvInterface> driver = library.create(&link);
    Q_EMIT link.EmitNotifyBeforeRelease();
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));

    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    library.function<QDataStream&(QDataStream&, const PropertyTovikIotDataItem&)>(
        "_ZlsR11QDataStreamRK24PropertyTovikIotDataItem")(stream, PropertyTovikIotDataItem());
}

QVariant configuration(const ScriptedService& service)
{
    PropertyTovikIot property;
    property.host = service.url();
    property.project = latin1("Plant");
    PropertyTovikIotDataItem item;
    item.name = latin1("Text");
    item.dataitem_id = latin1("ID");
    item.type = latin1("String");
    property.dataitems.append(item);
    return QVariant::fromValue(property);
}

QByteArray streamed(const QVariant& variant)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << variant;
    return bytes;
}

/// The stored configuration goes out and comes in; nobody asks whether the library is there.
void requireStreaming(const QVariant& stored)
{
    const QByteArray bytes = streamed(stored);
    QVariant again;
    QDataStream stream(bytes);
    stream >> again;
    require(stream.status() == QDataStream::Ok && bytes.size() > 100, "streaming");
    require(qvariant_cast<PropertyTovikIot>(again) == qvariant_cast<PropertyTovikIot>(stored),
            "what is read is what was written");
    require(streamed(again) == bytes, "streamed again");
}

/// A driver that talks to the service and has writes on their way.
std::unique_ptr<DrvInterface> talkingDriver(const Library& library, const QVariant& stored,
                                            DrvEthernet* link, ScriptedService* service)
{
    service->reset();
    link->driver_specific_data[latin1("tovik_iot")] = stored;
    std::unique_ptr<DrvInterface> driver = library.create(link);
    HostSide host;
    host.attach(driver.get());
    require(waitFor([&] { return !service->requests().isEmpty(); }), "the client asks");
    for (int i = 0; i < 5; ++i)
        require(host.write(latin1("Text"), "written").status == 0, "a write is answered");
    return driver;
}

/// The same after its first cycle, which comes a second after the login.
std::unique_ptr<DrvInterface> usedDriver(const Library& library, const QVariant& stored,
                                         DrvEthernet* link, ScriptedService* service)
{
    std::unique_ptr<DrvInterface> driver = talkingDriver(library, stored, link, service);
    HostSide host;
    host.attach(driver.get());
    const auto read = [&host] { return host.read(latin1("Text")).bytes; };
    require(waitFor([&] { return read() == "from the service"; }), "a value arrives");
    require(host.write(latin1("Text"), "written").status == 0, "a write is answered");
    return driver;
}

/// Loads, uses, closes, unloads and goes on, twenty times over.
void unloadAndGoOn(const char* path)
{
    ScriptedService service;
    service.setHandler(answer);
    void* handle = nullptr;
    void* factory = nullptr;
    for (int i = 0; i < round_count; ++i) {
        Library library(path);
        void* const found = dlsym(library.handle(), "create_drvlib");
        require(i == 0 || (library.handle() == handle && found == factory), "the same library");
        handle = library.handle();
        factory = found;
        if (i == 0)
            letTheLibraryRegister(library);
        const QVariant stored = configuration(service);
        const QVariant monitored(QMetaType::type("QList<MonitorDataItem>"), nullptr);
        require(monitored.isValid(), "a list that only the library knows");
        DrvEthernet link;
        const auto use = i % 10 == 0 ? usedDriver : talkingDriver;
        std::unique_ptr<DrvInterface> driver = use(library, stored, &link, &service);
        Q_EMIT link.EmitNotifyBeforeRelease();
        // What Qt has still to deliver goes to the driver, which goes only then.
        QMetaObject::invokeMethod(driver.get(), "SlotUpdateErrCode", Qt::QueuedConnection,
                                  Q_ARG(int, 15));
        driver.release()->deleteLater();
        library.unload();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const QVariant copy(monitored);
        require(copy.userType() == monitored.userType(), "copied");
        requireStreaming(stored);
    }
    require(dlopen(path, RTLD_NOW | RTLD_NOLOAD) == handle, "it has stayed");
}

/// Nobody says that the link goes: the client runs on, in a library that is let go.
void unloadWithoutClosing(const char* path)
{
    ScriptedService service;
    service.setHandler(answer);
    Library library(path);
    letTheLibraryRegister(library);
    DrvEthernet link;
    usedDriver(library, configuration(service), &link, &service).reset();
    library.unload();
    service.reset();
    require(waitFor([&] { return service.requests().size() > 2; }), "the client polls on");
}

/// The same library from two files: two libraries to the loader.
void twoCopies(const char* path, const char* other_path)
{
    ScriptedService service;
    service.setHandler(answer);
    Library library(path);
    Library other(other_path);
    require(library.handle() != other.handle(), "two libraries");
    letTheLibraryRegister(library);
    const int type = QMetaType::type("PropertyTovikIot");
    letTheLibraryRegister(other);
    require(QMetaType::type("PropertyTovikIot") == type, "one type");
    const QVariant stored = configuration(service);
    DrvEthernet link;
    DrvEthernet other_link;
    std::unique_ptr<DrvInterface> driver = usedDriver(library, stored, &link, &service);
    std::unique_ptr<DrvInterface> other_driver = usedDriver(other, stored, &other_link, &service);
    Q_EMIT link.EmitNotifyBeforeRelease();
    driver.reset();
    library.unload();
    requireStreaming(stored);
    HostSide host;
    host.attach(other_driver.get());
    require(host.write(latin1("Text"), "still").status == 0, "the other one goes on");
    Q_EMIT other_link.EmitNotifyBeforeRelease();
    other_driver.reset();
    other.unload();
    requireStreaming(stored);
}

} // namespace

int main(int argc, char** argv)
{
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none); // one of the tests wants it to crash
    QCoreApplication application(argc, argv);
    require(argc >= 3, "usage: unload_host WHAT LIBRARY [COPY]");
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type != QtDebugMsg)
            std::printf("warning: %s\n", qPrintable(text));
    });
    const std::string what = argv[1];
    if (what == "go-on")
        unloadAndGoOn(argv[2]);
    else if (what == "without-closing")
        unloadWithoutClosing(argv[2]);
    else if (what == "two-copies" && argc > 3)
        twoCopies(argv[2], argv[3]);
    else
        require(false, "WHAT is go-on, without-closing or two-copies");
    std::printf("done\n");
    return 0;
}
