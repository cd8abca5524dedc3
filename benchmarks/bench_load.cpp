// The size of the library, and what it takes to load it and to make a driver, each time in a fresh
// process, beside an empty plug-in. Prints rows (README.md). With --probe it is such a process.

#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"
#include "interface/drvlib.h"
#include "property/property_tovik_iot.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

const int usual_rounds = 41;
const int quick_rounds = 11;
const double most_kib = 400;
const double most_more_ms = 3;
const int served_items = 10;
const int process_time = 30000;

void ignoreMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

/// A configuration whose service has no transport: nobody is contacted.
QVariant configuration()
{
    PropertyTovikIot property;
    property.host = QLatin1String("none:");
    for (int i = 0; i < served_items; ++i) {
        PropertyTovikIotDataItem item;
        item.name = QString::number(i);
        item.dataitem_id = item.name;
        property.dataitems.append(item);
    }
    return QVariant::fromValue(property);
}

/// Loads \a library, makes a driver, and prints how many nanoseconds that took.
int probe(const char* library)
{
    DrvEthernet link;
    link.driver_specific_data[QLatin1String("tovik_iot")] = configuration();
    link.driver_specific_data[QLatin1String("tovik_iot_err_handle_type")] = 3;

    QElapsedTimer timer;
    timer.start();
    void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 2;
    }
    const auto create = reinterpret_cast<decltype(&create_drvlib)>(dlsym(handle, "create_drvlib"));
    DrvInterface* driver = create(nullptr, nullptr, &link);
    std::printf("%lld\n", static_cast<long long>(timer.nsecsElapsed()));

    Q_EMIT link.EmitNotifyBeforeRelease();
    delete driver;
    return 0;
}

void fail(const QString& program)
{
    std::fprintf(stderr, "%s failed\n", qPrintable(program));
    std::exit(2);
}

QByteArray outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    if (!process.waitForFinished(process_time) || process.exitCode() != 0)
        fail(program);
    return process.readAllStandardOutput();
}

double probedMilliseconds(const char* library)
{
    const QStringList arguments = {QLatin1String("--probe"), QString::fromLocal8Bit(library)};
    return outputOf(QApplication::applicationFilePath(), arguments).trimmed().toDouble() / 1e6;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double strippedKib()
{
    const QTemporaryDir directory;
    const QString stripped = directory.filePath(QLatin1String("library"));
    outputOf(QLatin1String("strip"),
             {QLatin1String("-o"), stripped, QString::fromLocal8Bit(TOVIK_LIBRARY)});
    return double(QFileInfo(stripped).size()) / 1024;
}

int compareLoading(int rounds)
{
    probedMilliseconds(TOVIK_LIBRARY); // brings the files into the system's cache
    probedMilliseconds(EMPTY_PLUGIN);
    std::vector<double> ours;
    std::vector<double> peer;
    for (int i = 0; i < rounds; ++i) {
        ours.push_back(probedMilliseconds(TOVIK_LIBRARY));
        peer.push_back(probedMilliseconds(EMPTY_PLUGIN));
    }
    std::printf("[\n  {\"name\": \"stripped library\", \"ours\": %.0f, \"unit\": \"KiB\", "
                "\"target\": %.0f, \"kind\": \"value\"},\n",
                strippedKib(), most_kib);
    std::printf("  {\"name\": \"loading it and making a driver\", \"ours\": %.3f, \"peer\": %.3f, "
                "\"unit\": \"ms\", \"target\": %.0f, \"kind\": \"difference\"}\n]\n",
                median(ours), median(peer), most_more_ms);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(ignoreMessage);
    // Loads what a host with windows has loaded anyway: an empty plug-in does not bring it either.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--probe") == 0)
        return probe(argv[2]);
    return compareLoading(argc == 2 && qstrcmp(argv[1], "--quick") == 0 ? quick_rounds
                                                                        : usual_rounds);
}
