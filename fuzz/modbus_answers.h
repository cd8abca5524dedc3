#ifndef FUZZ_MODBUS_ANSWERS_H
#define FUZZ_MODBUS_ANSWERS_H

#include "examples/modbus/modbus_framing.h"
#include "fuzz/input.h"

namespace fuzz {

/// A request that the driver might send. Takes six bytes.
modbus::Request takeRequest(Input* input);

/// The PDU of a good answer to \a request.
QByteArray goodAnswer(const modbus::Request& request);

/// Feeds \a framing with what is left of \a input, \a portion bytes at a time, until it takes an
/// answer; false if it takes none. What it was fed with is appended to \a come.
bool takeInPortions(int portion, Input* input, modbus::Framing* framing, QByteArray* come,
                    modbus::Answer* answer);

/// Whether \a status says that there is an answer: a good one or an exception.
bool isAnswer(int status);
/// Whether \a status says what is wrong with what has come.
bool isWrongAnswer(int status);

/// Checks that \a answer says of itself what its PDU says.
void checkAnswer(const modbus::Request& request, const modbus::Answer& answer);

} // namespace fuzz

#endif
