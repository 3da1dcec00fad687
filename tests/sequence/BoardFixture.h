#pragma once

#include "board/VirtualBoard.h"
#include "sequence/context/DiagnosticLog.h"
#include "tests/sequence/DriverRun.h"
#include "tests/sequence/RunAgreement.h"
#include "tests/support/ImageFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace flashwriter {

using Bytes = std::vector<std::uint8_t>;

inline std::size_t entriesOf(const char* directory) {
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

// A driver against a virtual board that answers as fast as it can.
class BoardFixture : public ::testing::Test {
protected:
    BoardFixture() {
        m_options.pace = false;
        m_options.target.flash.codeKib = 16;
        setDiagnosticSink([](const char*) {});
    }
    ~BoardFixture() override { setDiagnosticSink(nullptr); }

    // Powers the board up, writes the file, takes the board away.
    RunRecord write(const std::string& file, std::uint8_t baudRate = 0) {
        m_board.start(m_options);
        m_before = m_board.codeFlash();
        m_dataBefore = m_board.dataFlash();
        RunRecord record = runDriver(m_board.portPath(), baudRate, file);
        m_board.stop();
        expectAgreement(record);
        return record;
    }

    // The host's frames, in order.
    std::vector<Bytes> hostFrames() const {
        std::vector<Bytes> frames;
        for (const board::TranscriptRecord& record : m_board.transcript()) {
            if (record.kind == board::TranscriptRecord::Kind::hostFrame) {
                frames.push_back(record.bytes);
            }
        }
        return frames;
    }
    // Only their command codes; -1 for a data frame.
    std::vector<int> commands() const {
        std::vector<int> codes;
        for (const Bytes& frame : hostFrames()) {
            codes.push_back(frame[0] == 0x01 ? frame[2] : -1);
        }
        return codes;
    }

    // What the driver did to DTR last; closing the port drops it once more.
    std::string lastDtrBeforeClosing() const {
        std::string last;
        for (const board::TranscriptRecord& entry : m_board.transcript()) {
            if (entry.meaning == "port closed") {
                break;
            }
            if (entry.meaning.starts_with("DTR o")) {
                last = entry.meaning;
            }
        }
        return last;
    }
    // How often mode entry was tried, heard by the board or not: each try holds the line once.
    std::ptrdiff_t modeEntries() const {
        const board::Transcript transcript = m_board.transcript();
        return std::ranges::count(transcript, "BREAK on", &board::TranscriptRecord::meaning);
    }

    board::BoardOptions m_options;
    board::VirtualBoard m_board;
    Bytes m_before;     // code flash before the write
    Bytes m_dataBefore; // data flash before it
};

} // namespace flashwriter
