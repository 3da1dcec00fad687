#include "tests/simulation/SimulatedWrite.h"

#include "tests/simulation/BoardPort.h"
#include "tests/simulation/Simulation.h"

#include <functional>
#include <memory>

namespace flashwriter::simulation {

namespace {

// Writes a file, each time with the same driver. It lives on until its owner has looked at the
// port, so that what it left open is still open.
class Writer {
public:
    Writer(const Simulation& simulation, const std::string& file, std::uint8_t baudRate)
        : m_simulation(simulation) {
        m_run = file.ends_with(".mot") ? runner<NSSequenceProcessorForMot>(file, baudRate)
                                       : runner<NSSequenceProcessor>(file, baudRate);
    }

    PortWrite write() {
        const PortWrite before = counts();
        PortWrite write;
        write.record = m_run();
        const PortWrite after = counts();
        write.duration = after.duration - before.duration;
        write.openings = after.openings - before.openings;
        write.closings = after.closings - before.closings;
        write.strayCalls = after.strayCalls - before.strayCalls;
        return write;
    }

private:
    template <class Driver>
    std::function<RunRecord()> runner(const std::string& file, std::uint8_t baudRate) {
        const auto driver = std::make_shared<Driver>(m_queue.handle());
        return [this, driver, file, baudRate] {
            return runWith(driver, m_queue, "/dev/simulated", baudRate, file);
        };
    }
    PortWrite counts() const {
        PortWrite counts;
        counts.duration = m_simulation.now();
        counts.openings = m_simulation.openings();
        counts.closings = m_simulation.closings();
        counts.strayCalls = m_simulation.strayCalls();
        return counts;
    }

    const Simulation& m_simulation;
    TestMainQueue m_queue;
    std::function<RunRecord()> m_run;
};

SimulatedWrite writeToBoard(Writer& writer, const BoardPort& port) {
    const board::Adapter& adapter = port.adapter();
    const board::FlashMemory& flash = adapter.target().flash();
    SimulatedWrite write;
    write.codeBefore = flash.code();
    write.dataBefore = flash.data();
    write.unpluggedBefore = adapter.unplugged();
    const std::size_t violations = adapter.violations();
    static_cast<PortWrite&>(write) = writer.write();
    write.transcript = port.transcriptText();
    write.violations = adapter.violations() - violations;
    write.codeAfter = flash.code();
    write.dataAfter = flash.data();
    return write;
}

} // namespace

PortWrite writeThrough(SimulatedPort& port, const ClockOptions& clock, const std::string& file,
                       std::uint8_t baudRate) {
    const Simulation simulation(port, clock);
    return Writer(simulation, file, baudRate).write();
}

SimulatedWrite simulateWrite(const board::BoardOptions& options, const ClockOptions& clock,
                             const std::string& file, std::uint8_t baudRate) {
    return simulateWrites(1, options, clock, file, baudRate).front();
}

std::vector<SimulatedWrite> simulateWrites(std::uint32_t count, const board::BoardOptions& options,
                                           const ClockOptions& clock, const std::string& file,
                                           std::uint8_t baudRate) {
    BoardPort port(options);
    const Simulation simulation(port, clock);
    Writer writer(simulation, file, baudRate);
    std::vector<SimulatedWrite> writes;
    while (writes.size() < count) {
        writes.push_back(writeToBoard(writer, port));
    }
    return writes;
}

} // namespace flashwriter::simulation
