#include "framework/driver_basic.h"

#include "framework/host_request.h"
#include "framework/link_io.h"
#include "framework/result_code.h"
#include "framework/told_traffic.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QMetaType>
#include <QMutexLocker>

using namespace host_request;
using namespace result_code;
using namespace told_traffic;

namespace {

const int longest_turn = 50;               // ms
const int longest_transparent_write = 100; // ms
// Unchanged polls after which the answer to a transparent request is complete.
const int stable_polls_of_tcp = 10;
const int stable_polls_of_serial = 50;

/// Whole milliseconds of so many characters, in double precision.
int charactersTime(float character_time, double characters, double extra)
{
    return static_cast<int>(static_cast<double>(character_time) * characters + extra);
}

void takeSettings(const DrvBase& link, DriverBasic* driver)
{
    driver->request_delay_ = link.request_delay;
    driver->response_timeout_ = link.response_timeout;
    driver->retry_count_ = link.retry_count;
    driver->link_param_a_ = link.link_param_a;
    driver->link_param_b_ = link.link_param_b;
}

/// What became of an exchange whose answer was not accepted.
/// \param code what recv_abnormal_handler() said
int judgeFailure(int wait_code, int code, int received, int expected)
{
    switch (wait_code) {
    case unit_not_served:
        return unit_not_served;
    case stopped:
        qDebug() << "Dcc_Stop";
        return stopped;
    case no_answer_in_time:
        qDebug() << "Command_Timeout";
        return no_answer_in_time;
    default:
        break;
    }
    if (received == expected) {
        qDebug() << "Warning: recv failed. Should not be here.";
        return code;
    }
    qDebug() << "Protocol_Invalid_Length:" << received << "(" << expected << ")";
    return invalid_length;
}

/// Waits for an answer in short turns, so that the host can stop a driver whose device is silent.
template <typename IsThere>
int waitUntil(const DriverBasic& driver, IsThere is_there, int* ready)
{
    *ready = 0;
    if (!driver.device_)
        return receive_failed;
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        // Judged before the look, since this thread may have slept while the answer came.
        const qint64 left = driver.response_timeout_ - waited.elapsed();
        const bool is_complete = is_there();
        *ready = link_io::available(driver.device_) > 0 ? 1 : 0;
        if (is_complete)
            return success;
        if (isStopped(driver))
            return stopped;
        if (link_io::isLost(driver.device_))
            return receive_failed;
        if (left <= 0)
            return no_answer_in_time;
        link_io::waitForInput(driver.device_, int(qMin(left, qint64(longest_turn))));
    }
}

/// Returns how many unchanged polls are enough on this link.
int sendTransparently(const DriverBasic& driver, const QByteArray& request)
{
    send(driver, request);
    if (!driver.serial_) {
        link_io::waitUntilSent(driver.device_, longest_transparent_write);
        return stable_polls_of_tcp;
    }
    link_io::pause(charactersTime(driver.character_time_, request.size(), driver.character_3_5_));
    return stable_polls_of_serial;
}

bool waitUntilStable(const DriverBasic& driver, int stable_limit)
{
    // A derived driver may have computed 0, with which the time would never pass.
    const int interval = qMax(1, driver.interval_timeout_);
    qint64 elapsed = 0;
    qint64 last_count = 0;
    int stable = 0;
    while (stable <= stable_limit) {
        if (elapsed >= driver.response_timeout_)
            return false;
        link_io::pause(interval);
        elapsed += interval;
        link_io::waitForInput(driver.device_, interval);
        const qint64 count = link_io::available(driver.device_);
        if (count == 0)
            continue;
        if (count == last_count) {
            ++stable;
        } else {
            last_count = count;
            stable = 0;
        }
    }
    return elapsed < driver.response_timeout_;
}

} // namespace

DriverBasic::DriverBasic(QString name, DrvSerial* serial, DrvEthernet* ethernet)
    : DrvInterface(0),
      request_delay_(0),
      retry_count_(0),
      response_timeout_(10),
      character_time_(1.0F),
      character_3_5_(2),
      interval_timeout_(1),
      link_param_a_(0),
      link_param_b_(255),
      serial_(serial),
      ethernet_(ethernet),
      device_(0),
      error_code_(success),
      no_link_(false),
      name_(name)
{
    qRegisterMetaType<QSharedPointer<AddrData>>("QSharedPointer<AddrData>");
    if (serial_) {
        takeSettings(*serial_, this);
        device_ = serial_;
        // The derived driver does not exist yet: here it is always this class's own.
        DriverBasic::UpdateSerialParameter();
    } else if (ethernet_) {
        takeSettings(*ethernet_, this);
        device_ = ethernet_;
    } else {
        no_link_ = true;
    }
    connect(
        this,
        SIGNAL(SigSetValuesByteArray(QString, QString, int, QByteArray, QSharedPointer<AddrData>)),
        this,
        SLOT(SlotSetValuesByteArray(QString, QString, int, QByteArray, QSharedPointer<AddrData>)));
    connect(this, SIGNAL(SigGetValuesByteArray(QString, QString, int, QSharedPointer<AddrData>)),
            this, SLOT(SlotGetValuesByteArray(QString, QString, int, QSharedPointer<AddrData>)));
    connect(this, SIGNAL(SigUpdateDrvSerial()), this, SLOT(SlotUpdateDrvSerial()));
    connect(this, SIGNAL(SigUpdateDrvEthernet()), this, SLOT(SlotUpdateDrvEthernet()));
}

