#include "tests/reliability/histories/exchange_library.h"

#include "framework/driver_basic.h"
#include "tests/reliability/histories/exchange_model.h"
#include "tests/reliability/histories/virtual_time.h"

#include <algorithm>

using exchange::answerLine;
using exchange::callLine;
using exchange::World;

namespace {

QStringList* recorded = nullptr;

void record(QtMsgType, const QMessageLogContext&, const QString& line)
{
    recorded->append(line);
}

} // namespace

/// A socket that is none: the world says what it has.
class ExchangeLibrary::Link : public DrvEthernet
{
public:
    Link(World* world, QStringList* seen, bool has_state)
        : world_(world),
          seen_(seen),
          has_state_(has_state)
    {
        setOpenMode(QIODevice::ReadWrite | QIODevice::Unbuffered);
        update();
    }

    /// Takes over from the world whether the link is there.
    void update()
    {
        const SocketState up = has_state_ ? ConnectedState : UnconnectedState;
        setSocketState(world_->is_lost ? ClosingState : up);
    }

    /// What has been peeked at is in Qt's own buffer.
    qint64 bytesAvailable() const override
    {
        return world_->input.size() + QIODevice::bytesAvailable();
    }

    bool waitForReadyRead(int milliseconds) override
    {
        const int before = world_->input.size();
        for (; milliseconds > 0 && world_->input.size() == before; --milliseconds)
            virtual_time::pass(1);
        return world_->input.size() != before;
    }

    Behaviour behaviour; ///< Of the attempt that is being made.

protected:
    qint64 readData(char* data, qint64 most) override
    {
        const QByteArray bytes = world_->input.left(int(most));
        world_->input.remove(0, bytes.size());
        std::copy(bytes.begin(), bytes.end(), data);
        return bytes.size();
    }

    qint64 writeData(const char* data, qint64 size) override
    {
        seen_->append(callLine("sent", QByteArray(data, int(size))));
        world_->sent(behaviour);
        update();
        return size;
    }

private:
    World* world_;
    QStringList* seen_;
    bool has_state_;
};

class ExchangeLibrary::Driver : public DriverBasic
{
public:
    Driver(World* world, QStringList* seen, Link* link)
        : DriverBasic(QStringLiteral("history"), nullptr, link),
          world_(world),
          seen_(seen),
          link_(link)
    {}

    int request_build(E_CMD_DIR dir, QString, int, int, QByteArray* data, QByteArray* request, int,
                      int, int) override
    {
        link_->behaviour = world_->next();
        seen_->append(callLine(dir == CMD_READ ? "build read" : "build write", *data));
        request->append("request");
        if (link_->behaviour.build_code != 0)
            error_code_ = link_->behaviour.build_code;
        return link_->behaviour.built;
    }

    int response_parse(E_CMD_DIR, QString, int, int, QByteArray* data, QByteArray*,
                       QByteArray* response, int, int, int) override
    {
        seen_->append(callLine("parse", *response));
        data->append(*response);
        return link_->behaviour.parse_code;
    }

    int recv_abnormal_handler(QByteArray* response) override
    {
        seen_->append(callLine("abnormal", *response));
        return link_->behaviour.abnormal_code;
    }

    int request_send_wait(int, int expected, int* ready) override
    {
        if (link_->behaviour.wait == Behaviour::for_bytes)
            return waitForBytes(expected, ready);
        if (link_->behaviour.wait == Behaviour::for_line)
            return waitForLine(QByteArray("\n"), ready);
        *ready = link_->behaviour.own_ready ? 1 : 0;
        return link_->behaviour.wait_code;
    }

private:
    World* world_;
    QStringList* seen_;
    Link* link_;
};

ExchangeLibrary::ExchangeLibrary(const ExchangeHistory& history)
    : link_(new Link(&world_, &seen_, history.has_state))
{
    virtual_time::now = 0;
    recorded = &seen_;
    qInstallMessageHandler(record);
    link_->request_delay = history.delay;
    link_->response_timeout = history.timeout;
    link_->retry_count = history.retries;
    driver_.reset(new Driver(&world_, &seen_, link_.get()));
    driver_->unit_list = &world_.units;
    virtual_time::on_tick = [this] {
        world_.reach(virtual_time::now);
        link_->update();
        driver_->stop_flag = world_.is_stopped ? 1 : 0;
    };
    QObject::connect(driver_.get(), &DrvInterface::SigResponse,
                     [this](const QString& unit, const QString&, const QByteArray& bytes,
                            int status) { seen_.append(answerLine(unit, bytes, status)); });
    QObject::connect(driver_.get(), &DrvInterface::SigTransparentResponse,
                     [this](const QByteArray& bytes, int status) {
                         seen_.append(answerLine(QStringLiteral("raw"), bytes, status));
                     });
}

ExchangeLibrary::~ExchangeLibrary()
{
    virtual_time::on_tick = nullptr;
    driver_.reset();
    qInstallMessageHandler(nullptr);
}

void ExchangeLibrary::play(const ExchangeEvent& event)
{
    const QString unit = exchange::unitName(event.a);
    const QSharedPointer<AddrData> address(new AddrData);
    switch (event.kind) {
    case ExchangeEvent::behave:
        world_.planned.push_back(exchange::behaviour(event.a, event.b));
        return;
    case ExchangeEvent::read:
        Q_EMIT driver_->SigGetValuesByteArray(unit, QStringLiteral("link"), 1, address);
        return;
    case ExchangeEvent::write:
        Q_EMIT driver_->SigSetValuesByteArray(unit, QStringLiteral("link"), 1, QByteArray("wb"),
                                              address);
        return;
    case ExchangeEvent::raw:
        link_->behaviour = world_.next();
        return driver_->RunTransparentRequest(QByteArray("raw"));
    case ExchangeEvent::input:
        if (!world_.is_lost)
            world_.input += QByteArray(event.a, 'z');
        return;
    case ExchangeEvent::link:
        world_.is_lost = event.a == 0;
        return link_->update();
    case ExchangeEvent::units:
        world_.units = exchange::unitList(event.a);
        return;
    case ExchangeEvent::stop:
        world_.is_stopped = true;
        driver_->stop_flag = 1;
        return;
    }
}

QStringList ExchangeLibrary::take()
{
    const bool is_free = driver_->request_lock_.tryLock();
    if (is_free)
        driver_->request_lock_.unlock();
    seen_.append(QStringLiteral("clock %1, code 0x%2, %3, %4 bytes wait")
                     .arg(virtual_time::now)
                     .arg(QString::number(driver_->error_code_, 16))
                     .arg(is_free ? QStringLiteral("free") : QStringLiteral("locked"))
                     .arg(link_->bytesAvailable()));
    QStringList seen;
    seen.swap(seen_);
    return seen;
}
