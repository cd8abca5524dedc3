#ifndef TOOLS_HOST_CHECK_CHECK_LINK_H
#define TOOLS_HOST_CHECK_CHECK_LINK_H

#include "tools/host/check/check_step.h"
#include "tools/host/driver/device_config.h"

#include <QVector>

/// \file
/// What the facts of the way to a device mean. Facts in, judged steps out.
namespace tovik_host::check {

/// What became of one read of a device.
struct LinkRead
{
    config::ItemConfig item;
    bool is_tried = false;
    bool has_sent = false;     ///< Something was sent at all.
    int bytes = 0;             ///< That came for an answer.
    int stray_bytes = 0;       ///< That had come before, and were thrown away.
    double seconds = 0;        ///< From the request to the last byte; 0: none came.
    int status = 0;            ///< The driver's.
    QString problem;           ///< Why there is no value; empty if there is one.
    QString value = QString(); ///< The value in words.

    bool isGood() const { return is_tried && problem.isEmpty(); }
};

/// Opening the link.
/// \param problem why it is not open; empty if it is
CheckStep judgeOpening(const driver::DeviceConfig& config, const QString& problem, double seconds);
/// How the link is set; on a serial line also what its speed comes to.
CheckStep judgeLineSettings(const driver::DeviceConfig& config);
/// Whether any byte comes back at all.
CheckStep judgeAnyAnswer(const driver::DeviceConfig& config, const QVector<LinkRead>& reads);
/// Whether what comes back are answers of the stations that were asked.
CheckStep judgeStation(const QVector<LinkRead>& reads);
/// One item.
CheckStep judgeLinkItem(const LinkRead& read);
/// How long answers take, against how long the driver waits for them.
/// \param reads with an answer
CheckStep judgeTimes(const driver::DeviceConfig& config, const QVector<LinkRead>& reads);

} // namespace tovik_host::check

#endif
