// Reads the windows of one program through the accessibility interface, as blind people do.
#pragma once

#include "tests/support/desktop/Accessible.h"

#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>

namespace flashwriter::testing {

// Works on the Desktop of this process, of which there has to be one already. Every wait ends after
// a time that only a hang exceeds.
class ScreenReader {
public:
    explicit ScreenReader(pid_t program); // throws std::runtime_error without a desktop to read

    // The windows of the program that the screen shows; none while it does not answer.
    std::vector<Accessible> windows() const;

    // The first thing of this name that is on the screen now, in the order in which the program
    // tells of its windows and of what is in them. A combo box, whose name is what it holds, goes
    // by the label before it; the label itself is not found by its name then.
    std::optional<Accessible> find(const std::string& name) const;

    // Waits for it; throws std::runtime_error when it does not come.
    Accessible get(const std::string& name) const;

    // Waits until it is there and as told.
    bool waitUntil(const std::string& name,
                   const std::function<bool(const Accessible&)>& condition) const;
    bool waitUntilGone(const std::string& name) const;

    // All that is on the screen, one thing per line: for a failed test's message.
    std::string everything() const;

private:
    std::optional<Accessible> application() const;

    pid_t m_program;
};

} // namespace flashwriter::testing
