#ifndef BENCHMARKS_PLAIN_CONFIGURATION_H
#define BENCHMARKS_PLAIN_CONFIGURATION_H

#include <QDataStream>
#include <QList>
#include <QString>
#include <QVariant>

namespace bench {

/// A served item as a plain structure, streamed member by member.
struct PlainItem
{
    QString name;
    QString dataitem_id;
    QString type;
    int length;
    QVariant value;
    int cloud_status;
    bool alert;
    int update_time;
    bool marked;
};

/// A configuration of plain structures, streamed with Qt's own operators for lists. Its groups are
/// always empty here, so that any element type does.
struct PlainConfiguration
{
    bool aux_flag;
    QString host;
    int aux_value;
    QString project;
    QString email;
    QString password;
    QList<QString> groups;
    QList<PlainItem> dataitems;
};

QDataStream& operator>>(QDataStream& stream, PlainItem& item);
QDataStream& operator>>(QDataStream& stream, PlainConfiguration& configuration);

} // namespace bench

#endif
