#include "tests/kernel/adapter/UsbDevice.h"

#include "tests/kernel/adapter/StandardRequests.h"

#include <algorithm>
#include <utility>

namespace flashwriter::kernel {

UsbDevice::UsbDevice(AdapterKind kind, const board::BoardOptions& options, BoardTime now)
    : m_description(describe(kind)), m_lines(m_board), m_chip(makeChip(kind, m_lines)),
      m_board(options, *this, now) {}

std::optional<Bytes> UsbDevice::control(const SetupPacket& setup,
                                        std::span<const std::uint8_t> data, BoardTime now) {
    const std::uint32_t speed = hostSpeed();
    std::optional<Bytes> answer = isStandard(setup) ? standardRequest(m_description, setup)
                                                    : m_chip->request(setup, data, now);
    if (hostSpeed() != speed) {
        m_board.speedChanged(now);
    }
    if (answer) {
        answer->resize(std::min<std::size_t>(answer->size(), setup.length));
    }
    return answer;
}

bool UsbDevice::configure(std::uint8_t configuration) {
    if (configuration > 1) {
        return false;
    }
    m_pipes.cancelAll();
    m_configuration = configuration;
    return true;
}

bool UsbDevice::hasSetting(std::uint8_t interface, std::uint8_t setting) const {
    return setting == 0 && interface < m_description.interfaces().size();
}

bool UsbDevice::hasEndpoint(std::uint8_t address, std::uint8_t type) const {
    const auto endpoints = m_description.endpoints();
    return std::any_of(endpoints.begin(), endpoints.end(),
                       [&](const EndpointDescription& endpoint) {
                           return endpoint.address == address && endpoint.type == type;
                       });
}

void UsbDevice::askForBytes(std::uint64_t id, std::uint8_t endpoint, std::size_t length,
                            BoardTime now) {
    const bool fitting = isToHost(endpoint) && length >= kBulkPacket; // a packet may come in full
    if (!fitting || !hasEndpoint(endpoint, kBulk)) {
        refuse(id, endpoint);
        return;
    }
    m_pipes.askForBytes(id, endpoint, length);
    advance(now);
}

void UsbDevice::handBytes(std::uint64_t id, std::uint8_t endpoint, Bytes bytes, BoardTime now) {
    if (isToHost(endpoint) || !hasEndpoint(endpoint, kBulk)) {
        refuse(id, endpoint);
        return;
    }
    m_pipes.handBytes(id, endpoint, std::move(bytes));
    advance(now);
}

void UsbDevice::refuse(std::uint64_t id, std::uint8_t endpoint) {
    m_refused.push_back(
        {.id = id, .endpoint = endpoint, .status = UsbStatus::invalid, .length = 0, .data = {}});
}

FinishedTransfers UsbDevice::takeFinished() {
    FinishedTransfers finished = m_pipes.takeFinished();
    finished.insert(finished.end(), m_refused.begin(), m_refused.end());
    m_refused.clear();
    return finished;
}

void UsbDevice::reset() {
    m_pipes.cancelAll();
    m_configuration = 0;
}

void UsbDevice::advance(BoardTime now) {
    m_board.advance(now);
    m_pipes.takeFromHost(m_board, now);
    m_pipes.giveToHost(m_chip->queue(), now);
    if (m_board.target().hostFramesBegun() == 0) {
        m_takenBeforeFrames = m_chip->queue().taken();
    }
}

std::optional<BoardTime> UsbDevice::nextDeadline() const {
    const std::optional<BoardTime> board = m_board.nextDeadline();
    const std::optional<BoardTime> queue =
        m_pipes.asked() ? m_chip->queue().nextDeadline() : std::nullopt;
    return board && queue ? std::min(*board, *queue) : (board ? board : queue);
}

std::size_t UsbDevice::send(std::span<const std::uint8_t> bytes) {
    return m_chip->queue().push(bytes);
}

} // namespace flashwriter::kernel
