#include "tests/twin/ear.h"

#include "tests/twin/transcript.h"

void Ear::onResponse(QString unit_name, QString link_name, QByteArray ba, int status)
{
    say("answer " + unit_name.toUtf8() + ' ' + link_name.toUtf8() + ' ' + hex(ba) + ' ' +
        QByteArray::number(status, 16));
}

void Ear::onTransparentResponse(const QByteArray& ba, int status)
{
    say("transparent " + hex(ba) + ' ' + QByteArray::number(status, 16));
}

void Ear::onMonitor(QList<MonitorDataItem> update_list)
{
    for (int i = 0; i < update_list.size(); ++i)
        say("monitor " + update_list.at(i).dataitem_id.toUtf8() + ' ' +
            textOf(update_list.at(i).value));
    say("monitor end");
}

void Ear::onErrCode(int result)
{
    say("result " + QByteArray::number(result));
}
