#pragma once

#include "tests/fuzz/driver/Script.h"
#include "tests/simulation/SimulatedPort.h"

#include <cstdint>
#include <map>
#include <vector>

namespace flashwriter::fuzz {

// A simulated device behind which nothing is but an input of the fuzzer.
class ScriptedPort : public simulation::SimulatedPort {
public:
    using Bytes = std::vector<std::uint8_t>;
    using VirtualTime = simulation::VirtualTime;

    // flash: what a good board holds after the write.
    ScriptedPort(const ScriptHeader& header, Script script, Bytes flash)
        : m_header(header), m_script(script), m_flash(std::move(flash)) {}

    // What the program wrote, each write by itself, but not those that the device took in part.
    const std::vector<Bytes>& written() const { return m_written; }
    // All that has arrived, and how much of it had when the program discarded what was there.
    const Bytes& received() const { return m_received; }
    const std::vector<std::size_t>& discards() const { return m_discards; }

    int open(VirtualTime now) override;
    int setSpeed(std::uint64_t bitsPerSecond, VirtualTime now) override;
    board::LineAnswer lines(const board::LineRequest& request, VirtualTime now) override;
    void close(VirtualTime now) override;
    ssize_t write(std::span<const std::uint8_t> bytes, VirtualTime now) override;
    void discardOutput(VirtualTime now) override;
    void advance(VirtualTime now) override;

private:
    ssize_t answer(std::span<const std::uint8_t> frame, std::uint8_t choice, VirtualTime now);
    Bytes makeAnswer(Answer kind, const Bytes& good);

    ScriptHeader m_header;
    Script m_script;
    Bytes m_flash;
    std::multimap<VirtualTime, Bytes> m_due; // what arrives, and when
    std::vector<Bytes> m_written;
    Bytes m_received;
    std::vector<std::size_t> m_discards;
    unsigned m_lineRequests = 0;
    bool m_unplugged = false;
};

} // namespace flashwriter::fuzz
