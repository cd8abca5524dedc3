#include "compat/serial_port.h"

#ifndef TOVIK_HAS_QEXTSERIALPORT

#include <QSerialPort>

#include <sys/ioctl.h>

namespace {

const PortSettings default_settings = {BAUD9600, DATA_8, PAR_NONE, STOP_1, FLOW_OFF, 10};

const int at_once = 0; // milliseconds

QSerialPort::Parity qtParity(ParityType parity)
{
    switch (parity) {
    case PAR_ODD:
        return QSerialPort::OddParity;
    case PAR_EVEN:
        return QSerialPort::EvenParity;
    case PAR_MARK:
        return QSerialPort::MarkParity;
    case PAR_SPACE:
        return QSerialPort::SpaceParity;
    case PAR_NONE:
        break;
    }
    return QSerialPort::NoParity;
}

QSerialPort::StopBits qtStopBits(StopBitsType stop_bits)
{
    switch (stop_bits) {
    case STOP_1_5:
        return QSerialPort::OneAndHalfStop;
    case STOP_2:
        return QSerialPort::TwoStop;
    case STOP_1:
        break;
    }
    return QSerialPort::OneStop;
}

QSerialPort::FlowControl qtFlowControl(FlowType flow)
{
    switch (flow) {
    case FLOW_HARDWARE:
        return QSerialPort::HardwareControl;
    case FLOW_XONXOFF:
        return QSerialPort::SoftwareControl;
    case FLOW_OFF:
        break;
    }
    return QSerialPort::NoFlowControl;
}

} // namespace

QextSerialPort::QextSerialPort(QueryMode mode, QObject* parent)
    : QIODevice(parent),
      port_(new QSerialPort(this)),
      settings_(default_settings),
      query_mode_(mode),
      hung_up_(false)
{
    initialise();
}

QextSerialPort::QextSerialPort(const QString& name, QueryMode mode, QObject* parent)
    : QIODevice(parent),
      port_(new QSerialPort(this)),
      settings_(default_settings),
      query_mode_(mode),
      hung_up_(false)
{
    initialise();
    port_->setPortName(name);
}

QextSerialPort::QextSerialPort(const PortSettings& settings, QueryMode mode, QObject* parent)
    : QIODevice(parent),
      port_(new QSerialPort(this)),
      settings_(settings),
      query_mode_(mode),
      hung_up_(false)
{
    initialise();
}

QextSerialPort::QextSerialPort(const QString& name, const PortSettings& settings, QueryMode mode,
                               QObject* parent)
    : QIODevice(parent),
      port_(new QSerialPort(this)),
      settings_(settings),
      query_mode_(mode),
      hung_up_(false)
{
    initialise();
    port_->setPortName(name);
}

QextSerialPort::~QextSerialPort()
{
    QextSerialPort::close();
}

void QextSerialPort::initialise()
{
    connect(port_, SIGNAL(readyRead()), this, SLOT(onReadyRead()));
    connect(port_, SIGNAL(bytesWritten(qint64)), this, SIGNAL(bytesWritten(qint64)));
    connect(port_, SIGNAL(errorOccurred(QSerialPort::SerialPortError)), this,
            SLOT(onErrorOccurred()));
    applySettings();
}

void QextSerialPort::applySettings()
{
    port_->setBaudRate(settings_.BaudRate);
    port_->setDataBits(static_cast<QSerialPort::DataBits>(settings_.DataBits));
    port_->setParity(qtParity(settings_.Parity));
    port_->setStopBits(qtStopBits(settings_.StopBits));
    port_->setFlowControl(qtFlowControl(settings_.FlowControl));
}

QString QextSerialPort::portName() const
{
    return port_->portName();
}

QextSerialPort::QueryMode QextSerialPort::queryMode() const
{
    return query_mode_;
}

BaudRateType QextSerialPort::baudRate() const
{
    return settings_.BaudRate;
}

DataBitsType QextSerialPort::dataBits() const
{
    return settings_.DataBits;
}

ParityType QextSerialPort::parity() const
{
    return settings_.Parity;
}

StopBitsType QextSerialPort::stopBits() const
{
    return settings_.StopBits;
}

FlowType QextSerialPort::flowControl() const
{
    return settings_.FlowControl;
}

void QextSerialPort::setPortName(const QString& name)
{
    port_->setPortName(name);
}

void QextSerialPort::setQueryMode(QueryMode mode)
{
    query_mode_ = mode;
}

void QextSerialPort::setBaudRate(BaudRateType baud_rate)
{
    settings_.BaudRate = baud_rate;
    port_->setBaudRate(baud_rate);
}

void QextSerialPort::setDataBits(DataBitsType data_bits)
{
    settings_.DataBits = data_bits;
    port_->setDataBits(static_cast<QSerialPort::DataBits>(data_bits));
}

void QextSerialPort::setParity(ParityType parity)
{
    settings_.Parity = parity;
    port_->setParity(qtParity(parity));
}

