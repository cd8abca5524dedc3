#ifndef TOOLS_HOST_CONFIG_OPTIONS_H
#define TOOLS_HOST_CONFIG_OPTIONS_H

#include "tools/host/config/config.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace tovik_host::config {

/// \file
/// The largest numbers that options and configurations of devices may have; times in milliseconds.
namespace limits {

const int request_delay = 60000;
const int response_timeout = 600000;
const int retries = 100;
const int station = 65535;
const int length = 65535;

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
    std::optional<int> station;
    std::optional<int> field1;
    std::optional<int> extra1;
    std::optional<int> extra2;

    QString typeName() const { return type.value_or(QStringLiteral("16Bit-UINT")); }
    /// What is given, in the place of what \a request has.
    void fill(ItemRequest* request) const;
};

/// What every command takes.
struct CommonOptions
{
    QString config;   ///< The configuration file.
    QString library;  ///< The driver library; empty: where it usually is.
    QString url;      ///< Replaces the configuration's address; empty: does not.
    QString url_file; ///< A file whose first line does the same.
    bool json = false;
    bool verbose = false; ///< The driver's debug lines go to the standard error.
    QString log;          ///< The driver's debug lines go to this file; empty: to none.
    LinkOptions link;
    RequestOptions request;
    double timeout = 10;         ///< Seconds, for each step or for opening the link.
    QStringList device_options;  ///< The given options that only a device has, as written.
    QStringList service_options; ///< The given options that only a service has.
};

} // namespace tovik_host::config

#endif
