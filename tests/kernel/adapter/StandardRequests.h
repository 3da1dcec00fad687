#pragma once

#include "tests/kernel/adapter/DeviceDescription.h"

#include <optional>

namespace flashwriter::kernel {

// Whether it is one of the requests that every USB device knows.
bool isStandard(const SetupPacket& setup);

// Answers one; nothing: refused. Address, configuration and settings of interfaces are not among
// them, since the host's side of the link keeps these.
std::optional<Bytes> standardRequest(const DeviceDescription& description,
                                     const SetupPacket& setup);

} // namespace flashwriter::kernel
