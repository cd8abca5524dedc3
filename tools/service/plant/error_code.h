#ifndef TOOLS_SERVICE_PLANT_ERROR_CODE_H
#define TOOLS_SERVICE_PLANT_ERROR_CODE_H

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

} // namespace tovik_service::plant

#endif
