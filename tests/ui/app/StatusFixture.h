#pragma once

#include "app/StatusLine.h"
#include "tests/support/PseudoTerminal.h"

#include <QLabel>
#include <QString>

#include <memory>

namespace flashwriter::testing {

// What the line says of the fixture's form as it is at first.
inline const QString NO_SPEED = "No speed is chosen: choose 115,200 or 500,000 bps from the list; "
                                "typed text does not count.";

// A line for a form with a port that no other program holds.
struct StatusFixture {
    StatusFixture() {
        line = std::make_unique<StatusLine>(label, queue, [this] {
            ++looks;
            return entries;
        });
    }

    QLabel label;
    MainThreadQueue queue;
    PseudoTerminal terminal;
    FormEntries entries{.port = terminal.portPath(), .isSpeedChosen = false, .file = ""};
    int looks = 0; // how often the form has been asked
    std::unique_ptr<StatusLine> line;
};

} // namespace flashwriter::testing
