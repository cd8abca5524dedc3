#include "tests/reliability/stress/stress_service.h"

#include "tests/reliability/stress/ledger.h"

#include <QEventLoop>

#include <future>

using nlohmann::json;

namespace {

/// Of so many faults one leaves the client waiting until it is closed.
const int faults_to_a_hang = 20;

ScriptedReply answer(const json& members)
{
    return ScriptedReply::json(QByteArray::fromStdString(members.dump()));
}

QByteArray text(const json& members, const char* name)
{
    return QByteArray::fromStdString(members.value(name, std::string()));
}

/// The number of the driver whose account or token this is: "driver-7".
int driverOf(const QByteArray& account)
{
    return account.mid(account.indexOf('-') + 1).toInt();
}

} // namespace

StressService::StressService(const Settings& settings, Ledger* ledger)
    : ledger_(ledger),
      faults_per_mille_(settings.faults_per_mille),
      random_(settings.seed)
{
    for (int i = 0; i < settings.items; ++i) {
        item_of_id_.insert(idOf(i), i);
        stamps_.insert(idOf(i), 0);
    }
    std::promise<QString> url;
    std::future<QString> known = url.get_future();
    thread_.reset(QThread::create([this, settings, &url] {
        const TestCertificate certificate =
            settings.is_tls ? TestCertificate::make("localhost", -3600, 86400) : TestCertificate();
        ScriptedService service(certificate);
        service.setHandler([this, &service](const ScriptedRequest& request) {
            service.reset(); // or it would remember an hour of requests
            return reply(request);
        });
        url.set_value(service.url());
        QEventLoop().exec();
    }));
    thread_->start();
    url_ = known.get();
}

StressService::~StressService()
{
    thread_->quit();
    thread_->wait();
}

QByteArray StressService::idOf(int item)
{
    return "item-" + QByteArray::number(item);
}

stamped::Kind StressService::kindOf(int item)
{
    // Every other one is a String, every fourth a HEX item.
    const stamped::Kind kinds[] = {
        stamped::Kind::text, stamped::Kind::hex, stamped::Kind::text, stamped::Kind::number,
        stamped::Kind::text, stamped::Kind::hex, stamped::Kind::text, stamped::Kind::real,
    };
    return kinds[item % 8];
}

QByteArray StressService::keyOf(const QByteArray& id, qint64 stamp)
{
    return id + '=' + QByteArray::number(stamp);
}

ScriptedReply StressService::reply(const ScriptedRequest& request)
{
    const QByteArray operation = request.path.mid(request.path.lastIndexOf('/') + 1);
    const json members = json::parse(request.body.toStdString(), nullptr, false);
    if (!members.is_object()) {
        ledger_->finding(
            QString::fromLatin1("the service received '%1' for %2")
                .arg(QString::fromLatin1(request.body), QString::fromLatin1(operation)));
        return answer({{"errorcode", 15}});
    }
    const QByteArray account = text(members, operation == "login" ? "email" : "token");
    const QByteArray id = text(members, "dataitem_id");
    ledger_->asked(driverOf(account), operation);
    if (operation == "setValue")
        ledger_->arrived(
            keyOf(id, stamped::stampOfJson(kindOf(item_of_id_.value(id)), members.at("value"))));
    if (int(random_() % 1000) < faults_per_mille_)
        return fault();
    if (account.isEmpty())
        return answer({{"errorcode", 4}});
    if (operation == "login")
        return answer({{"errorcode", 0}, {"token", account.toStdString()}});
    if (operation == "list")
        return answer({{"errorcode", 0},
                       {"Number", 1},
                       {"groups", json::array({json{{"group_id", "1"}, {"name", "All"}}})}});
    if (operation == "dataitems")
        return answer(
            {{"errorcode", 0},
             {"Number", 1},
             {"dataitems", json::array({json{{"dataitem_id", "item-0"}, {"name", "item-0"}}})}});
    return operation == "value" ? value(id) : write(id, members.at("value"));
}

ScriptedReply StressService::fault()
{
    ledger_->failed();
    if (random_() % faults_to_a_hang == 0)
        return ScriptedReply::hang();
    switch (random_() % 5) {
    case 0:
        return ScriptedReply::close();
    case 1:
        return answer({{"errorcode", 4}});
    case 2:
        return ScriptedReply::json("{\"errorcode\":0,\"val");
    case 3:
        return ScriptedReply::status(500, QByteArray());
    default:
        return ScriptedReply::raw("HTTP/1.1 200 Status\r\nContent-Length: 4000\r\n\r\n{\"error");
    }
}

ScriptedReply StressService::value(const QByteArray& id)
{
    has_given_value_ = true;
    return answer({{"errorcode", 0},
                   {"value", stamped::json(kindOf(item_of_id_.value(id)), stamps_.value(id))}});
}

ScriptedReply StressService::write(const QByteArray& id, const json& value)
{
    const qint64 stamp = stamped::stampOfJson(kindOf(item_of_id_.value(id)), value);
    if (stamp == stamped::torn) {
        ledger_->finding(QString::fromLatin1("the service received a torn value for %1: %2")
                             .arg(QString::fromLatin1(id), QString::fromStdString(value.dump())));
        return answer({{"errorcode", 9}});
    }
    stamps_.insert(id, stamp);
    return answer({{"errorcode", 0}});
}
