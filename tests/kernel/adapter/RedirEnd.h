#pragma once

#include "board/Descriptor.h"

#include <cstdint>
#include <memory>

#include <usbredirparser.h>

namespace flashwriter::kernel {

// One end of a connection over which a USB device is redirected: the parser of the protocol and the
// socket that it reads and writes. The callbacks of the messages are set by whoever derives from
// it, before start(), and find it in self().
class RedirEnd {
public:
    RedirEnd(const RedirEnd&) = delete;
    RedirEnd& operator=(const RedirEnd&) = delete;

    int fd() const { return m_socket.get(); }
    bool connected() const { return m_connected; }

    // Whether something waits for room in the socket.
    bool wantsToWrite() const;

    // Handles what has come, through the callbacks. Never waits.
    void receive();

    // Sends what was queued, as much of it as the socket takes. Never waits.
    void flush();

protected:
    // The socket must be non-blocking.
    explicit RedirEnd(board::Descriptor socket);
    ~RedirEnd() = default;

    // Queues the greeting. Flags: of usbredirparser_init.
    void start(int flags);

    void close();

    usbredirparser* parser() const { return m_parser.get(); }

private:
    static int read(void* self, std::uint8_t* data, int count);
    static int write(void* self, std::uint8_t* data, int count);

    board::Descriptor m_socket;
    bool m_connected = true;
    std::unique_ptr<usbredirparser, void (*)(usbredirparser*)> m_parser;
};

} // namespace flashwriter::kernel
