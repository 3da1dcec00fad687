#include "tests/kernel/adapter/BulkPipes.h"

#include <algorithm>
#include <span>
#include <utility>

namespace flashwriter::kernel {

void BulkPipes::askForBytes(std::uint64_t id, std::uint8_t endpoint, std::size_t length) {
    m_toHost.push_back({.id = id, .endpoint = endpoint, .length = length, .bytes = {}});
}

void BulkPipes::handBytes(std::uint64_t id, std::uint8_t endpoint, Bytes bytes) {
    m_fromHost.push_back({.id = id, .endpoint = endpoint, .length = 0, .bytes = std::move(bytes)});
}

void BulkPipes::cancel(std::uint64_t id) {
    for (auto* const held : {&m_toHost, &m_fromHost}) {
        const auto found = std::find_if(held->begin(), held->end(),
                                        [id](const Held& entry) { return entry.id == id; });
        if (found != held->end()) {
            finishCancelled(*found);
            held->erase(found);
        }
    }
}

void BulkPipes::cancelAll() {
    for (auto* const held : {&m_toHost, &m_fromHost}) {
        std::for_each(held->begin(), held->end(),
                      [this](const Held& entry) { finishCancelled(entry); });
        held->clear();
    }
}

void BulkPipes::finishCancelled(const Held& held) {
    m_finished.push_back({.id = held.id,
                          .endpoint = held.endpoint,
                          .status = UsbStatus::cancelled,
                          .length = isToHost(held.endpoint) ? 0 : held.length,
                          .data = {}});
}

void BulkPipes::takeFromHost(board::Adapter& adapter, BoardTime now) {
    while (!m_fromHost.empty() && moveFront(adapter, now)) {
        const Held& done = m_fromHost.front();
        m_finished.push_back({.id = done.id,
                              .endpoint = done.endpoint,
                              .status = UsbStatus::success,
                              .length = done.length,
                              .data = {}});
        m_fromHost.pop_front();
    }
}

// True when all of the oldest transfer has been taken.
bool BulkPipes::moveFront(board::Adapter& adapter, BoardTime now) {
    Held& front = m_fromHost.front();
    while (front.length < front.bytes.size()) {
        const auto rest = std::span<const std::uint8_t>(front.bytes).subspan(front.length);
        std::size_t count = std::min(rest.size(), adapter.room());
        if (count > 0) {
            adapter.hostBytes(rest.first(count), now);
        } else {
            count = std::min(rest.size(), m_swallows);
            m_swallows -= count;
        }
        if (count == 0) {
            return false;
        }
        front.length += count;
    }
    return true;
}

void BulkPipes::giveToHost(ReceiveQueue& queue, BoardTime now) {
    while (!m_toHost.empty()) {
        const Held& front = m_toHost.front();
        std::optional<Bytes> bytes = queue.take(front.length, now);
        if (!bytes) {
            return;
        }
        m_finished.push_back({.id = front.id,
                              .endpoint = front.endpoint,
                              .status = UsbStatus::success,
                              .length = bytes->size(),
                              .data = std::move(*bytes)});
        m_toHost.pop_front();
    }
}

FinishedTransfers BulkPipes::takeFinished() {
    return std::exchange(m_finished, {});
}

} // namespace flashwriter::kernel
