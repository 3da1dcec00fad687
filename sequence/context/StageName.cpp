#include "sequence/context/StageName.h"

namespace flashwriter {

const char* stageName(std::int32_t step) {
    switch (step) {
    case 100:
        return "Reading file.";
    case 101:
        return "Changing to programming mode.";
    case 102:
        return "Erasing block data.";
    case 103:
        return "Writing data.";
    default:
        return "";
    }
}

} // namespace flashwriter
