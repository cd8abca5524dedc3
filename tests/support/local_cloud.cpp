#include "tests/support/local_cloud.h"

#include "tools/service/http/handshake_fault.h"

namespace {

const char plant_text[] = R"({
  "accounts": [{"email": "operator@example.com", "password": "tovik", "project": "plant"}],
  "groups": [
    {"id": "line", "name": "Line", "items": [
      {"id": "watched", "name": "Watched", "type": "16Bit-INT", "value": 65},
      {"id": "steady", "name": "Steady", "type": "16Bit-INT", "value": 7},
      {"id": "setpoint", "name": "Setpoint", "type": "16Bit-INT", "value": 20},
      {"id": "level", "name": "Level", "type": "32Bit-FLOAT", "value": 1.5}]}]
})";

} // namespace

LocalCloud::LocalCloud(const std::string& tls)
    : log_("/dev/null", false),
      plant_(tovik_service::plant::parseProject(plant_text), std::nullopt),
      tokens_(std::nullopt),
      tls_(tlsSettings(tls)),
      service_(plant_, tokens_, faults_, requests_, log_),
      port_(service_.engine(), &tls_, "127.0.0.1", 0, log_)
{
    port_.setRefusing([this] { return faults_.isRefusing(); });
    port_.start();
}

LocalCloud::~LocalCloud()
{
    port_.stop();
}

tovik_service::http::TlsSettings LocalCloud::tlsSettings(const std::string& tls)
{
    tovik_service::http::TlsSettings settings;
    settings.host = "127.0.0.1";
    settings.key_type = tovik_service::http::KeyType::P256;
    settings.version = tls;
    settings.plan = [this](bool is_resumption) {
        return tovik_service::http::planHandshake(faults_, log_, is_resumption);
    };
    return settings;
}

std::string LocalCloud::url() const
{
    return "https://127.0.0.1:" + std::to_string(port_.port());
}

int LocalCloud::addFault(const std::string& fault)
{
    const int number = faults_.add(tovik_service::faults::parseFault(fault));
    port_.applyRefusing();
    return number;
}

int LocalCloud::applied(int fault) const
{
    for (const tovik_service::faults::FaultStatus& status : faults_.list())
        if (status.id == fault)
            return status.applied;
    return 0;
}

void LocalCloud::clearFaults()
{
    faults_.clear();
    port_.applyRefusing();
}

void LocalCloud::expireTokens()
{
    tokens_.expireAll();
}

void LocalCloud::set(const std::string& item, int value)
{
    plant_.write(item, value, tovik_service::plant::Writer::Control);
}

int LocalCloud::value(const std::string& item)
{
    return plant_.item(item)->value.get<int>();
}

std::vector<bool> LocalCloud::resumptions() const
{
    std::vector<bool> resumptions;
    for (const tovik_service::http::RequestRecord& record : requests_.since(0))
        resumptions.push_back(record.resumed.value_or(false));
    return resumptions;
}
