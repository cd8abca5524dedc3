#include "modbus_framing.h"

namespace modbus {

namespace {

// Several of the largest frames: more is no late answer but noise, and nobody may fill the memory.
const int largest_input = 4096;

} // namespace

Framing::~Framing() = default;

void Framing::add(const QByteArray& bytes)
{
    input_ = (input_ + bytes).right(largest_input);
}

void Framing::reset()
{
    input_.clear();
}

} // namespace modbus
