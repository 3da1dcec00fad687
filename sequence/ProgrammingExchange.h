#pragma once

#include "sequence/CommandLink.h"

#include <cstdint>

namespace flashwriter {

struct AddressBytes;
class DataFrameExchange;

// Writes an image: one command for the whole range, then the image in data frames of 256 bytes,
// four to each block of 1024, and at the end the status of the target's own verify.
class ProgrammingExchange {
public:
    ProgrammingExchange(CommandLink& link, _PROGRESSINIFO& progress)
        : m_link(link), m_progress(progress) {}
    virtual ~ProgrammingExchange() = default;
    ProgrammingExchange(const ProgrammingExchange&) = delete;
    ProgrammingExchange& operator=(const ProgrammingExchange&) = delete;

    // Writes dataLength bytes of data to startAddress up to endAddress (inclusive, the end of a
    // block), the last block filled up with 0xFF. Sets Incremental from Share and advances
    // CurrentProgress with each block. codeFlash selects the time-outs.
    // RESULT_COMMAND_FRAME_ABORT: the target refuses the range; RESULT_DATA_FRAME_ABORT: it
    // refuses a frame, or its verify failed; RESULT_RECEIVE_TIMEOUT: no reply, or one of another
    // size; RESULT_FRAME_FORMAT_ERROR, RESULT_SUM_ERROR: a damaged one; RESULT_SEND_FAILED;
    // RESULT_INIT_FAILED: no memory for the last block. A frame is sent again when it could not be
    // sent or was not answered, never when the target refused it.
    ResultCode comProgrammingProc(std::uint64_t startAddress, std::uint64_t endAddress,
                                  const std::uint8_t* data, std::uint64_t dataLength,
                                  bool codeFlash);

    // Told the stage and the percentage of the whole.
    virtual void UpdateProgress(std::uint64_t step, std::uint64_t percentage) = 0;

private:
    ResultCode sendProgrammingCommand(const AddressBytes& start, const AddressBytes& end,
                                      std::uint64_t timeout);
    ResultCode sendBlock(DataFrameExchange& frames, const std::uint8_t* block, std::uint64_t index,
                         bool lastBlock);

    CommandLink& m_link;
    _PROGRESSINIFO& m_progress;
};

} // namespace flashwriter
