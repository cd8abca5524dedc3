#include "tools/service/control/control_api.h"

#include "tools/service/control/control_views.h"
#include "tools/service/control/dashboard.h"
#include "tools/service/plant/clock.h"

#include <cstdlib>
#include <stdexcept>

namespace tovik_service::control {

namespace {

/// A request that the control API turns down with status 400.
class BadRequest : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

void send(httplib::Response& response, const plant::Json& json, int status = 200)
{
    response.status = status;
    response.set_content(plant::toText(json) + "\n", "application/json");
}

void sendError(httplib::Response& response, int status, const std::string& text)
{
    send(response, {{"error", text}}, status);
}

/// The only member that the body of a request has.
plant::Json onlyMember(const httplib::Request& request, const std::string& name)
{
    const plant::Json body = plant::Json::parse(request.body, nullptr, false);
    if (!body.is_object() || body.size() != 1 || !body.contains(name))
        throw BadRequest("the body needs to be {\"" + name + "\": ...} and nothing else");
    return body.at(name);
}

std::uint64_t sinceParameter(const httplib::Request& request)
{
    if (!request.has_param("since"))
        return 0;
    const std::string text = request.get_param_value("since");
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos)
        throw BadRequest("since= needs the number of a request");
    return std::strtoull(text.c_str(), nullptr, 10);
}

plant::Json requestsJson(const http::RequestLog& requests, std::uint64_t number)
{
    plant::Json list = plant::Json::array();
    for (const http::RequestRecord& record : requests.since(number))
        list.push_back(http::toJson(record));
    return list;
}

} // namespace

ControlApi::ControlApi(ControlTargets targets)
    : targets_(std::move(targets)),
      start_(plant::steadySeconds()),
      started_(plant::unixSeconds())
{
    addGuard();
    addDashboardRoutes(engine_);
    addFaultRoutes();
    addItemRoutes();
    addOtherRoutes();
    addErrorReplies();
}

void ControlApi::addGuard()
{
    engine_.set_pre_routing_handler([this](const Request& request, Response& response) {
        const ControlRequest asked{request.method, request.path, request.get_header_value("Host"),
                                   request.get_header_value("Origin"),
                                   request.get_header_value("Authorization")};
        const std::optional<ControlRefusal> refusal = guard_.refusal(asked);
        if (!refusal)
            return httplib::Server::HandlerResponse::Unhandled;
        sendError(response, refusal->status, refusal->text);
        if (refusal->status == 401)
            response.set_header("WWW-Authenticate", "Bearer");
        // The body was not read, and must not be taken for the next request.
        http::HttpEngine::current().last_request = true;
        response.set_header("Connection", "close");
        return httplib::Server::HandlerResponse::Handled;
    });
}

void ControlApi::addFaultRoutes()
{
    engine_.Get("/faults", [this](const Request&, Response& response) {
        send(response, {{"faults", faultsJson(targets_.faults)}});
    });
    engine_.Get("/faults/kinds", [this](const Request&, Response& response) {
        send(response, {{"kinds", faultKindsJson(targets_.has_tls)}});
    });
    engine_.Post("/faults", [this](const Request& request, Response& response) {
        send(response, addFault(request));
    });
    engine_.Delete("/faults", [this](const Request&, Response& response) {
        targets_.faults.clear();
        targets_.faults_changed();
        targets_.log.note("all faults removed");
        send(response, plant::Json::object());
    });
    engine_.Delete(R"(/faults/(\d{1,9}))", [this](const Request& request, Response& response) {
        const std::string id = request.matches[1];
        if (!targets_.faults.remove(std::stoi(id))) {
            sendError(response, 404, "there is no fault " + id);
            return;
        }
        targets_.faults_changed();
        targets_.log.note("fault " + id + " removed");
        send(response, plant::Json::object());
    });
}

