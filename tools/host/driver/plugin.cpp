#include "tools/host/driver/plugin.h"

#include "tools/host/terminal/exit_code.h"

#include "interface/drv_ethernet.h"
#include "interface/drv_serial.h"
#include "interface/traffic.h"

#include <QDir>
#include <QFileInfo>

#include <dlfcn.h>

#include <array>

namespace tovik_host::driver {

namespace {

/// \a files in the folders of libraries that belong to a program in \a program_folder; \a below
/// these in an installed tree, \a in_tree in the build tree.
QStringList besideProgram(const QString& program_folder, const QStringList& files,
                          const QString& below, const QString& in_tree)
{
    const QDir folder(program_folder);
    const std::array<QString, 3> places = {QStringLiteral(TOVIK_HOST_LIBRARY_FOLDER) + below,
                                           u"../lib"_s + below, u"../.."_s + in_tree};
    QStringList paths;
    for (const QString& place : places) {
        for (const QString& file : files)
            paths << QDir::cleanPath(folder.absoluteFilePath(place) + u'/' + file);
    }
    paths.removeDuplicates();
    return paths << files.first();
}

QString loaderError()
{
    const char* text = dlerror(); // NOLINT(concurrency-mt-unsafe): one per thread
    return text ? QString::fromLocal8Bit(text) : u"no reason given"_s;
}

/// Why the library at \a path was not loaded. The loader names the file that it does not find,
/// which may be another one that the library needs.
QString loadProblem(const QString& path)
{
    const QString error = loaderError();
    const QString missing = error.section(u':', 0, 0);
    if (missing == path || !QFileInfo(path).isFile() || !missing.contains(QLatin1String(".so"))) {
        return u"cannot load the driver library: %1. Build or install it, or name it with "
               "--library."_s.arg(error);
    }
    return u"cannot load the driver library %1, since it needs another: %2. LD_LIBRARY_PATH or "
           "ldconfig tells the loader where %3 is."_s.arg(path, error, missing);
}

/// The entry point \a name as a function of type Function.
template <typename Function>
Function entryPoint(void* library, const char* name, const QString& path)
{
    dlerror(); // NOLINT(concurrency-mt-unsafe): as above
    void* address = dlsym(library, name);
    if (!address) {
        throw terminal::UsageError(
            u"\"%1\" is not a driver plug-in: it has no entry point \"%2\" (%3). Name the driver "
            "library with --library."_s.arg(path, QLatin1String(name), loaderError()));
    }
    return reinterpret_cast<Function>(address);
}

} // namespace

Plugin::Plugin(const QString& path) : path_(path)
{
    void* library = dlopen(path.toLocal8Bit().constData(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw terminal::UsageError(loadProblem(path));
    factory_ = entryPoint<Factory>(library, "create_drvlib", path);
    version_ = entryPoint<Version>(library, "drv_version", path);
    const auto result_codes =
        reinterpret_cast<decltype(&drv_result_codes)>(dlsym(library, "drv_result_codes"));
    result_codes_ = result_codes ? result_codes() : nullptr;
}

Plugin Plugin::loadFirst(const QStringList& candidates)
{
    for (const QString& candidate : candidates) {
        if (QFileInfo(candidate).isFile())
            return Plugin(candidate);
    }
    return Plugin(candidates.last());
}

QStringList Plugin::candidates(const QString& program_folder)
{
    return besideProgram(program_folder, {u"libtovik_iot.so.1"_s}, QString(), QString());
}

QStringList Plugin::candidatesFor(const QString& name, const QString& program_folder)
{
    const bool is_file =
        name.contains(u'/') || name.contains(QLatin1String(".so")) || QFileInfo(name).isFile();
    if (is_file)
        return {name};
    const QString file = u"lib%1.so"_s.arg(name);
    const QString example = QString(name).remove(u"_drv"_s);
    return besideProgram(program_folder, {file + QLatin1String(".1"), file}, u"/tovik"_s,
                         u"/examples/"_s + example);
}

QString Plugin::versionText() const
{
    const quint32 version = version_();
    return u"%1.%2.%3"_s.arg(version >> 16).arg((version >> 8) & 0xFF).arg(version & 0xFF);
}

DrvInterface* Plugin::createDriver(QString* name, DrvSerial* serial, DrvEthernet* ethernet) const
{
    DrvBase* const link = serial ? static_cast<DrvBase*>(serial) : ethernet;
    if (link && listener_)
        traffic::setListener(link, listener_);
    DrvInterface* const driver = factory_(name, serial, ethernet);
    if (!driver)
        throw terminal::UsageError(u"the library \"%1\" makes no driver"_s.arg(path_));
    return driver;
}

} // namespace tovik_host::driver
