#ifndef FRAMEWORK_DRIVER_BASIC_H
#define FRAMEWORK_DRIVER_BASIC_H

#include "compat/export.h"
#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"
#include "interface/drv_serial.h"
#include "interface/traffic.h"

#include <QByteArray>
#include <QMap>
#include <QMutex>
#include <QSharedPointer>
#include <QString>

class QIODevice;

/// Which way a command goes.
enum E_CMD_DIR
{
    CMD_READ = 0, ///< The host reads.
    CMD_WRITE = 1 ///< The host writes.
};

/// The base of drivers that talk to a device over a serial line or a TCP connection.
///
/// A driver derives from it, says in request_build() how a request looks and in response_parse()
/// what an answer means, and waits for the answer in request_send_wait(). DriverBasic takes the
/// host's requests, runs one exchange for each (doCmdSM()), repeats it as often as the link's
/// settings say, and gives exactly one answer.
///
/// A read of two registers from a Modbus device over TCP, as the hooks see it:
/// \code
/// request_build      appends  00 01 00 00 00 06 01 03 00 0A 00 02   and returns 13
/// request_send_wait  returns 0 with 13 bytes waiting on the link
/// response_parse     gets     00 01 00 00 00 07 01 03 04 12 34 56 78 and puts 34 12 78 56 in data
/// SigResponse        carries  34 12 78 56 with status 0
/// \endcode
///
/// **Result codes**, the `status` of the answers: those of framework/result_code.h, and what the
/// driver's own response_parse() or request_build() said. docs/result-codes.md says what to do
/// about each.
///
/// **Links.** The host owns the link, opens it and keeps it open; a driver is bound to the link
/// given at construction for life. If both are given, the serial link is used. On a link that is
/// not open nothing is written, and no input arrives. What is written to a socket that is still
/// connecting leaves when the connection is there, which is made in the host's event loop. A limit
/// that the host sets to the socket's read buffer limits what is discarded before a request, too:
/// set none. A request leaves no error on a socket where nothing is waiting.
///
/// **Threads.** All requests of one driver run in its thread, one at a time, with request_lock_
/// held until the answer has been emitted. They block that thread. For that reason no hook may run
/// an event loop, and a host must not emit its next request on the driver from a slot that
/// SigResponse calls directly: either would wait for the lock that its own thread holds.
///
/// **Traffic.** A listener hears every byte that goes either way, and how each exchange ends:
/// setTrafficListener(), or for a host that has only the link traffic::setListener().
///
/// **Errors.** Nothing here throws, and no hook may.
class TOVIK_EXPORT DriverBasic : public DrvInterface
{
    Q_OBJECT

public:
    enum
    {
        /// What request_build() returns where only the answer itself says how long it is. Whatever
        /// has come goes to recv_abnormal_handler() then, which says whether it is whole.
        unknown_length = -1
    };

    /// \param name kept for the driver's own use, in name_
    /// \param serial the serial link, or null
    /// \param ethernet the TCP link, used if \a serial is null
    ///
    /// Without a link the driver answers from doCmdSM_Offline(). The link must outlive the driver.
    DriverBasic(QString name, DrvSerial* serial, DrvEthernet* ethernet);
    ~DriverBasic();

    /// Sends \a request as it is, and answers by SigTransparentResponse with whatever the device
    /// sends back.
    ///
    /// The answer is complete when its length has stayed the same for a number of polls, one each
    /// `interval_timeout_` ms: 12 over TCP, 52 on a serial line. The budget for all of it is
    /// `response_timeout_`, of which each poll counts as `interval_timeout_`: over TCP the default
    /// of 10 ms is too short for any answer, so set the link's `response_timeout` to the device's
    /// time plus 13 ms or more. Codes: 0; 0x400A0000 and no bytes when the budget is used up;
    /// 0x400CFFFF without a link.
    ///
    /// Whether a host offers this mode is the driver's word: override
    /// IsTransparentModeSupported() to return true.
    void RunTransparentRequest(const QByteArray& request);

