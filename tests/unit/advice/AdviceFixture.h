// Facts to build others on: a port and an image that are as they should be.
#pragma once

#include "advice/FailureAdvice.h"

#include <string>

namespace flashwriter {

inline FailureFacts goodFacts() {
    FailureFacts facts;
    facts.portPath = "/dev/ttyUSB0";
    facts.port.state = PortState::Permitted;
    facts.port.user = "ada";
    facts.port.group = "dialout";
    facts.port.groupMayUse = true;
    facts.port.membership = GroupMembership::Active;
    facts.ports = {"/dev/ttyACM0", "/dev/ttyUSB0"};
    facts.filePath = "image.bin";
    facts.file.state = FileState::Readable;
    facts.file.size = 1500;
    facts.file.kind = ImageKind::Bin;
    return facts;
}

inline std::string advice(ResultCode result, const FailureFacts& facts,
                          const _COMMANDINFO& last = {}) {
    return failureAdvice({result, last}, facts);
}

} // namespace flashwriter
