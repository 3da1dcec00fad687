#pragma once

#include "board/FlashMemory.h"
#include "board/FrameReceiver.h"
#include "board/TargetEvent.h"
#include "board/TargetOptions.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace flashwriter::board {

// The simulated microcontroller: what goes in are line levels, bytes and the time; what comes out
// are events, the replies among them. It has no thread, no clock and no port of its own, and is not
// synchronised. The moments handed in must not go backwards.
class Target {
public:
    // Throws std::invalid_argument for a flash that no board has. DTR and BREAK are off at first,
    // so a board with the normal DTR sense runs its program from the start.
    explicit Target(const TargetOptions& options, BoardTime now = BoardTime::zero());

    // The lines are now at these levels.
    void setLines(bool dtr, bool breakHeld, BoardTime now);

    // A byte of the host has passed the wire.
    void receive(const WireByte& byte);

    // Nothing came: lets the running program speak. nextDeadline() says when to call at the latest.
    void advance(BoardTime now);
    std::optional<BoardTime> nextDeadline() const;

    // Hands over what happened since the last call.
    std::vector<TargetEvent> takeEvents();

    TargetMode mode() const { return m_mode; }
    std::uint32_t bitsPerSecond() const;
    const FlashMemory& flash() const { return m_flash; }

    // How many host frames have begun, and how many bytes of the last one have come.
    std::uint32_t hostFramesBegun() const { return m_framesBegun; }
    std::size_t bytesOfLastFrame() const { return m_bytesOfLastFrame; }

private:
    // A programming transfer under way.
    struct Transfer {
        std::uint32_t next = 0; // address of the next data frame
        std::uint32_t last = 0; // last address of the range, inclusive
        std::uint32_t first = 0;
        bool clean = true; // every cell took its byte
        Bytes received;
    };

    void enterMode(TargetMode mode, BoardTime now, const std::string& why);
    void release(bool breakHeld, BoardTime now);
    bool listens() const;

    void hear(const WireByte& byte);
    void hearInFrame(const WireByte& byte);
    bool isPulse(const WireByte& byte) const;
    void noteUnheard(const WireByte& byte, const std::string& why, bool violation);
    void dropPartial(const std::string& why);
    void flushUnheard();

    void onFrame(const HostFrame& frame);
    void onCommandFrame(const HostFrame& frame);
    void onEntryFrame(const HostFrame& frame);
    void onDataFrame(const HostFrame& frame);

    // The commands; each has been checked for its length. In TargetCommands.cpp.
    void dispatch(const HostFrame& frame);
    void doBaudRateSet(const HostFrame& frame);
    void doReset(const HostFrame& frame);
    void doErase(const HostFrame& frame);
    void doBlankCheck(const HostFrame& frame);
    void doProgramming(const HostFrame& frame);
    void doChecksum(const HostFrame& frame);
    void doSecurityGet(const HostFrame& frame);
    void doSignature(const HostFrame& frame);
    void takeData(const HostFrame& frame, bool last);

    void accept(const HostFrame& frame, const std::string& details);
    void refuse(const HostFrame& frame, Status status, const std::string& why);
    void ignore(const HostFrame& frame, const std::string& why, bool violation);
    void reply(BoardTime begin, std::span<const std::uint8_t> data, const std::string& meaning,
               BoardTime pause = BoardTime::zero());
    void replyStatus(const HostFrame& frame, Status status, BoardTime work);
    void replyDataStatus(BoardTime begin, Status status, Status second);

    TargetOptions m_options;
    FlashMemory m_flash;
    FrameReceiver m_receiver;
    Transfer m_transfer;
    std::vector<TargetEvent> m_events;
    std::optional<TargetEvent> m_unheard; // bytes of one kind, gathered to one event

    TargetMode m_mode = TargetMode::running;
    bool m_inReset = false;
    std::uint32_t m_speed = kSpeeds[0]; // bits per second in programming mode
    std::uint32_t m_modeEntries = 0;
    std::uint32_t m_framesBegun = 0;
    std::size_t m_bytesOfLastFrame = 0;
    BoardTime m_released{};            // when reset ended
    BoardTime m_opens{};               // Baud Rate Set is heard from this moment on
    std::optional<BoardTime> m_closes; // and no more after this one
    BoardTime m_busyUntil{};           // the target works or answers
    std::optional<BoardTime> m_nextChatter;
};

} // namespace flashwriter::board
