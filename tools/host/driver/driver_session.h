#ifndef TOOLS_HOST_DRIVER_DRIVER_SESSION_H
#define TOOLS_HOST_DRIVER_DRIVER_SESSION_H

#include "tools/host/config/config.h"
#include "tools/host/driver/plugin.h"
#include "tools/host/value/json_text.h"
#include "tools/host/value/metrics.h"
#include "tools/host/value/status_text.h"

#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"

#include <QByteArray>
#include <QObject>
#include <QScopedPointer>
#include <QString>
#include <QVector>

#include <optional>

namespace tovik_host::driver {

/// The driver's answer to one request.
struct Answer
{
    bool arrived = false; ///< False: the driver did not answer at all.
    QByteArray bytes;
    int status = 0;
    bool has_value = true; ///< False: the bytes are none that the item has, however many they are.
    value::StatusOf status_of = value::StatusOf::service;
    /// Of a device: why there was no link, or what became of it during the request; empty while it
    /// is well.
    QString link_problem = QString();
};

/// One link with one driver on it, from creation to release. To be used in one thread, which needs
/// a running event loop between requests.
class DriverSession : public QObject
{
    Q_OBJECT

public:
    /// Makes link and driver; the driver connects to the service by itself.
    /// \param config service and error handling are taken from it, its items are not.
    DriverSession(const Plugin& plugin, const config::HostConfig& config,
                  const QVector<config::ItemConfig>& items);
    /// Announces the release to the driver, which ends its work, and deletes driver and link.
    ~DriverSession() override;

    /// Raises a read of the item \a name. \a data_length is the host's room for a text.
    Answer read(const QString& name, int data_length);
    /// Raises a write of \a bytes to the item \a name.
    Answer write(const QString& name, const QByteArray& bytes);
    /// What the driver tells about its own work.
    value::DriverNumbers numbers() const { return value::readNumbers(*driver_); }

private Q_SLOTS:
    void onResponse(QString unit_name, QString link_name, QByteArray bytes, int status);

private:
    QScopedPointer<DrvEthernet> link_;
    QScopedPointer<DrvInterface> driver_;
    Answer answer_;
};

/// A value of \a item as JSON: a list, if it has several elements.
value::OrderedJson jsonOf(const config::ItemConfig& item, const std::optional<QString>& value);
/// The status of an answer, as members of \a line.
void addStatus(value::OrderedJson& line, const Answer& answer);
/// The same, and before it item, type, value and bytes.
void addAnswer(value::OrderedJson& line, const config::ItemConfig& item, const Answer& answer,
               const std::optional<QString>& value);

} // namespace tovik_host::driver

#endif
