#pragma once

namespace flashwriter::fuzz {

// The toolkit for a target, drawing into memory and without its warnings, of which every input
// might bring some. Once, before the first widget; there until the program's end.
void startToolkit(int& count, char** arguments);

} // namespace flashwriter::fuzz
