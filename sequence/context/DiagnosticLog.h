// The diagnostic log: what happened, for whoever looks for a fault. The person who writes a board
// never sees it; the log view has its own lines.
#pragma once

namespace flashwriter {

// Receives one entry, NUL-terminated, valid during the call only: a line without its line break, or
// a few lines with line breaks between them. Called on whichever thread logs, by several at once.
// When it throws, its entry is lost, and nothing else.
using DiagnosticSink = void (*)(const char* text);

// Replaces the sink; nullptr brings back the first one, which writes lines to standard error and
// never waits for it (see DiagnosticStream.h).
void setDiagnosticSink(DiagnosticSink sink);

// Hands one line, formatted as by printf, to the sink. Any thread; never throws.
[[gnu::format(printf, 1, 2)]] void diagnosticLog(const char* format, ...);

} // namespace flashwriter
