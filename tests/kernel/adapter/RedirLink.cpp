#include "tests/kernel/adapter/RedirLink.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace flashwriter::kernel {

namespace {

// Where the protocol's tables hold an endpoint: first those from the host, then those to the host.
std::size_t tableIndex(std::uint8_t address) {
    return (address & 0x0FU) + (isToHost(address) ? 16U : 0U);
}

usb_redir_ep_info_header endpointTable(const DeviceDescription& description) {
    usb_redir_ep_info_header table{};
    std::fill(std::begin(table.type), std::end(table.type), std::uint8_t{usb_redir_type_invalid});
    for (const std::size_t control : {tableIndex(0x00), tableIndex(0x80)}) {
        table.type[control] = usb_redir_type_control;
        table.max_packet_size[control] = kBulkPacket;
    }
    for (const EndpointDescription& endpoint : description.endpoints()) {
        const std::size_t at = tableIndex(endpoint.address);
        table.type[at] = endpoint.type;
        table.interval[at] = endpoint.interval;
        table.interface[at] = endpoint.interface;
        table.max_packet_size[at] = endpoint.packetSize;
    }
    return table;
}

usb_redir_interface_info_header interfaceTable(const DeviceDescription& description) {
    usb_redir_interface_info_header table{};
    for (const InterfaceDescription& interface : description.interfaces()) {
        const std::size_t at = table.interface_count++;
        table.interface[at] = interface.number;
        table.interface_class[at] = interface.classCode;
        table.interface_subclass[at] = interface.subclass;
        table.interface_protocol[at] = interface.protocol;
    }
    return table;
}

} // namespace

RedirLink::RedirLink(board::Descriptor socket, UsbDevice& device)
    : RedirEnd(std::move(socket)), m_device(device) {
    setCallbacks(*parser());
    start(usbredirparser_fl_usb_host);
}

void RedirLink::sendDescription() {
    usb_redir_interface_info_header interfaces = interfaceTable(m_device.description());
    usb_redir_ep_info_header endpoints = endpointTable(m_device.description());
    usbredirparser_send_interface_info(parser(), &interfaces);
    usbredirparser_send_ep_info(parser(), &endpoints);
}

// The device has class, subclass and protocol of its own at 4 to 6.
void RedirLink::announce() {
    const DeviceDescription& description = m_device.description();
    sendDescription();
    usb_redir_device_connect_header connect{.speed = usb_redir_speed_full,
                                            .device_class = description.device.at(4),
                                            .device_subclass = description.device.at(5),
                                            .device_protocol = description.device.at(6),
                                            .vendor_id = description.vendor(),
                                            .product_id = description.product(),
                                            .device_version_bcd = description.version()};
    usbredirparser_send_device_connect(parser(), &connect);
    m_announced = true;
}

void RedirLink::answer() {
    for (FinishedTransfer& transfer : m_device.takeFinished()) {
        usb_redir_bulk_packet_header header{
            .endpoint = transfer.endpoint,
            .status = static_cast<std::uint8_t>(transfer.status),
            .length = static_cast<std::uint16_t>(transfer.length & 0xFFFFU),
            .stream_id = 0,
            .length_high = static_cast<std::uint16_t>(transfer.length >> 16U)};
        std::uint8_t* const data = transfer.data.empty() ? nullptr : transfer.data.data();
        usbredirparser_send_bulk_packet(parser(), transfer.id, &header, data,
                                        static_cast<int>(transfer.data.size()));
    }
    flush();
}

void RedirLink::disconnect() {
    if (connected() && m_announced) {
        usbredirparser_send_device_disconnect(parser());
        flush();
    }
    close();
}

} // namespace flashwriter::kernel