DriverBasic::~DriverBasic()
{
    for (QMap<QString, QByteArray*>* station : offline_data_) {
        if (station)
            qDeleteAll(*station);
        delete station;
    }
    // A stopped request has left the lock locked, and Qt complains of a lock that goes so.
    request_lock_.tryLock();
    request_lock_.unlock();
}

void DriverBasic::UpdateSerialParameter()
{
    if (!serial_)
        return;
    const int stop_bits = serial_->stopBits() == STOP_1 ? 1 : 2;
    const int parity_bits = serial_->parity() == PAR_NONE ? 0 : 1;
    const int bits = static_cast<int>(serial_->dataBits()) + 1 + stop_bits + parity_bits;
    const int baud_rate = qMax(1, static_cast<int>(serial_->baudRate()));
    character_time_ = static_cast<float>(bits) * 1000.0F / static_cast<float>(baud_rate);
    interval_timeout_ = qMax(1, charactersTime(character_time_, 1.5, 0.0));
    character_3_5_ = qMax(2, charactersTime(character_time_, 3.5, 1.0));
    qDebug() << "[DriverBasic] interval_timeout_:" << interval_timeout_;
    qDebug() << "[DriverBasic] character_3_5_:" << character_3_5_;
}

void DriverBasic::SlotUpdateDrvSerial()
{
    if (!serial_)
        return;
    takeSettings(*serial_, this);
    UpdateSerialParameter();
}

void DriverBasic::SlotUpdateDrvEthernet()
{
    if (ethernet_)
        takeSettings(*ethernet_, this);
}

void DriverBasic::SlotSetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                         const QByteArray& ba, QSharedPointer<AddrData> addr)
{
    const HostRequest request = {CMD_WRITE, unit_name, station_no, ba, addr ? *addr : AddrData()};
    QByteArray data;
    if (!runLocked(this, request, &data))
        return;
    Q_EMIT SigResponse(unit_name, link_name, request.ba, error_code_);
    request_lock_.unlock();
}

void DriverBasic::SlotGetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                         QSharedPointer<AddrData> addr)
{
    const HostRequest request = {CMD_READ, unit_name, station_no, QByteArray(),
                                 addr ? *addr : AddrData()};
    QByteArray data;
    if (!runLocked(this, request, &data))
        return;
    Q_EMIT SigResponse(unit_name, link_name, data, error_code_);
    request_lock_.unlock();
}

bool DriverBasic::stopRequested() const
{
    return isStopped(*this);
}

void DriverBasic::waitForLinkInput(int milliseconds)
{
    link_io::waitForInput(device_, milliseconds);
}

int DriverBasic::waitForBytes(int count, int* ready)
{
    return waitUntil(
        *this, [this, count] { return link_io::available(device_) >= count; }, ready);
}

int DriverBasic::waitForLine(const QByteArray& end, int* ready)
{
    return waitUntil(
        *this, [&] { return device_->peek(link_io::available(device_)).contains(end); }, ready);
}

bool DriverBasic::isLinkLost() const
{
    return link_io::isLost(device_);
}

QByteArray DriverBasic::takeInput()
{
    const QByteArray bytes = device_ ? link_io::takeHeld(device_) : QByteArray();
    tell(*this, Traffic::taken, bytes);
    return bytes;
}

void DriverBasic::setTrafficListener(TrafficListener* listener)
{
    if (serial_)
        traffic::setListener(serial_, listener);
    else if (ethernet_)
        traffic::setListener(ethernet_, listener);
}

void DriverBasic::pauseThread(int milliseconds)
{
    link_io::pause(milliseconds);
}

void DriverBasic::doCmdSM(E_CMD_DIR dir, QString address, int field1, int data_length,
                          QByteArray* data, int station_no, int extra1, int extra2)
{
    const EndTeller end(*this);
    QByteArray request;
    QByteArray response;
    link_io::pause(request_delay_);
    const int expected = request_build(dir, address, field1, data_length, data, &request,
                                       station_no, extra1, extra2);
    if (error_code_ != success)
        return;
    if (expected == 0) {
        error_code_ = invalid_length;
        return;
    }
    send(*this, request);
    int ready = 0;
    const int wait_code = request_send_wait(request.size(), expected, &ready);
    if (ready != 0)
        response = take(*this);

    const bool complete = wait_code == success && response.size() == expected;
    if (!complete) {
        error_code_ = recv_abnormal_handler(&response);
        if (error_code_ != success) {
            error_code_ = judgeFailure(wait_code, error_code_, response.size(), expected);
            return;
        }
    }
    error_code_ = response_parse(dir, address, field1, data_length, data, &request, &response,
                                 station_no, extra1, extra2);
}

void DriverBasic::doCmdSM_Offline(E_CMD_DIR, QString, int, int, QByteArray*, int, int, int) {}

int DriverBasic::GetCmdCode(int, const QString&)
{
    return -1;
}

QMap<QString, QByteArray*>* DriverBasic::GetOffLineRawData(int)
{
    return 0;
}

int DriverBasic::recv_abnormal_handler(QByteArray*)
{
    return receive_failed;
}

int DriverBasic::request_send_wait(int, int, int*)
{
    return receive_failed;
}

void DriverBasic::RunTransparentRequest(const QByteArray& request)
{
    QMutexLocker locker(&request_lock_);
    error_code_ = device_ ? success : not_supported;
    QByteArray response;
    if (device_) {
        const int stable_limit = sendTransparently(*this, request);
        if (waitUntilStable(*this, stable_limit))
            response = take(*this);
        else
            error_code_ = no_answer_in_time;
    }
    tellEnd(*this);
    Q_EMIT SigTransparentResponse(response, error_code_);
}
