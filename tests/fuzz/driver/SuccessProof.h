#pragma once

#include "tests/fuzz/driver/FuzzedImages.h"
#include "tests/fuzz/driver/ScriptedPort.h"

namespace flashwriter::fuzz {

// Whether what went over a port bears out a write of this image: every frame was sent, in order,
// and the answers that lay in the receive buffer, one after the other, allowed each step and end in
// the image's own checksum. A board that answers so has taken the image, or lies. baudRate: the
// index of the speed.
bool provesSuccess(const ScriptedPort& port, const FuzzedImage& image, std::uint8_t baudRate);

} // namespace flashwriter::fuzz
