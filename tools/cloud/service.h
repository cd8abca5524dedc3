#ifndef TOOLS_CLOUD_SERVICE_H
#define TOOLS_CLOUD_SERVICE_H

#include "tools/cloud/api_path.h"
#include "tools/cloud/error_code.h"
#include "tools/cloud/plant.h"
#include "tools/cloud/request_body.h"
#include "tools/cloud/token_store.h"

#include <string>

namespace tovik_cloud {

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
    Reply answer(ApiPath path, const std::string& contentType, const RequestBody& body,
                 const std::string& client = {});

private:
    Reply login(const RequestBody& body, const std::string& client);
    Reply groups();
    Reply items(const std::string& groupId);
    Reply value(const std::string& itemId);
    Reply write(const std::string& itemId, const Json& value);

    Plant& plant_;
    TokenStore& tokens_;
};

/// A reply that refuses.
Reply refusal(ErrorCode code, const std::string& problem);

} // namespace tovik_cloud

#endif
