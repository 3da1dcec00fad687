#include "tests/simulation/SimulatedWrite.h"

#include "tests/simulation/BoardPort.h"
#include "tests/simulation/Simulation.h"

namespace flashwriter::simulation {

SimulatedWrite simulateWrite(const board::BoardOptions& options, const ClockOptions& clock,
                             const std::string& file, std::uint8_t baudRate) {
    BoardPort port(options);
    Simulation simulation(port, clock);
    SimulatedWrite write;
    write.codeBefore = port.adapter().target().flash().code();
    write.dataBefore = port.adapter().target().flash().data();
    write.record = runDriver("/dev/simulated", baudRate, file);
    write.duration = simulation.now();
    write.transcript = port.transcriptText();
    write.violations = port.adapter().violations();
    write.codeAfter = port.adapter().target().flash().code();
    write.dataAfter = port.adapter().target().flash().data();
    write.openings = simulation.openings();
    write.closings = simulation.closings();
    write.strayCalls = simulation.strayCalls();
    return write;
}

} // namespace flashwriter::simulation
