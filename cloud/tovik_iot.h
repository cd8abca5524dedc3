#ifndef CLOUD_TOVIK_IOT_H
#define CLOUD_TOVIK_IOT_H

#include "cloud/conversation.h"
#include "cloud/driver_state.h"
#include "cloud/error_handling.h"
#include "cloud/monitor_data_item.h"
#include "cloud/write_queue.h"
#include "property/property_tovik_iot.h"

#include <QList>
#include <QObject>
#include <QQueue>
#include <QScopedPointer>
#include <QString>
#include <QVariant>

#include <atomic>

class QTcpSocket;
class QTimer;
class ReconnectTimer;
class TrafficListener;

/// The client: the connection to the cloud service, its state, its timers and the order of things.
/// What is said to the service, and how its replies are read, is the Conversation's business.
///
/// Lives in a thread of its own. A request blocks that thread in a nested event loop until the
/// reply has arrived; there is no time-out of the client's own. Timers and queued slots may run
/// inside a request.
///
/// Operations that return int give 0 for success, 256 for a failure that the client detected, and
/// the service's own "errorcode" otherwise. A reply that is JSON but no object raises picojson's
/// error, which nothing catches (docs/hazards.md).
class TovikIot : public QObject, private WriteQueue::Sender
{
    Q_OBJECT

public:
    /// \param property the configuration, shared with the driver; not owned. The client reads it
    ///        and rebuilds its groups.
    /// \param state what it shares with the driver besides; not owned. Null: a state of its own.
    /// \param write_patience the WriteQueue's, in milliseconds
    explicit TovikIot(PropertyTovikIot* property, DriverState* state = 0,
                      int write_patience = WriteQueue::usual_patience);
    ~TovikIot();

    /// Keeps the host's link socket; the client does nothing with it. Not owned.
    void SetDrvLink(QTcpSocket* link);
    /// Takes back a connection that no client makes: without effect, the pointer is kept.
    void RemoveDrvLink();
    /// Has \a listener hear of every request, in the client's thread; null: nobody. Not owned. To
    /// be called before that thread begins.
    void SetTrafficListener(TrafficListener* listener);
    /// Takes the host's error-handling settings. The reconnect interval becomes
    /// 1000 × \a err_return_time ms for type 1 with \a err_return_time_en, otherwise 1000 ms.
    void SetDrvErrHandle(int err_handle_type, int err_return_time, int err_retry_count,
                         bool err_return_time_en, bool err_restore_switch_bs_en);

    /// Logs in and rebuilds the catalogue.
    int Connect2Cloud();
    /// Stops both timers and marks the client as not connected. Sends nothing; the token is kept.
    /// May be called from another thread (closing does).
    void Disconnect2Cloud();
    /// Starts the reconnect timer, if the error-handling settings want it and it is not running.
    void StartReconnect();
    /// Starts polling the served items every 1000 ms, and ends the polling of before; nothing when
    /// there is none. Makes a timer each time; the hundred before it stay below the client.
    void StartMonitor();

    /// Logs in and keeps the token. An empty token is a failure (256, no message).
    int Login(QString project, QString email, QString password);
    /// Replaces the configuration's groups by the service's, items included.
    int GetGroupList(QString token);
    /// Appends the service's items of \a group to it.
    int GetDataitemList(QString token, PropertyTovikIotGroup* group);
    /// Reads one value and appends it to the monitor list.
    int ReadDataitemValue(QString token, PropertyTovikIotDataItem item);
    /// Writes one value. Not a number and infinities raise picojson's `std::overflow_error`.
    int WriteDataitemValue(QString token, PropertyTovikIotDataItem item, const QVariant& value);
    /// Posts \a body to \a url and returns the reply's body up to its first NUL, as Latin-1 text.
    /// A transport error is logged; what arrived (often nothing) is returned all the same.
    QString PostRequest(QString body, QString url);

Q_SIGNALS:
    /// The values of one monitor cycle, in the order of the served items. To a driver whose thread
    /// takes nothing for long, the last ones go together: DriverState::keepsBack().
    void EmitGetMonitor(QList<MonitorDataItem> update_list);
    /// The result of a connect attempt (a successful first one excepted) or of a failed read or
    /// write.
    void EmitUpdateErrCode(int result);

public Q_SLOTS:
    /// Connects for the first time; to be run in the client's thread.
    void SlotInitialLater();
    /// Writes \a write_value to the served item at \a index, which must be in range. A write that
    /// comes while another is on its way waits until that has been answered (WriteQueue); the slot
    /// returns at once then.
    void SlotWriteValue(int index, const QVariant& write_value);
    /// Tries to connect once, unless connected or two attempts are on their way; the reconnect
    /// timer and the driver call it.
    void SlotReconnect();
    /// One monitor cycle: reads every served item and emits the values gathered.
    void SlotMonitorTimeOut();

private:
    Q_DISABLE_COPY(TovikIot)

    template <typename Timer>
    Timer* makeTimer(const char* slot);
    void keepMonitorTimer(QTimer* timer);
    int attemptToConnect();
    void connectionMade();
    void handleFailure(int result);
    Post* postWrite(int index, const QVariant& value);
    void endWrite(Post* post);

    PropertyTovikIot* property_;
    QString token_;
    std::atomic<ReconnectTimer*> reconnect_timer_;
    std::atomic<QTimer*> monitor_timer_;
    QQueue<QTimer*> earlier_monitor_timers_;
    QTcpSocket* link_;
    QList<MonitorDataItem> monitor_list_;
    ErrorHandling error_handling_;
    int attempts_; ///< Attempts to connect that are on their way, one inside the other.
    QScopedPointer<DriverState> own_state_;
    DriverState* state_;
    Conversation conversation_;
    int write_patience_;
    QScopedPointer<WriteQueue> writes_; ///< Made by the first write, in the client's thread.
};

#endif
