#include <httplib.h>

#include "tests/support/cloud_process.h"

#include <QRegularExpression>

#include <csignal>
#include <memory>

using nlohmann::json;

namespace {

ServiceAnswer toAnswer(const httplib::Result& result)
{
    ServiceAnswer answer;
    if (result) {
        answer.arrived = true;
        answer.status = result->status;
        answer.text = result->body;
        answer.json = json::parse(result->body, nullptr, false);
    }
    return answer;
}

} // namespace

int ServiceAnswer::errorCode() const
{
    return json.is_object() && json.contains("errorcode") && json.at("errorcode").is_number()
               ? json.at("errorcode").get<int>()
               : -1;
}

CloudProcess::CloudProcess()
{
    // A client that says goodbye to a reset connection would end the test.
    std::signal(SIGPIPE, SIG_IGN);
}

QString CloudProcess::program()
{
    return QStringLiteral(TOVIK_CLOUD_PROGRAM);
}

QString CloudProcess::exampleProject()
{
    return QStringLiteral(TOVIK_CLOUD_PROJECT);
}

bool CloudProcess::start(const QStringList& options)
{
    return startProject(exampleProject(), options);
}

bool CloudProcess::startProject(const QString& project, const QStringList& options)
{
    process_.start(program(), QStringList(project) + options);
    const QRegularExpression lines(QStringLiteral(
        "Service: (https?)://127\\.0\\.0\\.1:(\\d+)\nControl: http://[^/]+:(\\d+)\n"));
    while (process_.waitForReadyRead(BoundProcess::patience())) {
        output_ += QString::fromUtf8(process_.readAllStandardOutput());
        const auto match = lines.match(output_);
        if (match.hasMatch()) {
            tls_ = match.captured(1) == QStringLiteral("https");
            port_ = match.captured(2).toInt();
            control_port_ = match.captured(3).toInt();
            return true;
        }
    }
    return false;
}

int CloudProcess::stop(int signal)
{
    process_.sendSignal(signal);
    return process_.waitForExitCode();
}

std::string CloudProcess::log()
{
    process_.waitForReadyRead(0);
    log_ += process_.readAllStandardError().toStdString();
    return log_;
}

ServiceAnswer CloudProcess::post(const std::string& path, const json& body)
{
    return postRaw(path, body.dump());
}

ServiceAnswer CloudProcess::postRaw(const std::string& path, const std::string& body,
                                    const std::string& content_type)
{
    std::unique_ptr<httplib::ClientImpl> client;
    if (tls_) {
        client = std::make_unique<httplib::SSLClient>("127.0.0.1", port_);
        client->enable_server_certificate_verification(false);
    } else {
        client = std::make_unique<httplib::ClientImpl>("127.0.0.1", port_);
    }
    client->set_read_timeout(BoundProcess::patience() / 1000);
    return toAnswer(client->Post(path, body, content_type));
}

std::string CloudProcess::login()
{
    const ServiceAnswer answer =
        post("/qlix_api/auth/login",
             {{"email", "operator@example.com"}, {"password", "tovik"}, {"project", "plant"}});
    return answer.json.is_object() ? answer.json.value("token", std::string()) : std::string();
}

ServiceAnswer CloudProcess::value(const std::string& token, const std::string& item)
{
    return post("/qlix_api/imonitor/dataitem/value", {{"dataitem_id", item}, {"token", token}});
}

ServiceAnswer CloudProcess::write(const std::string& token, const std::string& item,
                                  const json& value)
{
    return post("/qlix_api/imonitor/dataitem/setValue",
                {{"dataitem_id", item}, {"token", token}, {"value", value}});
}

ServiceAnswer CloudProcess::control(const std::string& method, const std::string& path,
                                    const std::string& body)
{
    httplib::Client client("127.0.0.1", control_port_);
    client.set_read_timeout(BoundProcess::patience() / 1000);
    if (method == "GET")
        return toAnswer(client.Get(path));
    if (method == "DELETE")
        return toAnswer(client.Delete(path));
    return toAnswer(method == "PUT" ? client.Put(path, body, "application/json")
                                    : client.Post(path, body, "application/json"));
}

int CloudProcess::addFault(const std::string& fault)
{
    const ServiceAnswer answer = control("POST", "/faults", json{{"fault", fault}}.dump());
    return answer.status == 200 ? answer.json.value("id", 0) : 0;
}

int CloudProcess::applied(int fault)
{
    const ServiceAnswer answer = control("GET", "/faults");
    for (const json& entry : answer.json.value("faults", json::array())) {
        if (entry.at("id") == fault)
            return entry.at("applied").get<int>();
    }
    return -1;
}
