#ifndef TOOLS_SERVICE_PLANT_REQUEST_BODY_H
#define TOOLS_SERVICE_PLANT_REQUEST_BODY_H

#include "tools/service/plant/api_path.h"
#include "tools/service/plant/json.h"

#include <cstddef>
#include <string>

namespace tovik_service::plant {

/// A request body after parsing: an object, or the reason why it is none.
struct RequestBody
{
    Json object;          ///< null if the body is no JSON object
    std::size_t size = 0; ///< bytes on the wire
    std::string problem;

    /// A string member, or an empty string.
    std::string text(const char* name) const;
};

/// Parses a body; never throws, whatever the bytes are.
RequestBody parseBody(const std::string& bytes);

/// Says what is wrong with a body for this request, or nothing: exact members, right kinds.
std::string bodyProblem(ApiPath path, const RequestBody& body);

/// Says what is wrong with the content type, or nothing.
std::string contentTypeProblem(const std::string& content_type);

/// The body as it may be logged: passwords masked, tokens shortened.
Json maskedBody(const RequestBody& body);

/// The text, or the start of a long one: kept whole, a thousand of them would fill the memory.
std::string shownText(const std::string& text);

/// The first characters of a token.
std::string shortToken(const std::string& token);

} // namespace tovik_service::plant

#endif
