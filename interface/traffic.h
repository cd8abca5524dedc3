#ifndef INTERFACE_TRAFFIC_H
#define INTERFACE_TRAFFIC_H

#include "compat/export.h"

#include <QByteArray>
#include <QMetaType>
#include <QString>

class DrvBase;

/// Something that a driver says of its traffic, to whoever listens.
struct TOVIK_EXPORT Traffic
{
    /// What is told: up to `ended` of a device's link, from `asked` on of a service, each request
    /// with its moments in this order. A name that is known later than the request needs it is told
    /// late, and then the connection is not.
    enum Kind
    {
        sent,      ///< These bytes have been handed to the link.
        taken,     ///< These bytes have come from the device.
        discarded, ///< These bytes had come before the request, and are thrown away.
        ended,     ///< An exchange is over, with this code.
        asked,     ///< A request begins. Text: method and address. Bytes: its body.
        named,     ///< The service's name has been looked up. Text: its addresses.
        connected, ///< To the service; to the millisecond. Not told behind a proxy, nor always with
                   ///< HTTP.
        encrypted, ///< The TLS handshake is done; needs Qt 5.1.
        answering, ///< The reply's header is there. Code: 1 if its TLS session is a resumed one.
        answered,  ///< The reply is there, or nothing more comes. Bytes: its body. Code: HTTP's
                   ///< status; 0: none. Text: why the transport has failed; empty: it has not.
    };

    /// Something that happens now.
    explicit Traffic(Kind a_kind, const QByteArray& some_bytes = QByteArray(), int a_code = 0,
                     const QString& a_text = QString());

    Kind kind;        ///< What is told.
    qint64 time;      ///< Microseconds since 1970, UTC.
    QByteArray bytes; ///< Those that the kind says; else none.
    int code;         ///< As well; else 0.
    QString text;     ///< See the kinds; empty where they say nothing.
    int number;       ///< Which of the client's requests it is, from 1; 0 on a device's link.
};

/// Hears what a driver sends and takes, with the moments. docs/writing-a-driver.md has one.
///
/// The link has it, as it has all that the host tells the driver. A driver on DriverBasic tells of
/// the bytes on that link; the cloud driver of its requests, in which passwords and tokens are
/// blotted out. Without a listener nothing is gathered.
///
/// **Threads.** Called where the traffic is: a driver on DriverBasic calls in the driver's own
/// thread with its lock held, the cloud driver in its client's thread. So it must not ask the
/// driver for anything, and what takes long in it delays the traffic. It must outlive the driver.
class TrafficListener
{
public:
    virtual ~TrafficListener() {}
    /// Something has been sent, has come, or has ended.
    virtual void hear(const Traffic& traffic) = 0;
};

Q_DECLARE_METATYPE(TrafficListener*)

namespace traffic {

/// Has \a listener hear the traffic of the driver on \a link; null: nobody. To be called before the
/// driver is made; for one on DriverBasic also later, in its thread, between requests. The link
/// keeps it with its driver-specific data, as "traffic_listener".
TOVIK_EXPORT void setListener(DrvBase* link, TrafficListener* listener);
/// Who listens; null: nobody.
TOVIK_EXPORT TrafficListener* listenerOf(const DrvBase& link);

} // namespace traffic

#endif
