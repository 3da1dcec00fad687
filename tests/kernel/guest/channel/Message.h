// What a test and the runner in the emulated machine say to each other, over any stream of bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace flashwriter::kernel {

enum class MessageKind : std::uint32_t {
    // To the runner:
    start,  // the body is a Command
    input,  // bytes for the process's standard input; an empty body ends it
    signal, // the body is the signal's number
    // From the runner:
    ready,   // once, for no process: it listens
    started, // the body is the process's number in the machine
    output,  // bytes from standard output
    error,   // bytes from standard error
    ended,   // the body is the exit status, or 128 + n after death by signal n; a blank; and how
             // many milliseconds that took from the start, or from the last signal sent to it
};

struct Message {
    MessageKind kind = MessageKind::ready;
    std::uint32_t process = 0; // chosen by whoever starts it
    std::string body;
};

// Waits until all of it is written. Throws std::system_error when the stream has gone.
void sendMessage(int descriptor, const Message& message);

// Makes messages of bytes as they come.
class MessageReader {
public:
    void add(std::string_view bytes) { m_bytes += bytes; }
    std::optional<Message> take();

private:
    std::string m_bytes;
};

} // namespace flashwriter::kernel
