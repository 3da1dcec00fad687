// One thing on the screen, as a screen reader has it from the program that shows it.
#pragma once

#include "tests/support/desktop/Hands.h"

#include <atspi/atspi.h>

#include <memory>
#include <string>
#include <vector>

namespace flashwriter::testing {

// Everything is asked of the program anew each time, and waits for the answer half a second at the
// most: what has gone from the screen, or belongs to a program that is busy, has empty texts, no
// states and no children.
class Accessible {
public:
    explicit Accessible(AtspiAccessible* object); // takes the reference over; never null

    std::string name() const;
    std::string description() const;
    std::string role() const; // for example "push button"

    // What stands to it in this relation: its labels, for example, the box around it among them.
    std::vector<Accessible> related(AtspiRelationType type) const;

    // What stands in it where it can be read letter by letter, as in a field or a log.
    std::string text() const;

    double value() const; // of a progress bar, for example
    bool has(AtspiStateType state) const;
    bool enabled() const { return has(ATSPI_STATE_ENABLED) && has(ATSPI_STATE_SENSITIVE); }
    bool focused() const { return has(ATSPI_STATE_FOCUSED); }
    bool showing() const { return has(ATSPI_STATE_SHOWING); }

    Rectangle place() const; // on the screen
    std::vector<Accessible> children() const;
    int processId() const;

private:
    std::shared_ptr<AtspiAccessible> m_object;
};

} // namespace flashwriter::testing
