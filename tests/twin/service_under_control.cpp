#include "tests/twin/service_under_control.h"

#include "property/property_tovik_iot.h"

#include <QTcpSocket>
#include <QUrl>

namespace {

const int patience = 10000; // ms

const char* const types[] = {"Bit",       "16Bit-BCD", "16Bit-INT",  "16Bit-UINT",
                             "16Bit-HEX", "32Bit-BCD", "32Bit-INT",  "32Bit-UINT",
                             "32Bit-HEX", "String",    "32Bit-FLOAT"};

} // namespace

ServiceUnderControl::ServiceUnderControl(const QString& url, const QString& control_url)
    : url_(url),
      control_url_(control_url)
{}

PropertyTovikIot ServiceUnderControl::property() const
{
    PropertyTovikIot property;
    property.host = url_;
    property.project = QLatin1String("twin");
    property.email = QLatin1String("twin@example.com");
    property.password = QLatin1String("secret");
    for (const char* type : types) {
        PropertyTovikIotDataItem item;
        item.name = QLatin1String(type);
        item.dataitem_id = QLatin1String(type);
        item.type = QLatin1String(type);
        property.dataitems.append(item);
    }
    return property;
}

void ServiceUnderControl::setFault(const QByteArray& fault)
{
    ask("DELETE", "/faults", QByteArray());
    if (!fault.isEmpty())
        ask("POST", "/faults", "{\"fault\":\"" + fault + "\"}");
}

QByteArray ServiceUnderControl::valueOf(const QByteArray& item_id)
{
    const QByteArray item = ask("GET", "/items/" + item_id, QByteArray());
    const int start = item.indexOf("\"value\":") + 8;
    return item.mid(start, item.lastIndexOf('}') - start);
}

void ServiceUnderControl::setValue(const QByteArray& item_id, const QByteArray& json)
{
    ask("PUT", "/items/" + item_id, "{\"value\":" + json + "}");
}

QByteArray ServiceUnderControl::ask(const char* method, const QByteArray& path,
                                    const QByteArray& body)
{
    const QUrl url(control_url_);
    QTcpSocket socket;
    socket.connectToHost(url.host(), quint16(url.port()));
    if (!socket.waitForConnected(patience))
        qFatal("no control port at %s", qPrintable(control_url_));
    const QByteArray port = QByteArray::number(url.port());
    socket.write(QByteArray(method) + ' ' + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + port +
                 "\r\nConnection: close\r\nContent-Type: application/json\r\nContent-Length: " +
                 QByteArray::number(body.size()) + "\r\n\r\n" + body);
    QByteArray answer;
    while (socket.waitForReadyRead(patience))
        answer += socket.readAll();
    answer += socket.readAll();
    if (!answer.startsWith("HTTP/1.1 200") && !answer.startsWith("HTTP/1.1 201"))
        qFatal("the control port says to %s %s: %s", method, path.constData(), answer.constData());
    return answer.mid(answer.indexOf("\r\n\r\n") + 4);
}