    /// Has \a listener hear what is sent and taken on the link, and the code of each exchange;
    /// null: nobody. Not owned: it must live as long as the driver. To be called in the driver's
    /// thread, between requests. Does nothing without a link.
    void setTrafficListener(TrafficListener* listener);

    /// Appends the request frame to \a request.
    ///
    /// \param dir read or write
    /// \param address, field1, data_length, extra1, extra2 from the host's AddrData; their meaning
    ///        is the driver's and the host's
    /// \param data empty for a read, the bytes to be written for a write
    /// \param request empty
    /// \param station_no the station number of the device
    /// \return the length of the expected answer in bytes, or unknown_length; 0 if the request
    /// cannot be built, which
    ///         answers the host with 0x20010003. Setting error_code_ cancels the exchange with that
    ///         code instead. Either way nothing is sent.
    virtual int request_build(E_CMD_DIR dir, QString address, int field1, int data_length,
                              QByteArray* data, QByteArray* request, int station_no, int extra1,
                              int extra2) = 0;
    /// Checks \a response and, for a read, puts the values into \a data.
    ///
    /// Called when the answer came in time with the length that request_build() returned, or when
    /// recv_abnormal_handler() accepted it: then its length may be any, 0 included.
    /// \return 0, or the code that the host is to see.
    virtual int response_parse(E_CMD_DIR dir, QString address, int field1, int data_length,
                               QByteArray* data, QByteArray* request, QByteArray* response,
                               int station_no, int extra1, int extra2) = 0;
    /// Runs one exchange; the result is error_code_. Called with request_lock_ held.
    ///
    /// Pauses `request_delay_`, builds the request, discards what is still waiting on the link (in
    /// the kernel, too), writes the request, waits by request_send_wait(), takes what has come and
    /// has it parsed. Does nothing more if error_code_ is not 0 once the request is built.
    virtual void doCmdSM(E_CMD_DIR dir, QString address, int field1, int data_length,
                         QByteArray* data, int station_no, int extra1, int extra2);
    /// What a request does when there is no link; arguments as in doCmdSM(). Default: nothing, so
    /// that a read answers no bytes and 0.
    virtual void doCmdSM_Offline(E_CMD_DIR dir, QString address, int field1, int data_length,
                                 QByteArray* data, int station_no, int extra1, int extra2);
    /// The protocol's command code for a selector and a key of the driver's own. Default: -1.
    virtual int GetCmdCode(int selector, const QString& key);
    /// The offline data of a station; owned by the driver. Default: null.
    virtual QMap<QString, QByteArray*>* GetOffLineRawData(int station_no);
    /// Called for an answer that did not come in time or has the wrong length.
    /// \return 0 to accept it, which passes it on to response_parse(); else the code of the
    ///         failure. Default: 0x400A0002.
    virtual int recv_abnormal_handler(QByteArray* response);
    /// Waits for the answer once the request has been written.
    /// \param sent_length length of the request in bytes
    /// \param expected_length what request_build() returned
    /// \param ready 0 at first; to be set to non-zero when bytes are waiting on the link
    /// \return 0 when the answer is complete, else 0x1002 (stopped), 0x2002 (unit not served),
    ///         0x400A0000 (no answer in time) or another failure. Default: 0x400A0002.
    virtual int request_send_wait(int sent_length, int expected_length, int* ready);
    /// Computes the times below from the settings of the serial port, and logs two of them. Called
    /// at construction and when the host changed the settings. To be called with a serial link
    /// only; without one it does nothing.
    virtual void UpdateSerialParameter();

