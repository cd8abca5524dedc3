#ifndef FUZZ_JSON_REPLY_H
#define FUZZ_JSON_REPLY_H

#include "cloud/service_message.h"

#include <QByteArray>

namespace fuzz {

/// Puts \a reply through the check that all replies go through, and checks its result.
///
/// \return whether it was taken; then \a members are those of the reply. A reply that is JSON but
///         no object raises an exception, as it should; this catches it for just those.
bool takeReply(const QByteArray& reply, const service::Operation& operation,
               picojson::object* members);

/// Whether \a body raises picojson's `std::runtime_error`, and nothing else.
template <typename Body>
bool raisesTypeMismatch(Body body)
{
    try {
        body();
    } catch (const std::overflow_error&) {
        throw; // one of its kind, and none that is expected
    } catch (const std::runtime_error&) {
        return true;
    }
    return false;
}

} // namespace fuzz

#endif
