#include "tests/fuzz/driver/SuccessProof.h"

#include "tests/fuzz/driver/GoodAnswer.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <span>

namespace flashwriter::fuzz {

namespace {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

constexpr std::size_t BLOCK = 1024;
constexpr std::size_t FRAME = 256;
constexpr std::uint8_t ACCEPTED = 0x06;
constexpr std::uint8_t DIRTY = 0x1B;

Bytes closedFrame(Bytes frame, std::uint8_t end) {
    const unsigned sum = std::accumulate(frame.begin() + 1, frame.end(), 0U);
    frame.push_back(static_cast<std::uint8_t>(0U - sum));
    frame.push_back(end);
    return frame;
}

Bytes commandFrame(const Bytes& parameters) {
    Bytes frame{0x01, static_cast<std::uint8_t>(parameters.size())};
    frame.insert(frame.end(), parameters.begin(), parameters.end());
    return closedFrame(frame, 0x03);
}

Bytes withAddresses(std::uint8_t code, std::initializer_list<std::size_t> addresses) {
    Bytes parameters{code};
    for (const std::size_t address : addresses) {
        for (int shift = 0; shift < 24; shift += 8) {
            parameters.push_back(static_cast<std::uint8_t>(address >> shift));
        }
    }
    return parameters;
}

// The answers, read as the program may at best: frame for frame from one place on.
class Answers {
public:
    explicit Answers(View bytes) : m_rest(bytes) {}

    // The data of the next frame; nothing when there is no whole and sound one.
    std::optional<Bytes> next() {
        if (m_rest.size() < 2 || m_rest[0] != 0x02) {
            return std::nullopt;
        }
        const std::size_t length = m_rest[1];
        if (m_rest.size() < length + 4 || m_rest[length + 3] != 0x03) {
            return std::nullopt;
        }
        const auto summed = m_rest.subspan(1, length + 2);
        if (std::accumulate(summed.begin(), summed.end(), 0U) % 256 != 0) {
            return std::nullopt;
        }
        const auto data = m_rest.subspan(2, length);
        Bytes bytes(data.begin(), data.end());
        m_rest = m_rest.subspan(length + 4);
        return bytes;
    }
    bool accepted() { return next() == Bytes{ACCEPTED}; }
    bool dataAccepted() {
        const auto data = next();
        return data == Bytes{ACCEPTED} || data == Bytes{ACCEPTED, ACCEPTED};
    }

private:
    View m_rest;
};

// Goes through the answers, and through what has to have been sent for them.
class Proof {
public:
    Proof(View answers, const FuzzedImage& image, std::uint8_t baudRate)
        : m_answers(answers), m_flash(wholeBlocks(image)), m_baudRate(baudRate) {}

    // What has to have been sent, in order; nothing when the answers do not allow it.
    std::optional<std::vector<Bytes>> frames() {
        if (!enter() || !erase() || !program() || !endAndCompare()) {
            return std::nullopt;
        }
        return m_frames;
    }

private:
    bool enter() {
        m_frames.push_back(commandFrame({0x9A, m_baudRate, 0x21}));
        const auto speed = m_answers.next();
        if (!speed || (speed->size() != 1 && speed->size() != 3) || speed->front() != ACCEPTED) {
            return false;
        }
        m_frames.push_back(commandFrame({0x00}));
        m_frames.push_back(commandFrame({0xC0}));
        if (!m_answers.accepted() || !m_answers.accepted()) {
            return false;
        }
        const auto signature = m_answers.next();
        // Its code end address is in bytes 13 to 15, low byte first.
        return signature && signature->size() == 22 &&
               ((*signature)[13] + (*signature)[14] * 0x100U + (*signature)[15] * 0x10000U) >=
                   m_flash.size() - BLOCK;
    }
    bool erase() {
        for (std::size_t block = 0; block < m_flash.size(); block += BLOCK) {
            Bytes check = withAddresses(0x32, {block, block + BLOCK - 1});
            check.push_back(0);
            m_frames.push_back(commandFrame(check));
            const auto state = m_answers.next();
            if (state == Bytes{DIRTY}) {
                m_frames.push_back(commandFrame(withAddresses(0x22, {block})));
                if (!m_answers.accepted()) {
                    return false;
                }
            } else if (state != Bytes{ACCEPTED}) {
                return false;
            }
        }
        return true;
    }
    bool program() {
        m_frames.push_back(commandFrame(withAddresses(0x40, {0, m_flash.size() - 1})));
        bool allowed = m_answers.accepted();
        for (std::size_t at = 0; at < m_flash.size(); at += FRAME) {
            Bytes frame{0x02, 0x00};
            frame.insert(frame.end(), m_flash.begin() + static_cast<std::ptrdiff_t>(at),
                         m_flash.begin() + static_cast<std::ptrdiff_t>(at + FRAME));
            const bool last = at + FRAME == m_flash.size();
            m_frames.push_back(closedFrame(frame, last ? 0x03 : 0x17));
            allowed = allowed && m_answers.dataAccepted();
        }
        return allowed;
    }
    // The last frame is sent again while no verify is told, and accepted again each time.
    bool endAndCompare() {
        m_frames.push_back(commandFrame(withAddresses(0xB0, {0, m_flash.size() - 1})));
        const std::uint16_t sum = flashChecksum(m_flash);
        const Bytes expected{static_cast<std::uint8_t>(sum & 0xFF),
                             static_cast<std::uint8_t>(sum >> 8)};
        for (int attempt = 0; attempt < 5; ++attempt) {
            Answers rest = m_answers;
            if (rest.accepted() && rest.accepted() && rest.next() == expected) {
                return true;
            }
            if (!m_answers.dataAccepted()) {
                return false;
            }
        }
        return false;
    }

    Answers m_answers;
    Bytes m_flash;
    std::uint8_t m_baudRate;
    std::vector<Bytes> m_frames;
};

// Frames of more than a byte, repeated ones once.
std::vector<Bytes> withoutRepeats(std::vector<Bytes> frames) {
    std::erase_if(frames, [](const Bytes& frame) { return frame.size() == 1; });
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

} // namespace

bool provesSuccess(const ScriptedPort& port, const FuzzedImage& image, std::uint8_t baudRate) {
    const View received = port.received();
    const std::vector<Bytes> sent = withoutRepeats(port.written());
    return std::ranges::any_of(port.discards(), [&](std::size_t start) {
        auto needed = Proof(received.subspan(start), image, baudRate).frames();
        return needed && withoutRepeats(*needed) == sent;
    });
}

} // namespace flashwriter::fuzz
