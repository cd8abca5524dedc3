#ifndef TOOLS_HOST_OPTIONS_H
#define TOOLS_HOST_OPTIONS_H

#include <QString>
#include <QStringList>

namespace tovik_host {

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
};

struct WatchOptions
{
    double seconds = 0; ///< 0: until a signal.
    int interval = 500; ///< Milliseconds between the rounds of reads.
};

struct ReadOptions
{
    QStringList items;
    bool quiet = false;
    double timeout = 10;
};

struct WriteOptions
{
    QString item;
    QString value;
    double confirm = 0; ///< 0: is not confirmed.
    double timeout = 10;
};

} // namespace tovik_host

#endif
