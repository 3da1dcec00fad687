// The line under a form that asks for port, speed and image: what still stands in the way of a
// write, told before anybody has to find out by a failure.
#pragma once

#include "serial/PortFacts.h"
#include "targetfile/FileFacts.h"

#include <string>
#include <vector>

namespace flashwriter {

struct FormFacts {
    std::string portPath; // as it stands in the form, empty when it is not filled in
    PortFacts port;
    std::vector<std::string> ports; // the serial ports that there are
    bool speedChosen = false;       // an item of the list, not a text that somebody typed
    std::string filePath;           // likewise
    FileFacts file;
};

// Looks at what the texts of the form name (UTF-8). Never fails, and never opens the port, which
// would move its lines; an empty text is not looked up. Goes through the system's processes for
// those that hold the port. The answer is as old as the call.
FormFacts formFacts(const std::string& portText, bool speedChosen, const std::string& fileText);

struct FormAdvice {
    std::string text; // one line without a line break; names in it are made harmless
    bool standsInTheWay = false;
};

// The first thing that stands in the way of a write, and what to do about it: the port before the
// speed, and the file last. Says no more than the facts bear out, so a write may fail all the same.
FormAdvice formAdvice(const FormFacts& facts);

} // namespace flashwriter
