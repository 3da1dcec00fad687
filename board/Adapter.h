#pragma once

#include "board/BoardOptions.h"
#include "board/FaultInjector.h"
#include "board/HostPort.h"
#include "board/Target.h"
#include "board/Transcript.h"
#include "board/Wire.h"
#include "board/lines-preload/LineMessage.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <span>
#include <string>

namespace flashwriter::board {

// The simulated USB-serial adapter and the wire between it and the target: gives bytes their time,
// joins the host's line requests to the target's pins, lets the faults happen, and writes
// everything down. Like the target it is told the time and has no thread; it is not synchronised.
class Adapter {
public:
    // The port must outlive the adapter.
    Adapter(const BoardOptions& options, HostPort& port, BoardTime now = BoardTime::zero());

    // The host opened the port, which raises DTR and RTS as a serial driver does; the last
    // descriptor was closed, which drops them. Some drivers end a BREAK then, others let it be.
    enum class BreakAtClose : std::uint8_t { ends, stays };
    void portOpened(BoardTime now);
    void portClosed(BoardTime now, BreakAtClose breakAtClose = BreakAtClose::ends);

    LineAnswer lineRequest(const LineRequest& request, BoardTime now);

    // The host has handed these bytes to the adapter.
    void hostBytes(std::span<const std::uint8_t> bytes, BoardTime now);

    // The host has set another speed: what is in hand goes out at that one, but for the byte that
    // is on the wire. A port that does not tell lets bytes keep the speed at which they were
    // handed.
    void speedChanged(BoardTime now);

    // How many bytes may be handed over now. 0 while the adapter is stuck or has enough in hand.
    std::size_t room() const;

    // Whether everything handed over has passed the wire.
    bool idle() const { return m_inFlight.empty(); }

    // Lets everything happen that was due until now. nextDeadline() says when to call at the
    // latest.
    void advance(BoardTime now);
    std::optional<BoardTime> nextDeadline() const;

    const Target& target() const { return m_target; }
    const Transcript& transcript() const { return m_transcript; }
    std::size_t violations() const { return m_violations; }
    std::uint32_t closings() const { return m_closings; }
    std::uint32_t sessions() const { return m_sessions; }
    bool unplugged() const { return m_unplugged; }

private:
    struct InFlight {
        WireByte byte;
        std::uint32_t hostSpeed = 0;
    };
    struct Outgoing {
        Bytes bytes;
        BoardTime start{};
        bool delayed = false; // by a fault of the adapter: the wire is not meant
        bool isReply = false;
        std::uint32_t boardSpeed = 0;
        std::optional<std::size_t> unplugAfter;
        std::size_t record = 0; // in the transcript
    };

    void deliver(BoardTime now);
    bool deliverOne(const InFlight& flying);
    void collectEvents();
    void endSession();
    void queueReply(const TargetEvent& event, TranscriptRecord record);
    void queueChatter(const TargetEvent& event, TranscriptRecord record);
    void sendDue(BoardTime now);
    void hand(Outgoing& outgoing, BoardTime now);
    bool isHeard() const { return m_open || m_port.receivesWhileClosed(); }
    void dropOutgoing();
    bool collides(BoardTime now) const;

    void setLines(bool dtr, bool rts, bool breakHeld, BoardTime now);
    const Fault* lineFault(LineOperation operation);
    std::uint32_t lineBits() const;
    void unplug(BoardTime now, const std::string& why);
    void jamIfDue(BoardTime now);

    TranscriptRecord& note(TranscriptRecord::Kind kind, BoardTime now, std::string meaning);

    HostPort& m_port;
    FaultInjector m_faults;
    Target m_target;
    Wire m_wire;
    Wire m_chatterWire; // what the running program says does not wait for what the host says
    Transcript m_transcript;

    std::deque<InFlight> m_inFlight;
    std::multimap<BoardTime, Outgoing> m_outgoing; // by the moment of their last bit

    bool m_open = false;
    bool m_dtr = false;
    bool m_rts = false;
    bool m_break = false;
    bool m_stuck = false;
    bool m_unplugged = false;
    std::uint32_t m_closings = 0;
    bool m_programmed = false; // since the port was opened, the host got through mode entry
    std::uint32_t m_sessions = 0;
    std::uint32_t m_gets = 0;
    std::uint32_t m_sets = 0;
    std::uint32_t m_breaks = 0;
    std::size_t m_violations = 0;
};

} // namespace flashwriter::board
