#include "board/BoardViews.h"

namespace flashwriter::board {

Transcript BoardViews::transcript() const {
    const BoardLoop& loop = board();
    return loop.look([&loop] { return loop.adapter().transcript(); });
}

std::size_t BoardViews::violations() const {
    const BoardLoop& loop = board();
    return loop.look([&loop] { return loop.adapter().violations(); });
}

TargetMode BoardViews::mode() const {
    const BoardLoop& loop = board();
    return loop.look([&loop] { return loop.adapter().target().mode(); });
}

Bytes BoardViews::codeFlash() const {
    const BoardLoop& loop = board();
    return loop.look([&loop] { return loop.adapter().target().flash().code(); });
}

Bytes BoardViews::dataFlash() const {
    const BoardLoop& loop = board();
    return loop.look([&loop] { return loop.adapter().target().flash().data(); });
}

std::uint32_t BoardViews::closings() const {
    const BoardLoop& loop = board();
    return loop.look([&loop] { return loop.adapter().closings(); });
}

std::uint32_t BoardViews::sessions() const {
    const BoardLoop& loop = board();
    return loop.look([&loop] { return loop.adapter().sessions(); });
}

bool BoardViews::unplugged() const {
    const BoardLoop& loop = board();
    return loop.look([&loop] { return loop.adapter().unplugged(); });
}

bool BoardViews::waitForMode(TargetMode mode, std::chrono::milliseconds patience) const {
    const BoardLoop& loop = board();
    return loop.waitUntil([&] { return loop.adapter().target().mode() == mode; }, patience);
}

bool BoardViews::waitForClosings(std::uint32_t count, std::chrono::milliseconds patience) const {
    const BoardLoop& loop = board();
    return loop.waitUntil([&] { return loop.adapter().closings() >= count; }, patience);
}

} // namespace flashwriter::board
