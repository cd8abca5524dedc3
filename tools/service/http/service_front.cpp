#include "tools/service/http/service_front.h"

#include "tools/service/plant/clock.h"

#include <cmath>

namespace tovik_service::http {

namespace {

constexpr int hang_check_milliseconds = 20;
constexpr const char* json_type = "application/json";

std::string describe(const RequestRecord& record)
{
    const std::string number = "request " + std::to_string(record.number) + " " + record.path;
    return record.item.empty() ? number : number + " " + plant::toText(plant::Json(record.item));
}

} // namespace

/// One request on its way through the service.
struct ServiceFront::Exchange
{
    double start = plant::steadySeconds();
    double time = plant::unixSeconds();
    plant::RequestBody body;
    faults::RequestFacts facts;
    faults::FaultPointer fault;
    std::optional<int> error_code;
    std::string problem;

    bool has(faults::FaultKind kind) const { return fault && fault->spec.kind() == kind; }
};

ServiceFront::ServiceFront(plant::Plant& plant, plant::TokenStore& tokens,
                           faults::FaultTable& faults, RequestLog& requests, EventLog& log)
    : plant_(plant),
      tokens_(tokens),
      faults_(faults),
      requests_(requests),
      log_(log),
      service_(plant, tokens)
{
    engine_.Post(".*", [this](const httplib::Request& request, httplib::Response& response) {
        onPost(request, response);
    });
    const httplib::Server::Handler error = [this](const httplib::Request& request,
                                                  httplib::Response& response) {
        onError(request, response);
    };
    engine_.set_error_handler(error);
    engine_.set_exception_handler(
        [this](const httplib::Request&, httplib::Response& response, const std::exception_ptr&) {
            log_.note("internal error while answering a request");
            response.status = 500;
            response.set_content(plant::toText(plant::refusal(plant::codeInternal, "").json),
                                 json_type);
        });
}

void ServiceFront::onPost(const httplib::Request& request, httplib::Response& response)
{
    HttpEngine::current().answered = true;
    const auto path = plant::apiPathFromUrl(request.path);
    if (!path) {
        refuseUnknown(request, response, 404);
        return;
    }
    Exchange exchange;
    exchange.body = plant::parseBody(request.body);
    const std::string item = exchange.body.text("dataitem_id");
    const std::string group = exchange.body.text("group_id");
    exchange.facts = {*path, item, item.empty() ? group : plant_.groupIdOf(item)};
    exchange.fault = faults_.takeForRequest(exchange.facts);
    if (!strike(exchange)) {
        finish(exchange, 0);
        return;
    }
    const faults::HttpReply reply = answer(exchange, request.get_header_value("Content-Type"));
    response.status = reply.status;
    response.set_content(reply.body, reply.content_type);
    finish(exchange, reply.status);
}

// The faults that strike before the service sees the request; false if it never will.
bool ServiceFront::strike(Exchange& exchange)
{
    Connection& connection = HttpEngine::current();
    if (!exchange.fault)
        return true;
    const faults::FaultSpec& spec = exchange.fault->spec;
    switch (spec.kind()) {
    case faults::FaultKind::Reset:
        connection.drop(true);
        return false;
    case faults::FaultKind::Hang:
        while (faults_.isInForce(*exchange.fault) && connection.pause(hang_check_milliseconds)) {
        }
        connection.drop(false);
        return false;
    case faults::FaultKind::Delay:
        connection.pause(spec.ms);
        break;
    case faults::FaultKind::Drip:
        connection.dripReplies(spec.ms);
        break;
    case faults::FaultKind::ResetMid:
        connection.resetInBody();
        break;
    case faults::FaultKind::TokenExpiry:
        tokens_.expireAll();
        break;
    default:
        break;
    }
    return true;
}

faults::HttpReply ServiceFront::answer(Exchange& exchange, const std::string& content_type)
{
    if (exchange.fault && faults::replacesService(exchange.fault->spec.kind())) {
        if (exchange.has(faults::FaultKind::ErrorCode))
            exchange.error_code = exchange.fault->spec.code;
        return faults::replacementReply(exchange.fault->spec);
    }
    const plant::Reply reply = service_.answer(exchange.facts.path, content_type, exchange.body,
                                               HttpEngine::current().clientAddress());
    exchange.error_code = reply.errorCode();
    exchange.problem = reply.problem;
    return exchange.fault ? faults::spoiltReply(exchange.fault->spec, reply.json)
                          : faults::HttpReply{200, plant::toText(reply.json), json_type};
}

void ServiceFront::finish(const Exchange& exchange, int status)
{
    RequestRecord record;
    record.time = exchange.time;
    record.path = plant::apiPathName(exchange.facts.path);
    record.item = plant::shownText(exchange.facts.item);
    record.error_code = exchange.error_code;
    record.status = status;
    record.fault = exchange.fault ? exchange.fault->spec.text : "";
    record.resumed = HttpEngine::current().isResumed();
    record.milliseconds = std::round((plant::steadySeconds() - exchange.start) * 1e6) / 1e3;
    record.body = plant::maskedBody(exchange.body);
    record.number = requests_.add(record);
    const std::string what = describe(record);
    if (exchange.fault) {
        log_.note(what + ": fault " + std::to_string(exchange.fault->id) + " applied, " +
                  record.fault);
    }
    if (!exchange.problem.empty()) {
        log_.note(what + ": refused with error code " + std::to_string(*exchange.error_code) +
                  ", " + exchange.problem);
    }
    log_.detail(what + ": status " + std::to_string(status) + ", " +
                (record.resumed.value_or(false) ? "TLS session resumed, " : "") +
                plant::toText(record.body));
}

void ServiceFront::refuseUnknown(const httplib::Request& request, httplib::Response& response,
                                 int status)
{
    RequestRecord record;
    record.time = plant::unixSeconds();
    record.path = plant::shownText(request.path);
    record.error_code = plant::codeMalformed;
    record.status = status;
    record.resumed = HttpEngine::current().isResumed();
    record.number = requests_.add(record);
    log_.note("request " + std::to_string(record.number) + ": refused with status " +
              std::to_string(status) + ", " + request.method + " " +
              plant::toText(plant::Json(record.path)));
    response.status = status;
    response.set_content(plant::toText(plant::refusal(plant::codeMalformed, "").json), json_type);
}

// Comes for all that the HTTP library turns away by itself, and for our own error replies.
void ServiceFront::onError(const httplib::Request& request, httplib::Response& response)
{
    if (HttpEngine::current().answered)
        return;
    const bool wrong_method =
        response.status == 404 && plant::apiPathFromUrl(request.path).has_value();
    refuseUnknown(request, response, wrong_method ? 405 : response.status);
}

} // namespace tovik_service::http
