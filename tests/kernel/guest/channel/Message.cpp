#include "tests/kernel/guest/channel/Message.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace flashwriter::kernel {

namespace {

// Kind, process, length of the body; both sides run on the same kind of processor.
using Header = std::array<std::uint32_t, 3>;

} // namespace

void sendMessage(int descriptor, const Message& message) {
    const Header header{static_cast<std::uint32_t>(message.kind), message.process,
                        static_cast<std::uint32_t>(message.body.size())};
    std::string bytes(sizeof(Header), '\0');
    std::memcpy(bytes.data(), header.data(), sizeof(Header));
    bytes += message.body;
    std::string_view rest = bytes;
    while (!rest.empty()) {
        const ssize_t written = ::write(descriptor, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "the channel");
        }
    }
}

std::optional<Message> MessageReader::take() {
    Header header{};
    if (m_bytes.size() < sizeof(Header)) {
        return std::nullopt;
    }
    std::memcpy(header.data(), m_bytes.data(), sizeof(Header));
    const std::size_t end = sizeof(Header) + header[2];
    if (m_bytes.size() < end) {
        return std::nullopt;
    }
    Message message{.kind = static_cast<MessageKind>(header[0]),
                    .process = header[1],
                    .body = m_bytes.substr(sizeof(Header), header[2])};
    m_bytes.erase(0, end);
    return message;
}

} // namespace flashwriter::kernel
