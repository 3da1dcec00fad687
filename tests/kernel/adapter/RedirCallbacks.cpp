// What the parser calls for each message of the host.

#include "tests/kernel/adapter/RedirLink.h"

#include "board/BoardLoop.h"

#include <memory>
#include <span>

namespace flashwriter::kernel {

namespace {

using board::clockNow;

constexpr std::uint8_t kRefused = static_cast<std::uint8_t>(UsbStatus::stalled);
constexpr std::uint8_t kNoSuchThing = static_cast<std::uint8_t>(UsbStatus::invalid);

std::uint8_t statusFor(bool done, std::uint8_t otherwise) {
    return done ? static_cast<std::uint8_t>(UsbStatus::success) : otherwise;
}

} // namespace

struct RedirLink::Callbacks {
    static RedirLink& link(void* priv) {
        return *static_cast<RedirLink*>(static_cast<RedirEnd*>(priv));
    }
    static UsbDevice& device(void* priv) { return link(priv).m_device; }
    static usbredirparser* parser(void* priv) { return link(priv).parser(); }

    // Data that comes along belongs to the callback.
    static Bytes take(void* priv, std::uint8_t* data, int length) {
        Bytes bytes(data, data + length);
        usbredirparser_free_packet_data(parser(priv), data);
        return bytes;
    }

    static void hello(void* priv, usb_redir_hello_header*) { link(priv).announce(); }
    static void reset(void* priv) { device(priv).reset(); }
    static void cancel(void* priv, std::uint64_t id) { device(priv).cancel(id); }
    static void ignore(void*) {}

    static void setConfiguration(void* priv, std::uint64_t id,
                                 usb_redir_set_configuration_header* header) {
        const bool done = device(priv).configure(header->configuration);
        link(priv).sendDescription();
        tellConfiguration(priv, id, statusFor(done, kRefused));
    }
    static void getConfiguration(void* priv, std::uint64_t id) {
        tellConfiguration(priv, id, statusFor(true, kRefused));
    }
    static void tellConfiguration(void* priv, std::uint64_t id, std::uint8_t status) {
        usb_redir_configuration_status_header answer{.status = status,
                                                     .configuration = device(priv).configuration()};
        usbredirparser_send_configuration_status(parser(priv), id, &answer);
    }

    static void setSetting(void* priv, std::uint64_t id, usb_redir_set_alt_setting_header* header) {
        tellSetting(priv, id, header->interface, header->alt);
    }
    static void getSetting(void* priv, std::uint64_t id, usb_redir_get_alt_setting_header* header) {
        tellSetting(priv, id, header->interface, 0);
    }
    static void tellSetting(void* priv, std::uint64_t id, std::uint8_t interface,
                            std::uint8_t setting) {
        const bool there = device(priv).hasSetting(interface, setting);
        usb_redir_alt_setting_status_header answer{
            .status = statusFor(there, kRefused), .interface = interface, .alt = setting};
        usbredirparser_send_alt_setting_status(parser(priv), id, &answer);
    }

    static void startInterrupts(void* priv, std::uint64_t id,
                                usb_redir_start_interrupt_receiving_header* header) {
        tellInterrupts(priv, id, header->endpoint);
    }
    static void stopInterrupts(void* priv, std::uint64_t id,
                               usb_redir_stop_interrupt_receiving_header* header) {
        tellInterrupts(priv, id, header->endpoint);
    }
    static void tellInterrupts(void* priv, std::uint64_t id, std::uint8_t endpoint) {
        const bool there = device(priv).hasEndpoint(endpoint, kInterrupt);
        usb_redir_interrupt_receiving_status_header answer{.status = statusFor(there, kNoSuchThing),
                                                           .endpoint = endpoint};
        usbredirparser_send_interrupt_receiving_status(parser(priv), id, &answer);
    }