    /// Held for a whole request, from the slot's first line until the answer has been emitted.
    QMutex request_lock_;
    /// Pause before every frame in milliseconds, from the link. Default 0.
    int request_delay_;
    /// Repeats after a failed attempt, from the link. Default 0; negative counts as 0.
    int retry_count_;
    /// Budget of the transparent mode in milliseconds, from the link. Default 10. A protocol driver
    /// may wait as long for its own answers.
    int response_timeout_;
    /// Time of one character on the serial line in milliseconds. Default 1.0.
    float character_time_;
    /// 3.5 characters and one more millisecond, cut to whole milliseconds, at least 2. Default 2.
    int character_3_5_;
    /// 1.5 characters, cut to whole milliseconds, at least 1. Default 1.
    int interval_timeout_;
    /// From the link, for the driver's own use. Default 0.
    int link_param_a_;
    /// From the link, for the driver's own use. Default 255.
    int link_param_b_;
    /// The serial link, or null. Not owned.
    DrvSerial* serial_;
    /// The TCP link, or null. Not owned.
    DrvEthernet* ethernet_;
    /// The link in use, or null. Not owned.
    QIODevice* device_;
    /// The result of the latest exchange. Default 0.
    int error_code_;
    /// True when neither link was given.
    bool no_link_;
    /// Data that a driver keeps by station and key for offline use. Owned, maps and arrays alike:
    /// the destructor frees them.
    QMap<int, QMap<QString, QByteArray*>*> offline_data_;
    /// The name given to the constructor.
    QString name_;

protected Q_SLOTS:
    /// Serves a write: one answer by SigResponse, with the bytes that were to be written.
    ///
    /// A unit name in braces, such as {A}, is served if the host's unit list is empty or has an
    /// entry of that name with any digits after it, {A} or {A}12; else the answer is 0x2002.
    /// Other names are not looked up. If the host has set `stop_flag`, the request ends without an
    /// answer and leaves request_lock_ locked: a stopped driver serves nothing more.
    virtual void SlotSetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                        const QByteArray& ba, QSharedPointer<AddrData> addr);
    /// Serves a read, as a write is served; the answer carries what was read.
    virtual void SlotGetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                        QSharedPointer<AddrData> addr);
    /// Takes over the settings of the serial link again; does nothing without one.
    virtual void SlotUpdateDrvSerial();
    /// Takes over the settings of the TCP link again; does nothing without one.
    virtual void SlotUpdateDrvEthernet();

protected:
    /// Whether the host wants the driver to stop; to be asked again and again while waiting.
    bool stopRequested() const;
    /// Waits until new input has arrived on the link, at most so long; meanwhile what has been
    /// written leaves. Waits alike on every kind of link, and leaves no error on the host's socket,
    /// as Qt's own `waitForReadyRead()` does when it has waited in vain. Returns at once if the
    /// link is closed or lost; negative counts as 0. Input that is there when it begins need not
    /// end it: look first, and wait in short steps.
    void waitForLinkInput(int milliseconds);
    /// Waits until \a count bytes are waiting on the link: what request_send_wait() is for, where
    /// the answer's length is known. Waits response_timeout_ at most, and hears a stop request
    /// within 50 ms.
    /// \param count of bytes that are wanted
    /// \param ready becomes 1 when anything is waiting, complete or not, else 0
    /// \return 0, or of framework/result_code.h: stopped, receive_failed (the link is lost),
    ///         no_answer_in_time
    int waitForBytes(int count, int* ready);
    /// The same, until \a end has come. Looks at all that is waiting, and takes nothing.
    int waitForLine(const QByteArray& end, int* ready);
    /// Whether the link is closed, closing or lost; a link that is still connecting is not. What
    /// had come before can be read all the same.
    bool isLinkLost() const;
    /// Takes what has come, as far as Qt has fetched it, for a driver that looks for its answer by
    /// itself: it leaves nothing for doCmdSM() to take. The traffic's listener hears of it.
    QByteArray takeInput();
    /// Pauses the driver's thread so long; nothing ends the pause early.
    static void pauseThread(int milliseconds);

private:
    Q_DISABLE_COPY(DriverBasic)
};

#endif
