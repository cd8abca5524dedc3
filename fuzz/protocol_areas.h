#ifndef FUZZ_PROTOCOL_AREAS_H
#define FUZZ_PROTOCOL_AREAS_H

#include "fuzz/input.h"

/// \file
/// Checks of those operations of ProtocolBasic that pack and unpack many elements. Each takes its
/// arguments from the input; the memory that a pointer stands for is as large as the operation's
/// description asks for, and no larger.
namespace fuzz {

void dataArea(Input* input);    ///< composeDataArea() and back.
void array(Input* input);       ///< addArray() and back.
void areaInPlace(Input* input); ///< Source and target are one array.
void oddElements(Input* input); ///< Elements of sizes that there are not.
void outOfAnArea(Input* input); ///< extractDataArea() of any part of any array.

} // namespace fuzz

#endif
