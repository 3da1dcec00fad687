// What is done where an exception must not get through: none may keep a write from its end, the
// toolkit takes none out of the slots and events that it calls, and a thread that lets one go ends
// the program.
#pragma once

#include "sequence/context/DiagnosticLog.h"

#include <chrono>
#include <exception>
#include <new>
#include <thread>

namespace flashwriter {

// Runs the action; true when it threw nothing. What it throws is in the diagnostic log.
template <class Action>
bool sheltered(const char* what, const Action& action) {
    try {
        action();
        return true;
    } catch (const std::exception& error) {
        diagnosticLog("%s: %s", what, error.what());
        return false;
    }
}

// Runs the action again, after a pause, while there is no memory for it: for half a second, since
// what a system lacks it often has again soon. Then std::bad_alloc goes to the caller. For what
// must not be lost; the action leaves nothing half done when it throws.
template <class Action>
void whenThereIsMemory(const Action& action) {
    constexpr int ATTEMPTS = 50;
    for (int attempt = 1;; ++attempt) {
        try {
            return action();
        } catch (const std::bad_alloc&) {
            if (attempt == ATTEMPTS) {
                throw;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
}

} // namespace flashwriter