    static void control(void* priv, std::uint64_t id, usb_redir_control_packet_header* header,
                        std::uint8_t* data, int length) {
        const Bytes sent = take(priv, data, length);
        const SetupPacket setup{.requestType = header->requesttype,
                                .request = header->request,
                                .value = header->value,
                                .index = header->index,
                                .length = header->length};
        std::optional<Bytes> got = device(priv).control(setup, sent, clockNow());
        usb_redir_control_packet_header answer = *header;
        answer.status = statusFor(got.has_value(), kRefused);
        const bool toHost = isToHost(header->endpoint);
        if (!got || toHost) {
            answer.length = static_cast<std::uint16_t>(got ? got->size() : 0);
        }
        const bool hasData = toHost && got && !got->empty();
        usbredirparser_send_control_packet(parser(priv), id, &answer,
                                           hasData ? got->data() : nullptr,
                                           hasData ? answer.length : 0);
    }

    static void bulk(void* priv, std::uint64_t id, usb_redir_bulk_packet_header* header,
                     std::uint8_t* data, int length) {
        Bytes bytes = take(priv, data, length);
        if (isToHost(header->endpoint)) {
            const std::size_t wanted = header->length + header->length_high * std::size_t{0x10000};
            device(priv).askForBytes(id, header->endpoint, wanted, clockNow());
        } else {
            device(priv).handBytes(id, header->endpoint, std::move(bytes), clockNow());
        }
    }

    // There are no endpoints for what follows.
    static void startStream(void* priv, std::uint64_t id,
                            usb_redir_start_iso_stream_header* header) {
        tellStream(priv, id, header->endpoint);
    }
    static void stopStream(void* priv, std::uint64_t id, usb_redir_stop_iso_stream_header* header) {
        tellStream(priv, id, header->endpoint);
    }
    static void tellStream(void* priv, std::uint64_t id, std::uint8_t endpoint) {
        usb_redir_iso_stream_status_header answer{.status = kNoSuchThing, .endpoint = endpoint};
        usbredirparser_send_iso_stream_status(parser(priv), id, &answer);
    }
    static void stream(void* priv, std::uint64_t id, usb_redir_iso_packet_header* header,
                       std::uint8_t* data, int length) {
        take(priv, data, length);
        usb_redir_iso_packet_header answer{
            .endpoint = header->endpoint, .status = kNoSuchThing, .length = 0};
        usbredirparser_send_iso_packet(parser(priv), id, &answer, nullptr, 0);
    }
    static void interrupt(void* priv, std::uint64_t id, usb_redir_interrupt_packet_header* header,
                          std::uint8_t* data, int length) {
        take(priv, data, length);
        usb_redir_interrupt_packet_header answer{
            .endpoint = header->endpoint, .status = kNoSuchThing, .length = 0};
        usbredirparser_send_interrupt_packet(parser(priv), id, &answer, nullptr, 0);
    }
};

// Those that the parser calls for what both ends have agreed not to use are left out.
void RedirLink::setCallbacks(usbredirparser& parser) {
    parser.hello_func = Callbacks::hello;
    parser.reset_func = Callbacks::reset;
    parser.set_configuration_func = Callbacks::setConfiguration;
    parser.get_configuration_func = Callbacks::getConfiguration;
    parser.set_alt_setting_func = Callbacks::setSetting;
    parser.get_alt_setting_func = Callbacks::getSetting;
    parser.start_interrupt_receiving_func = Callbacks::startInterrupts;
    parser.stop_interrupt_receiving_func = Callbacks::stopInterrupts;
    parser.start_iso_stream_func = Callbacks::startStream;
    parser.stop_iso_stream_func = Callbacks::stopStream;
    parser.cancel_data_packet_func = Callbacks::cancel;
    parser.control_packet_func = Callbacks::control;
    parser.bulk_packet_func = Callbacks::bulk;
    parser.iso_packet_func = Callbacks::stream;
    parser.interrupt_packet_func = Callbacks::interrupt;
    parser.device_disconnect_ack_func = Callbacks::ignore;
}

} // namespace flashwriter::kernel
