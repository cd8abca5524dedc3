#ifndef TOOLS_SERVICE_PLANT_SERVICE_H
#define TOOLS_SERVICE_PLANT_SERVICE_H

#include "tools/service/plant/api_path.h"
#include "tools/service/plant/plant.h"
#include "tools/service/plant/request_body.h"
#include "tools/service/plant/token_store.h"

#include <string>

namespace tovik_service::plant {

/// The meanings that this service gives to the error codes of its replies.
enum ErrorCode : int
{
    codeSuccess = 0,
    codeWrongAccount = 1,
    codeUnknownProject = 3,
    codeUnknownToken = 4,
    codeUnknownId = 7,
    codeReadOnly = 8,
    codeBadValue = 9,
    codeMalformed = 15,
    codeInternal = 255
};

/// What the service answers, and for the log why it refused.
struct Reply
{
    Json json;
    std::string problem;

    int errorCode() const { return json.value("errorcode", static_cast<int>(codeInternal)); }
};

/// The five requests, free of any network.
class Service
{
public:
    Service(Plant& plant, TokenStore& tokens);

    /// Answers one request; the client's address is kept with a token that it gets.
    Reply answer(ApiPath path, const std::string& content_type, const RequestBody& body,
                 const std::string& client = {});

private:
    Reply login(const RequestBody& body, const std::string& client);
    Reply groups();
    Reply items(const std::string& group_id);
    Reply value(const std::string& item_id);
    Reply write(const std::string& item_id, const Json& value);

    Plant& plant_;
    TokenStore& tokens_;
};

/// A reply that refuses.
Reply refusal(ErrorCode code, const std::string& problem);

} // namespace tovik_service::plant

#endif
