#ifndef TESTS_TWIN_EAR_H
#define TESTS_TWIN_EAR_H

#include "cloud/monitor_data_item.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

/// Prints what a client or a driver emits.
class Ear : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void onResponse(QString unit_name, QString link_name, QByteArray ba, int status);
    void onTransparentResponse(const QByteArray& ba, int status);
    void onMonitor(QList<MonitorDataItem> update_list);
    void onErrCode(int result);
};

#endif
