#pragma once

#include "tests/kernel/adapter/RedirEnd.h"
#include "tests/kernel/adapter/UsbTypes.h"

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace flashwriter::kernel {

// Where a host listens for devices, for as long as this lives.
class RedirListener {
public:
    RedirListener();
    ~RedirListener();
    RedirListener(const RedirListener&) = delete;
    RedirListener& operator=(const RedirListener&) = delete;

    const std::string& path() const { return m_path; }

    // Waits for a device; an invalid descriptor when none comes.
    board::Descriptor accept() const;

private:
    std::string m_folder;
    std::string m_path;
    board::Descriptor m_socket;
};

// The host's side of a connection: makes the transfers that a test asks for, and keeps what comes.
class RedirPeer : public RedirEnd {
public:
    explicit RedirPeer(board::Descriptor socket);

    // What has come so far.
    std::optional<usb_redir_device_connect_header> device;
    bool describedBefore = false; // both tables below had come when the device did
    std::optional<usb_redir_interface_info_header> interfaces;
    std::optional<usb_redir_ep_info_header> endpoints;
    bool gone = false;
    std::map<std::uint64_t, std::uint8_t> statuses; // of whatever had that number
    std::map<std::uint64_t, Bytes> received;

    // Whether the device's side has told of this capability; to be asked once there is a device.
    bool has(int capability) const;

    // Handles what comes until the condition holds; false when it does not for long.
    bool await(const std::function<bool()>& condition);
    bool awaitDevice();
    bool awaitAnswer(std::uint64_t id);
    bool awaitEnd();

    // Each begins something with a number of its own, and gives it.
    std::uint64_t configure(std::uint8_t configuration);
    std::uint64_t set(std::uint8_t interface, std::uint8_t setting);
    std::uint64_t listenForInterrupts(std::uint8_t endpoint);
    std::uint64_t startStream(std::uint8_t endpoint);
    std::uint64_t tell(std::uint16_t kind, std::uint16_t value, Bytes data = {});
    std::uint64_t ask(std::uint16_t kind, std::uint16_t value, std::uint16_t length);
    std::uint64_t askForBytes(std::uint8_t endpoint, std::uint16_t length);
    std::uint64_t handBytes(std::uint8_t endpoint, Bytes bytes);
    void cancel(std::uint64_t id);

    // Sends bytes that need not be a message.
    void sendRaw(const Bytes& bytes);

private:
    struct Callbacks; // of the parser

    std::uint64_t control(std::uint8_t endpoint, std::uint16_t kind, std::uint16_t value,
                          std::uint16_t length, Bytes data);

    std::uint64_t m_last = 0;
};

} // namespace flashwriter::kernel