void ControlApi::addItemRoutes()
{
    engine_.Get("/groups", [this](const Request&, Response& response) {
        const plant::Plant::WriteHold hold = targets_.plant.writeHold();
        send(response, {{"groups", groupsJson(targets_.plant.project())},
                        {"write_hold", hold ? plant::Json(*hold) : plant::Json()}});
    });
    engine_.Get("/items", [this](const Request&, Response& response) {
        plant::Json list = plant::Json::array();
        for (const plant::ItemView& view : targets_.plant.allItems())
            list.push_back(itemJson(view));
        send(response, {{"items", list}});
    });
    engine_.Get("/items/(.+)", [this](const Request& request, Response& response) {
        const std::string id = request.matches[1];
        const auto view = targets_.plant.item(id);
        if (view)
            send(response, itemJson(*view));
        else
            sendError(response, 404, "there is no item \"" + id + "\"");
    });
    engine_.Put("/items/(.+)",
                [this](const Request& request, Response& response) { putItem(request, response); });
}

void ControlApi::addOtherRoutes()
{
    engine_.Get("/status",
                [this](const Request&, Response& response) { send(response, status()); });
    engine_.Get("/requests", [this](const Request& request, Response& response) {
        send(response, {{"requests", requestsJson(targets_.requests, sinceParameter(request))}});
    });
    engine_.Get("/live", [this](const Request& request, Response& response) {
        send(response, live(sinceParameter(request)));
    });
    engine_.Get("/clients", [this](const Request&, Response& response) {
        send(response, {{"clients", clientsJson(targets_.tokens)}});
    });
    engine_.Post("/plant/reload", [this](const Request&, Response& response) {
        targets_.reload_plant();
        send(response, {{"items", targets_.plant.allItems().size()}});
    });
    engine_.Post("/tokens/expire", [this](const Request&, Response& response) {
        const std::size_t count = targets_.tokens.expireAll();
        targets_.log.note(std::to_string(count) + " tokens expired on request");
        send(response, {{"expired", count}});
    });
}

void ControlApi::addErrorReplies()
{
    const httplib::Server::Handler error = [](const Request& request, Response& response) {
        if (response.body.empty()) {
            const std::string what = request.method + " " + request.path;
            sendError(response, response.status,
                      response.status == 404 ? "there is no " + what : "cannot read " + what);
        }
    };
    engine_.set_error_handler(error);
    engine_.set_exception_handler(
        [](const Request&, Response& response, const std::exception_ptr& problem) {
            try {
                std::rethrow_exception(problem);
            } catch (const BadRequest& bad) {
                sendError(response, 400, bad.what());
            } catch (const faults::FaultError& bad) {
                sendError(response, 400, bad.what());
            } catch (const plant::ProjectError& bad) {
                sendError(response, 400, bad.what());
            } catch (const std::exception& other) {
                sendError(response, 500, other.what());
            }
        });
}

plant::Json ControlApi::status()
{
    return {{"url", targets_.url},
            {"uptime", plant::steadySeconds() - start_},
            {"requests", targets_.requests.counts()},
            {"tokens", targets_.tokens.activeCount()}};
}

plant::Json ControlApi::live(std::uint64_t last_request)
{
    return {{"started", started_},
            {"status", status()},
            {"values", valuesJson(targets_.plant)},
            {"faults", faultsJson(targets_.faults)},
            {"clients", clientsJson(targets_.tokens)},
            {"requests", requestsJson(targets_.requests, last_request)}};
}

plant::Json ControlApi::addFault(const Request& request)
{
    const plant::Json text = onlyMember(request, "fault");
    if (!text.is_string())
        throw BadRequest("member \"fault\" needs a string such as \"delay:ms=500,count=3\"");
    const faults::FaultSpec spec = faults::parseFault(text.get<std::string>());
    for (const std::string& problem : {faults::tlsProblem(spec, targets_.has_tls),
                                       faults::plantProblem(spec, targets_.plant.project())}) {
        if (!problem.empty())
            throw BadRequest(problem);
    }
    const int id = targets_.faults.add(spec);
    targets_.faults_changed();
    targets_.log.note("fault " + std::to_string(id) + " added, " + spec.text);
    return {{"id", id}};
}

void ControlApi::putItem(const Request& request, Response& response)
{
    const std::string id = request.matches[1];
    const plant::WriteResult result =
        targets_.plant.write(id, onlyMember(request, "value"), plant::Writer::Control);
    if (result.outcome == plant::WriteOutcome::Done) {
        send(response, itemJson(*targets_.plant.item(id)));
    } else {
        sendError(response, result.outcome == plant::WriteOutcome::UnknownItem ? 404 : 400,
                  result.problem);
    }
}

} // namespace tovik_service::control
