#pragma once

#include <functional>

namespace flashwriter {

// Hands a task to the main thread, asynchronously and in order. Called from any thread.
using MainQueue = std::function<void(std::function<void()>)>;

} // namespace flashwriter
