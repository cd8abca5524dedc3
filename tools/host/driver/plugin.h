#ifndef TOOLS_HOST_DRIVER_PLUGIN_H
#define TOOLS_HOST_DRIVER_PLUGIN_H

#include "framework/result_code.h"

#include <QString>
#include <QStringList>

class DrvEthernet;
class DrvInterface;
class DrvSerial;
class TrafficListener;

namespace tovik_host::driver {

/// A driver library, loaded by path; known by its entry points only.
///
/// It stays loaded to the end of the process: Qt keeps functions of it.
class Plugin
{
public:
    /// Loads \a path. Throws UsageError when that fails or an entry point is missing.
    explicit Plugin(const QString& path);

    /// Loads the first of \a candidates that exists as a file; the last one is left to the loader
    /// and its own places.
    static Plugin loadFirst(const QStringList& candidates);
    /// Where the driver library may be for a program in \a program_folder: beside an installed
    /// program, in the build tree, and wherever the loader looks.
    static QStringList candidates(const QString& program_folder);
    /// Where the driver of a device may be that the user calls \a name: it itself if it is a path
    /// or the name of a file, else "modbus_drv" stands for libmodbus_drv.so.1 in the folder of
    /// drivers beside an installed program, in the build tree, and wherever the loader looks.
    static QStringList candidatesFor(const QString& name, const QString& program_folder);

    QString path() const { return path_; }
    /// The driver's version as "major.minor.patch".
    QString versionText() const;
    /// Words for the driver's own result codes; null if the library brings none.
    const result_code::Words* resultCodes() const { return result_codes_; }
    /// Has \a listener, which is not owned, hear the traffic of every driver that is made from now
    /// on.
    void setListener(TrafficListener* listener) { listener_ = listener; }
    /// A new driver, owned by the caller. Throws UsageError if the library makes none.
    /// \param name the driver's name, null or alive as long as the driver
    /// \param serial, ethernet the link: one of them, or for a cloud driver \a ethernet
    DrvInterface* createDriver(QString* name, DrvSerial* serial, DrvEthernet* ethernet) const;

private:
    using Factory = DrvInterface* (*)(void*, void*, DrvEthernet*);
    using Version = quint32 (*)();

    QString path_;
    Factory factory_ = nullptr;
    Version version_ = nullptr;
    const result_code::Words* result_codes_ = nullptr;
    TrafficListener* listener_ = nullptr;
};

} // namespace tovik_host::driver

#endif
