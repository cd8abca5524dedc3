#include "modbus_driver.h"

#include "modbus_rtu.h"
#include "modbus_status.h"
#include "modbus_tcp.h"

#include <cmath>

using namespace modbus;

namespace {

// How often the host's stop flag is looked at while waiting, in milliseconds.
const int slice = 10;
// After a broadcast the devices get this long to carry it out, in milliseconds.
const int turnaround = 100;
// A line that is noisy for so many response times and this many milliseconds is given up.
const int noisy_response_times = 5;
const int noisy_time = 1000;

const int register_bytes = 2;

} // namespace

ModbusDriver::ModbusDriver(const QString& name, DrvSerial* serial, DrvEthernet* ethernet)
    : DriverBasic(name, serial, ethernet)
{
    if (serial)
        framing_.reset(new RtuFraming);
    else
        framing_.reset(new TcpFraming);
    line_idle_.start();
    if (serial || !ethernet)
        return;
    // Taken as it comes, so that no late answer is cut by what discards old input before a request.
    connect(ethernet, SIGNAL(readyRead()), this, SLOT(collect()), Qt::DirectConnection);
    connect(ethernet, SIGNAL(connected()), this, SLOT(onConnected()), Qt::DirectConnection);
}

ModbusDriver::~ModbusDriver() = default;

Transport ModbusDriver::transport() const
{
    return serial_ ? Transport::Rtu : Transport::Tcp;
}

bool ModbusDriver::IsTransparentModeSupported()
{
    return true;
}

void ModbusDriver::RunTransparentRequest(const QByteArray& request)
{
    is_transparent_ = true;
    DriverBasic::RunTransparentRequest(request);
    is_transparent_ = false;
    is_out_of_step_ = is_out_of_step_ || error_code_ != Ok;
    line_idle_.start();
}

bool ModbusDriver::collect()
{
    if (is_transparent_)
        return false;
    const QByteArray bytes = takeInput();
    if (bytes.isEmpty())
        return false;
    framing_->add(bytes);
    line_idle_.start();
    return true;
}

void ModbusDriver::onConnected()
{
    framing_->reset();
}

bool ModbusDriver::listen(qint64 milliseconds)
{
    waitForLinkInput(static_cast<int>(qBound<qint64>(0, milliseconds, slice)));
    return collect();
}

bool ModbusDriver::isLinkUp() const
{
    return !isLinkLost() && (serial_ || ethernet_->state() == QAbstractSocket::ConnectedState);
}

int ModbusDriver::lineTime(int characters) const
{
    if (!serial_)
        return 0;
    return static_cast<int>(std::ceil(static_cast<double>(character_time_) * characters));
}

qint64 ModbusDriver::missingSilence() const
{
    const int needed = is_out_of_step_ ? qMax(response_timeout_, character_3_5_) : character_3_5_;
    return needed - line_idle_.elapsed();
}

bool ModbusDriver::waitForSilence()
{
    QElapsedTimer waited;
    waited.start();
    const qint64 longest = qint64(noisy_response_times) * response_timeout_ + noisy_time;
    Answer late;
    for (;;) {
        // Judged before the look, since this thread may have slept while bytes came.
        const bool is_over = missingSilence() <= 0;
        if (!listen(missingSilence()) && is_over)
            break;
        // The only answer that was missing has come, too late: nothing is under way any more.
        if (is_out_of_step_ && unanswered_ == 1 && framing_->take(&late)) {
            is_out_of_step_ = false;
            unanswered_ = 0;
        }
        if (stopRequested())
            error_code_ = Stopped;
        else if (!isLinkUp())
            error_code_ = NotConnected;
        else if (waited.elapsed() >= longest)
            error_code_ = LineNotSilent;
        if (error_code_ != Ok)
            return false;
    }
    is_out_of_step_ = false;
    return true;
}

