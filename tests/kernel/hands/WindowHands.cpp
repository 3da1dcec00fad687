#include "tests/kernel/hands/WindowHands.h"

#include "tests/kernel/hands/LocalSocket.h"

#include <sys/time.h>
#include <unistd.h>

#include <stdexcept>
#include <thread>
#include <utility>

namespace flashwriter::kernel {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds PAUSE{20};

// A descriptor, or -1 while nobody listens.
int tryToConnect(const LocalAddress& address) {
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::connect(descriptor, address.get(), LocalAddress::size()) == 0) {
        return descriptor;
    }
    ::close(descriptor);
    return -1;
}

} // namespace

WindowHands::Exchange connectTo(const std::string& socket, WindowHands::Milliseconds patience) {
    const LocalAddress address(socket);
    const auto end = Clock::now() + patience;
    int descriptor = -1;
    while ((descriptor = tryToConnect(address)) == -1) {
        if (Clock::now() > end) {
            throw std::runtime_error("no program has its hands at " + socket);
        }
        std::this_thread::sleep_for(PAUSE);
    }
    // A wait for a text may take its patience before it is answered.
    const timeval limit{.tv_sec = 2 * patience.count() / 1000 + 1, .tv_usec = 0};
    ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    return [lines = std::make_shared<LineSocket>(descriptor)](const std::string& command) {
        const auto answer = lines->write(command) ? lines->read() : std::nullopt;
        if (!answer) {
            throw std::runtime_error("no answer to: " + command);
        }
        return *answer;
    };
}

WindowHands::WindowHands(const std::string& socket, Milliseconds patience)
    : WindowHands(connectTo(socket, patience), patience) {}

WindowHands::WindowHands(Exchange exchange, Milliseconds patience)
    : m_exchange(std::move(exchange)), m_patience(patience) {}

Words WindowHands::ask(const Words& command) {
    Words answer = wordsOf(m_exchange(lineOf(command)));
    if (answer.front() != DONE) {
        throw std::runtime_error(lineOf(command) + ": " + lineOf(answer));
    }
    answer.erase(answer.begin());
    return answer;
}

std::string WindowHands::word(const Words& command) {
    return ask(command).at(0);
}

void WindowHands::click(const std::string& name) {
    ask({"click", name});
}

void WindowHands::press(const std::string& keys) {
    ask({"press", keys});
}

void WindowHands::close(const std::string& window) {
    ask({"close", window});
}

void WindowHands::choose(const std::string& name, const std::string& item) {
    ask({"choose", name, item});
}

void WindowHands::type(const std::string& name, const std::string& text) {
    ask({"type", name, text});
}

std::string WindowHands::text(const std::string& name) {
    return word({"text", name});
}

std::vector<std::string> WindowHands::items(const std::string& name) {
    return ask({"items", name});
}

bool WindowHands::enabled(const std::string& name) {
    return word({"enabled", name}) == "yes";
}

bool WindowHands::visible(const std::string& name) {
    return word({"visible", name}) == "yes";
}

std::vector<std::string> WindowHands::windows() {
    const Words words = ask({"windows"});
    std::vector<std::string> names;
    for (std::size_t i = 0; i < words.size(); i += 2) {
        names.push_back(words[i]);
    }
    return names;
}

std::string WindowHands::waitText(const std::string& name, const std::string& pattern) {
    return word({"wait-text", name, pattern, std::to_string(m_patience.count())});
}

void WindowHands::waitUntil(const std::function<bool()>& condition, const std::string& what) {
    const auto end = Clock::now() + m_patience;
    while (!condition()) {
        if (Clock::now() > end) {
            throw std::runtime_error("waited in vain: " + what);
        }
        std::this_thread::sleep_for(PAUSE);
    }
}

void WindowHands::waitGone(const std::string& name) {
    waitUntil([&] { return !visible(name); }, name + " goes");
}

void WindowHands::waitEnabled(const std::string& name) {
    waitUntil([&] { return enabled(name); }, name + " can be used");
}

WindowHands::Milliseconds WindowHands::alive() {
    return Milliseconds(std::stoll(word({"alive"})));
}

void WindowHands::shot(const std::string& file) {
    ask({"shot", file});
}

} // namespace flashwriter::kernel
