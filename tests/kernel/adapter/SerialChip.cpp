#include "tests/kernel/adapter/SerialChip.h"

#include "tests/kernel/adapter/CdcChip.h"
#include "tests/kernel/adapter/FtdiChip.h"

namespace flashwriter::kernel {

std::unique_ptr<SerialChip> makeChip(AdapterKind kind, SerialLines& lines) {
    if (kind == AdapterKind::cdcAcm) {
        return std::make_unique<CdcChip>(lines);
    }
    return std::make_unique<FtdiChip>(lines);
}

} // namespace flashwriter::kernel