int ModbusDriver::request_build(E_CMD_DIR dir, QString address, int field1, int data_length,
                                QByteArray* data, QByteArray* request, int station_no, int extra1,
                                int extra2)
{
    const HostRequest asked = {dir == CMD_WRITE, address, field1, data_length, *data,
                               station_no,       extra1,  extra2};
    error_code_ = planRequest(asked, transport(), &request_);
    if (error_code_ == Ok && stopRequested())
        error_code_ = Stopped;
    if (error_code_ == Ok && !isLinkUp())
        error_code_ = NotConnected;
    if (error_code_ != Ok || (serial_ && !waitForSilence()))
        return 0;
    request->append(framing_->frame(request_));
    return framing_->answerSize();
}

int ModbusDriver::request_send_wait(int sent_length, int expected_length, int*)
{
    framing_->dropOldInput();
    answer_ = Answer();
    const bool is_broadcast = request_.is_broadcast;
    wait_code_ = waitForAnswer(is_broadcast ? turnaround + lineTime(sent_length)
                                            : qint64(response_timeout_) +
                                                  lineTime(sent_length + expected_length));
    line_idle_.start();
    if (is_broadcast)
        return wait_code_;
    const bool answered = wait_code_ == Ok && (answer_.status == Ok || isException(answer_.status));
    is_out_of_step_ = !answered;
    unanswered_ = answered ? 0 : unanswered_ + 1;
    return wait_code_;
}

int ModbusDriver::waitForAnswer(qint64 budget)
{
    QElapsedTimer waited;
    waited.start();
    for (bool is_over = false;;) {
        if (!request_.is_broadcast && framing_->take(&answer_))
            return Ok;
        if (stopRequested())
            return Stopped;
        if (!isLinkUp()) {
            answer_.status = LinkLost;
            return Ok;
        }
        if (is_over)
            break;
        // Looks once more when the time is over: this thread may have slept for all of it.
        const qint64 left = budget - waited.elapsed();
        is_over = left <= 0;
        listen(left);
    }
    if (!request_.is_broadcast)
        answer_ = framing_->giveUp();
    return answer_.status == NoAnswerInTime ? int(NoAnswerInTime) : int(Ok);
}

int ModbusDriver::recv_abnormal_handler(QByteArray* response)
{
    if (wait_code_ != Ok)
        return DriverBasic::recv_abnormal_handler(response);
    *response = answer_.pdu;
    return Ok;
}

int ModbusDriver::response_parse(E_CMD_DIR dir, QString, int, int, QByteArray* data, QByteArray*,
                                 QByteArray* response, int, int, int)
{
    if (answer_.status == Ok && dir == CMD_READ)
        *data = hostBytes(request_, *response);
    return answer_.status;
}

void ModbusDriver::doCmdSM(E_CMD_DIR dir, QString address, int field1, int data_length,
                           QByteArray* data, int station_no, int extra1, int extra2)
{
    Address parsed;
    if (dir == CMD_WRITE && parseAddress(address, &parsed) == Ok && parsed.bit >= 0)
        writeBit(parsed, {false, address, field1, data->size(), *data, station_no, extra1, extra2});
    else
        DriverBasic::doCmdSM(dir, address, field1, data_length, data, station_no, extra1, extra2);
}

void ModbusDriver::doCmdSM_Offline(E_CMD_DIR, QString, int, int, QByteArray*, int, int, int)
{
    error_code_ = NotConnected;
}

void ModbusDriver::writeBit(const Address& place, const HostRequest& asked)
{
    Request planned;
    error_code_ = planRequest(asked, transport(), &planned);
    if (error_code_ == Ok && place.area->write_one == 0)
        error_code_ = ReadOnlyArea;
    if (error_code_ != Ok)
        return;
    const QString whole = asked.address.section(QLatin1Char('.'), 0, 0);
    QByteArray word;
    const auto exchange = [&](E_CMD_DIR dir) {
        DriverBasic::doCmdSM(dir, whole, asked.field1, register_bytes, &word, asked.station,
                             register_bytes, 0);
    };
    exchange(CMD_READ);
    if (error_code_ != Ok)
        return;
    const int at = place.bit / 8;
    const int mask = 1 << (place.bit % 8);
    word[at] = static_cast<char>(asked.data.at(0) != 0 ? word.at(at) | mask : word.at(at) & ~mask);
    exchange(CMD_WRITE);
}
