#pragma once

namespace flashwriter::testing {

// While true, std::thread fails to start one, as on a system that has no more to give.
extern bool failThreadCreation;

} // namespace flashwriter::testing
