#pragma once

#include "board/BoardTime.h"
#include "board/Fault.h"
#include "board/Protocol.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace flashwriter::board {

// A reply after the faults have had their way with it.
struct SpoiltReply {
    Bytes bytes;                            // what goes over the wire; empty: nothing
    BoardTime delay{};                      // so much later than it would
    std::optional<std::size_t> unplugAfter; // so many bytes are sent, then the adapter is unplugged
    std::string note;                       // the faults that hit, for the transcript; or empty
};

// Counts the board's reply frames and spoils those that a fault is set for. Not synchronised.
class FaultInjector {
public:
    explicit FaultInjector(std::vector<Fault> faults);

    // The next reply frame; several faults may hit it, they work in the order they were given.
    SpoiltReply spoil(const Bytes& reply);

    // The first fault of this kind that hits the index-th occasion, or null.
    const Fault* find(FaultKind kind, std::uint32_t index) const;

    const std::vector<Fault>& faults() const { return m_faults; }

private:
    std::vector<Fault> m_faults;
    std::uint32_t m_replies = 0;
};

} // namespace flashwriter::board