void QextSerialPort::setStopBits(StopBitsType stop_bits)
{
    settings_.StopBits = stop_bits;
    port_->setStopBits(qtStopBits(stop_bits));
}

void QextSerialPort::setFlowControl(FlowType flow)
{
    settings_.FlowControl = flow;
    port_->setFlowControl(qtFlowControl(flow));
}

void QextSerialPort::setTimeout(long milliseconds)
{
    settings_.Timeout_Millisec = milliseconds;
}

void QextSerialPort::setDtr(bool set)
{
    port_->setDataTerminalReady(set);
}

void QextSerialPort::setRts(bool set)
{
    port_->setRequestToSend(set);
}

bool QextSerialPort::open(OpenMode mode)
{
    if (isOpen())
        return false;
    hung_up_ = false;
    if (!port_->open(mode))
        return false;
    // The port keeps the bytes itself; a second buffer in between would hide them from flush().
    return QIODevice::open(mode | Unbuffered);
}

void QextSerialPort::close()
{
    if (!isOpen())
        return;
    QIODevice::close();
    port_->close();
}

bool QextSerialPort::isSequential() const
{
    return true;
}

void QextSerialPort::flush()
{
    if (!isOpen())
        return;
    port_->clear(QSerialPort::AllDirections);
    // What has been peeked at is kept here, above the port.
    if (QIODevice::bytesAvailable() > 0)
        read(QIODevice::bytesAvailable());
}

qint64 QextSerialPort::size() const
{
    return bytesAvailable();
}

qint64 QextSerialPort::bytesInKernel() const
{
    int waiting = 0;
    if (ioctl(port_->handle(), FIONREAD, &waiting) != 0)
        return 0;
    return waiting;
}

qint64 QextSerialPort::bytesAvailable() const
{
    if (!isOpen())
        return 0;
    return port_->bytesAvailable() + bytesInKernel() + QIODevice::bytesAvailable();
}

qint64 QextSerialPort::bytesToWrite() const
{
    return port_->bytesToWrite();
}

bool QextSerialPort::canReadLine() const
{
    if (port_->canReadLine())
        return true;
    return bytesInKernel() > 0 && port_->waitForReadyRead(at_once) && port_->canReadLine();
}

bool QextSerialPort::waitForReadyRead(int msecs)
{
    return port_->waitForReadyRead(msecs);
}

bool QextSerialPort::waitForBytesWritten(int msecs)
{
    return port_->waitForBytesWritten(msecs);
}

ulong QextSerialPort::lastError() const
{
    switch (port_->error()) {
    case QSerialPort::NoError:
        return E_NO_ERROR;
    case QSerialPort::DeviceNotFoundError:
        return E_FILE_NOT_FOUND;
    case QSerialPort::PermissionError:
        return E_PERMISSION_DENIED;
    case QSerialPort::WriteError:
        return E_WRITE_FAILED;
    case QSerialPort::ReadError:
        return E_READ_FAILED;
    case QSerialPort::TimeoutError:
        return E_PORT_TIMEOUT;
    case QSerialPort::UnsupportedOperationError:
        return E_INVALID_DEVICE;
    case QSerialPort::NotOpenError:
        return E_INVALID_FD;
    default:
        return E_IO_ERROR;
    }
}

QString QextSerialPort::errorString()
{
    return port_->errorString();
}

qint64 QextSerialPort::readData(char* data, qint64 max_size)
{
    qint64 done = port_->read(data, max_size);
    if (done < 0)
        return done;
    if (done < max_size && bytesInKernel() > 0 && port_->waitForReadyRead(at_once)) {
        const qint64 more = port_->read(data + done, max_size - done);
        if (more > 0)
            done += more;
    }
    return done;
}

qint64 QextSerialPort::writeData(const char* data, qint64 max_size)
{
    // A line that is busy already takes the rest by itself; a flush would call that an error.
    const bool busy = port_->bytesToWrite() > 0;
    const qint64 done = port_->write(data, max_size);
    if (done <= 0)
        return done;
    if (!busy)
        port_->flush();
    const bool is_left = port_->bytesToWrite() > 0;
    if (is_left && settings_.Timeout_Millisec > 0)
        port_->waitForBytesWritten(int(qMin(settings_.Timeout_Millisec, 0x7fffffffL)));
    return done;
}

void QextSerialPort::onReadyRead()
{
    if (query_mode_ == EventDriven)
        Q_EMIT readyRead();
}

void QextSerialPort::onErrorOccurred()
{
    const QSerialPort::SerialPortError error = port_->error();
    // Left open, a line that has hung up keeps the event loop busy with nothing to read. Closing
    // waits for the event loop, since the error is reported from inside the port's own reading.
    if (error != QSerialPort::ReadError && error != QSerialPort::ResourceError)
        return;
    hung_up_ = true;
    QMetaObject::invokeMethod(this, "onHangUp", Qt::QueuedConnection);
}

void QextSerialPort::onHangUp()
{
    // Unless it has been opened anew meanwhile.
    if (hung_up_)
        close();
}

#endif
