#include "tests/kernel/adapter/RedirEnd.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <new>
#include <utility>

#include <sys/socket.h>

namespace flashwriter::kernel {

namespace {

void log(void*, int level, const char* message) {
    if (level <= usbredirparser_warning) {
        std::fprintf(stderr, "USB redirection: %s\n", message);
    }
}

bool wouldBlock() {
    return errno == EAGAIN || errno == EINTR;
}

} // namespace

RedirEnd::RedirEnd(board::Descriptor socket)
    : m_socket(std::move(socket)), m_parser(usbredirparser_create(), usbredirparser_destroy) {
    if (!m_parser) {
        throw std::bad_alloc();
    }
    m_parser->priv = this;
    m_parser->log_func = log;
    m_parser->read_func = read;
    m_parser->write_func = write;
}

void RedirEnd::start(int flags) {
    std::array<std::uint32_t, USB_REDIR_CAPS_SIZE> capabilities{};
    for (const int capability :
         {usb_redir_cap_connect_device_version, usb_redir_cap_device_disconnect_ack,
          usb_redir_cap_ep_info_max_packet_size, usb_redir_cap_64bits_ids,
          usb_redir_cap_32bits_bulk_length}) {
        usbredirparser_caps_set_cap(capabilities.data(), capability);
    }
    usbredirparser_init(parser(), "flash-writer tests", capabilities.data(), USB_REDIR_CAPS_SIZE,
                        flags);
}

bool RedirEnd::wantsToWrite() const {
    return m_connected && usbredirparser_has_data_to_write(parser()) > 0;
}

// The parser skips a malformed message; what follows it is read the next time.
void RedirEnd::receive() {
    if (m_connected) {
        usbredirparser_do_read(parser());
    }
}

void RedirEnd::flush() {
    if (wantsToWrite()) {
        usbredirparser_do_write(parser());
    }
}

void RedirEnd::close() {
    m_connected = false;
    m_socket.reset();
}

int RedirEnd::read(void* self, std::uint8_t* data, int count) {
    auto* const end = static_cast<RedirEnd*>(self);
    const ssize_t got = recv(end->fd(), data, static_cast<std::size_t>(count), 0);
    if (got > 0) {
        return static_cast<int>(got);
    }
    if (got < 0 && wouldBlock()) {
        return 0;
    }
    end->m_connected = false;
    return -1;
}

int RedirEnd::write(void* self, std::uint8_t* data, int count) {
    auto* const end = static_cast<RedirEnd*>(self);
    const ssize_t sent = send(end->fd(), data, static_cast<std::size_t>(count), MSG_NOSIGNAL);
    if (sent >= 0) {
        return static_cast<int>(sent);
    }
    if (wouldBlock()) {
        return 0;
    }
    end->m_connected = false;
    return -1;
}

} // namespace flashwriter::kernel
