#include "RedirPeer.h"

#include <cstdlib>
#include <stdexcept>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace flashwriter::kernel {

namespace {

constexpr int kAnswerPatience = 20'000; // milliseconds; a guard against hanging, not a measure

std::string makeFolder() {
    std::string folder = "/tmp/redir-peer-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) {
        throw std::runtime_error("no folder for the socket");
    }
    return folder;
}

bool readable(int fd, int patience) {
    pollfd entry{.fd = fd, .events = POLLIN, .revents = 0};
    return poll(&entry, 1, patience) == 1;
}

} // namespace

RedirListener::RedirListener()
    : m_folder(makeFolder()), m_path(m_folder + "/usb"),
      m_socket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    m_path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(m_socket.get(), 2) != 0) {
        throw std::runtime_error("cannot listen on " + m_path);
    }
}

RedirListener::~RedirListener() {
    unlink(m_path.c_str());
    rmdir(m_folder.c_str());
}

board::Descriptor RedirListener::accept() const {
    if (!readable(m_socket.get(), kAnswerPatience)) {
        return {};
    }
    return board::Descriptor(
        accept4(m_socket.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

struct RedirPeer::Callbacks {
    static RedirPeer& peer(void* priv) {
        return *static_cast<RedirPeer*>(static_cast<RedirEnd*>(priv));
    }
    static void keep(void* priv, std::uint64_t id, std::uint8_t status) {
        peer(priv).statuses[id] = status;
    }
    static void keep(void* priv, std::uint64_t id, std::uint8_t status, std::uint8_t* data,
                     int length) {
        keep(priv, id, status);
        peer(priv).received[id].assign(data, data + length);
        usbredirparser_free_packet_data(peer(priv).parser(), data);
    }
};

RedirPeer::RedirPeer(board::Descriptor socket) : RedirEnd(std::move(socket)) {
    usbredirparser& to = *parser();
    to.hello_func = [](void*, usb_redir_hello_header*) {};
    to.device_connect_func = [](void* priv, usb_redir_device_connect_header* header) {
        RedirPeer& peer = Callbacks::peer(priv);
        peer.device = *header;
        peer.describedBefore = peer.interfaces.has_value() && peer.endpoints.has_value();
    };
    to.device_disconnect_func = [](void* priv) { Callbacks::peer(priv).gone = true; };
    to.interface_info_func = [](void* priv, usb_redir_interface_info_header* header) {
        Callbacks::peer(priv).interfaces = *header;
    };
    to.ep_info_func = [](void* priv, usb_redir_ep_info_header* header) {
        Callbacks::peer(priv).endpoints = *header;
    };
    to.configuration_status_func = [](void* priv, std::uint64_t id,
                                      usb_redir_configuration_status_header* header) {
        Callbacks::keep(priv, id, header->status);
    };
    to.alt_setting_status_func = [](void* priv, std::uint64_t id,
                                    usb_redir_alt_setting_status_header* header) {
        Callbacks::keep(priv, id, header->status);
    };
    to.interrupt_receiving_status_func = [](void* priv, std::uint64_t id,
                                            usb_redir_interrupt_receiving_status_header* header) {
        Callbacks::keep(priv, id, header->status);
    };
    to.iso_stream_status_func = [](void* priv, std::uint64_t id,
                                   usb_redir_iso_stream_status_header* header) {
        Callbacks::keep(priv, id, header->status);
    };
    to.control_packet_func = [](void* priv, std::uint64_t id,
                                usb_redir_control_packet_header* header, std::uint8_t* data,
                                int length) {
        Callbacks::keep(priv, id, header->status, data, length);
    };
    to.bulk_packet_func = [](void* priv, std::uint64_t id, usb_redir_bulk_packet_header* header,
                             std::uint8_t* data, int length) {
        Callbacks::keep(priv, id, header->status, data, length);
    };
    start(0);
}

bool RedirPeer::has(int capability) const {
    return usbredirparser_peer_has_cap(parser(), capability) != 0;
}

bool RedirPeer::await(const std::function<bool()>& condition) {
    const auto giveUp =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(kAnswerPatience);
    flush();
    while (!condition()) {
        if (!connected() || std::chrono::steady_clock::now() > giveUp) {
            return false;
        }
        readable(fd(), 100);
        receive();
        flush();
    }
    return true;
}

bool RedirPeer::awaitDevice() {
    return await([this] { return device.has_value(); });
}

bool RedirPeer::awaitAnswer(std::uint64_t id) {
    return await([this, id] { return statuses.count(id) != 0; });
}

bool RedirPeer::awaitEnd() {
    return await([this] { return !connected(); });
}

std::uint64_t RedirPeer::configure(std::uint8_t configuration) {
    usb_redir_set_configuration_header header{.configuration = configuration};
    usbredirparser_send_set_configuration(parser(), ++m_last, &header);
    return m_last;
}

std::uint64_t RedirPeer::set(std::uint8_t interface, std::uint8_t setting) {
    usb_redir_set_alt_setting_header header{.interface = interface, .alt = setting};
    usbredirparser_send_set_alt_setting(parser(), ++m_last, &header);
    return m_last;
}

std::uint64_t RedirPeer::listenForInterrupts(std::uint8_t endpoint) {
    usb_redir_start_interrupt_receiving_header header{.endpoint = endpoint};
    usbredirparser_send_start_interrupt_receiving(parser(), ++m_last, &header);
    return m_last;
}

std::uint64_t RedirPeer::startStream(std::uint8_t endpoint) {
    usb_redir_start_iso_stream_header header{.endpoint = endpoint, .pkts_per_urb = 8, .no_urbs = 2};
    usbredirparser_send_start_iso_stream(parser(), ++m_last, &header);
    return m_last;
}

std::uint64_t RedirPeer::tell(std::uint16_t kind, std::uint16_t value, Bytes data) {
    return control(0x00, kind, value, static_cast<std::uint16_t>(data.size()), data);
}

std::uint64_t RedirPeer::ask(std::uint16_t kind, std::uint16_t value, std::uint16_t length) {
    return control(0x80, kind, value, length, {});
}

std::uint64_t RedirPeer::control(std::uint8_t endpoint, std::uint16_t kind, std::uint16_t value,
                                 std::uint16_t length, Bytes data) {
    usb_redir_control_packet_header header{.endpoint = endpoint,
                                           .request = static_cast<std::uint8_t>(kind & 0xFFU),
                                           .requesttype = static_cast<std::uint8_t>(kind >> 8U),
                                           .status = 0,
                                           .value = value,
                                           .index = 0,
                                           .length = length};
    usbredirparser_send_control_packet(parser(), ++m_last, &header,
                                       data.empty() ? nullptr : data.data(),
                                       static_cast<int>(data.size()));
    return m_last;
}

std::uint64_t RedirPeer::askForBytes(std::uint8_t endpoint, std::uint16_t length) {
    usb_redir_bulk_packet_header header{
        .endpoint = endpoint, .status = 0, .length = length, .stream_id = 0, .length_high = 0};
    usbredirparser_send_bulk_packet(parser(), ++m_last, &header, nullptr, 0);
    return m_last;
}

std::uint64_t RedirPeer::handBytes(std::uint8_t endpoint, Bytes bytes) {
    usb_redir_bulk_packet_header header{.endpoint = endpoint,
                                        .status = 0,
                                        .length = static_cast<std::uint16_t>(bytes.size()),
                                        .stream_id = 0,
                                        .length_high = 0};
    usbredirparser_send_bulk_packet(parser(), ++m_last, &header, bytes.data(),
                                    static_cast<int>(bytes.size()));
    return m_last;
}

void RedirPeer::cancel(std::uint64_t id) {
    usbredirparser_send_cancel_data_packet(parser(), id);
}

void RedirPeer::sendRaw(const Bytes& bytes) {
    flush();
    send(fd(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

} // namespace flashwriter::kernel
