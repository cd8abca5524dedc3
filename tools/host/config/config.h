#ifndef TOOLS_HOST_CONFIG_CONFIG_H
#define TOOLS_HOST_CONFIG_CONFIG_H

#include "tools/host/value/host_value.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

class PropertyTovikIot;

namespace tovik_host::config {

/// Where the service is, and the account. The password is never printed.
struct Account
{
    QString url;
    QString project;
    QString email;
    QString password;
    bool has_password = false; ///< It has been told, if only as an empty one.
    /// Where the password comes from, for a configuration that shall not hold it.
    QString password_file = QString(); ///< Absolute; empty: from no file.
    QString password_env = QString();  ///< Empty: from no variable of the environment.
};

/// How a host asks a device on a link for an item; what the numbers mean is the driver's.
struct ItemRequest
{
    QString address = QString();
    int station = 1;
    int field1 = 0;
    int extra1 = 0;
    int extra2 = 0;
};

/// One data item that the driver is to serve.
struct ItemConfig
{
    QString name; ///< The host addresses the item by it.
    QString id;   ///< The service's id of the item; a device's items have none.
    const value::ItemType* type = nullptr; ///< Never null in a loaded configuration.
    int length = 0;           ///< Characters that a text has room for; 0: as many as come.
    int elements = 1;         ///< Values of the type, one after the other, that are one item.
    ItemRequest request = {}; ///< Of a device's item only.
};

/// The item's value in \a bytes, or nothing if they are none: of several elements, their values
/// with blanks between them.
std::optional<QString> valueOf(const ItemConfig& item, const QByteArray& bytes);
/// The bytes of \a text: of several elements, as many values with blanks between them. Throws
/// UsageError.
QByteArray bytesOf(const ItemConfig& item, const QString& text);

/// What a host hands to the cloud driver that is to serve \a items of a service.
PropertyTovikIot recordOf(const Account& service, const QVector<ItemConfig>& items);

/// The driver's error-handling keys.
struct ErrorHandling
{
    int type = 0;
    int return_time = 5; ///< Seconds.
    int retry_count = 3;
    bool return_time_enabled = true;
    bool restore_switch_enabled = false;
};

struct HostConfig
{
    Account service;
    QVector<ItemConfig> items;
    ErrorHandling error_handling;
};

/// The item of that name (the first, as in the driver), or null.
inline const ItemConfig* findItem(const QVector<ItemConfig>& items, const QString& name)
{
    for (const ItemConfig& item : items) {
        if (item.name == name)
            return &item;
    }
    return nullptr;
}

/// Which of \a all the user means, in the order asked for, each once: an item by its whole name, or
/// those that match a pattern with * ? []. Of items with one name it is the first, as in the
/// driver. Throws UsageError for what means none, and says which name is near.
/// \param whose what has no such item, for the message
/// \param advice what the message says if no name is near
QVector<ItemConfig> chosenItems(const QVector<ItemConfig>& all, const QStringList& wanted,
                                const QString& whose, const QString& advice = QString());

/// \file
/// The largest numbers that options and configurations of devices may have; times in milliseconds.
namespace limits {

const int request_delay = 60000;
const int response_timeout = 600000;
const int retries = 100;
const int station = 65535;
const int length = 65535;
const int elements = 2000;

} // namespace limits

/// The link to a device and its settings, as far as they are given; times in milliseconds.
struct LinkOptions
{
    std::optional<QString> address;
    std::optional<QString> unit;
    std::optional<int> request_delay;
    std::optional<int> response_timeout;
    std::optional<int> retries;
    std::optional<int> link_param_a;
    std::optional<int> link_param_b;
};

/// What a request says beside its address, as far as it is given.
struct RequestOptions
{
    std::optional<QString> type;
    std::optional<int> length;
    std::optional<int> elements;
    std::optional<int> station;
    std::optional<int> field1;
    std::optional<int> extra1;
    std::optional<int> extra2;

    QString typeName() const { return type.value_or(u"16Bit-UINT"_s); }
    /// What is given, in the place of what \a request has.
    void fill(ItemRequest* request) const;
};

/// What commands take in common.
struct CommonOptions
{
    QString config;   ///< The configuration file.
    QString library;  ///< The driver library; empty: where it usually is.
    QString url;      ///< Replaces the configuration's address; empty: does not.
    QString url_file; ///< A file whose first line does the same.
    QString project;
    QString email;
    QString password_file; ///< A file whose first line is the password.
    QString password_env;  ///< A variable of the environment that holds it.
    bool json = false;
    bool quiet = false;
    bool verbose = false; ///< The driver's debug lines go to the standard error.
    QString log;          ///< The driver's debug lines go to this file; empty: to none.
    /// Where the traffic is written: to this file, or to the standard error if it is empty.
    std::optional<QString> trace;
    LinkOptions link;
    RequestOptions request;
    double timeout = 10;         ///< Seconds, for each step or for opening the link.
    QStringList device_options;  ///< The given options that only a device has, as written.
    QStringList service_options; ///< The given options that only a service has.
};

} // namespace tovik_host::config

#endif
