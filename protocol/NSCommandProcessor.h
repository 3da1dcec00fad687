// The codec of the target's programming protocol: builds the frames that the host sends and checks
// the frames that it receives. It does no input or output; Frames.h tells the layout of a frame.
//
// Before a successful Initialize every Make and Check operation returns RESULT_INIT_FAILED.
#pragma once

#include "protocol/Frames.h"
#include "sequence/context/ResultCode.h"

#include <cstdint>
#include <initializer_list>
#include <memory>

namespace flashwriter {

class NSCommandProcessor {
public:
    // Allocates both frame buffers. RESULT_INIT_FAILED, with neither buffer, when memory is short.
    ResultCode Initialize();

    // The buffers, FRAME_BUFFER_SIZE bytes each: the frame last built, and the frame last received,
    // which the transport fills. The codec owns them; nullptr before a successful Initialize.
    std::uint8_t* GetCommandFrames() const { return m_pbCmdFlames.get(); }
    std::uint8_t* GetDataFrames() const { return m_pbDataFlames.get(); }

    // Building. Each Make zeroes the whole transmit buffer, writes one frame to its start and sets
    // cmdLength to the frame's length in bytes. When it fails the buffer is left zeroed and
    // cmdLength 0.

    ResultCode MakeResetCommand(std::uint64_t& cmdLength);

    // bD01 is the speed index, setVoltage the supply voltage's byte. RESULT_PARAMETER_ERROR for an
    // index above MAX_SPEED_INDEX.
    ResultCode MakeBaudRateCommand(std::uint8_t bD01, std::uint8_t setVoltage,
                                   std::uint64_t& cmdLength);

    // Addresses here and below: l, m, h are the bits 0-7, 8-15 and 16-23 of the start (bSa) and of
    // the inclusive end (bEa).
    ResultCode MakeBlockEraseCommand(std::uint8_t bSal, std::uint8_t bSam, std::uint8_t bSah,
                                     std::uint64_t& cmdLength);

    ResultCode MakeSecurityGetCommand(std::uint64_t& cmdLength);

    ResultCode MakeSiliconSignatureCommand(std::uint64_t& cmdLength);

    // bD01 is the command's last parameter; 0 is the only value in use.
    ResultCode MakeBlockBlankCheckCommand(std::uint8_t bSal, std::uint8_t bSam, std::uint8_t bSah,
                                          std::uint8_t bEal, std::uint8_t bEam, std::uint8_t bEah,
                                          std::uint8_t bD01, std::uint64_t& cmdLength);

    // Any command whose parameters are an address range.
    ResultCode makeAddressRangeCommand(std::uint8_t bCom, std::uint8_t bSal, std::uint8_t bSam,
                                       std::uint8_t bSah, std::uint8_t bEal, std::uint8_t bEam,
                                       std::uint8_t bEah, std::uint64_t& cmdLength);

    ResultCode MakeProgrammingCommand(std::uint8_t bSal, std::uint8_t bSam, std::uint8_t bSah,
                                      std::uint8_t bEal, std::uint8_t bEam, std::uint8_t bEah,
                                      std::uint64_t& cmdLength);

    ResultCode MakeChecksumCommand(std::uint8_t bSal, std::uint8_t bSam, std::uint8_t bSah,
                                   std::uint8_t bEal, std::uint8_t bEam, std::uint8_t bEah,
                                   std::uint64_t& cmdLength);

    // Copies length bytes of data, which must not lie in the transmit buffer, into a data frame.
    // finalFrame: no other frame of the transfer follows. RESULT_PARAMETER_ERROR for more than
    // MAX_PAYLOAD bytes, or for bytes asked of a null pointer.
    ResultCode makeDataFrame(const std::uint8_t* data, std::uint64_t length, bool finalFrame,
                             std::uint64_t& cmdLength);

    // The same, except that only the low byte of finalFrame counts: 0x100 is not final.
    ResultCode MakeProgrammingDataFrame(const std::uint8_t* data, std::uint64_t length,
                                        std::uint64_t finalFrame, std::uint64_t& cmdLength);

    // Checking. Each Check reads the receive buffer and writes its outputs only when every test has
    // passed. RESULT_FRAME_FORMAT_ERROR: a wrong start, LEN or end byte; RESULT_SUM_ERROR: a wrong
    // SUM. Where both apply, the operation says which one wins. A status byte is handed out
    // unjudged: comparing it with ACK is the caller's part.

    // A status frame: format before SUM.
    ResultCode checkStatus(std::uint8_t& ST1) const;

    // The same check under the name of each exchange.
    ResultCode CheckStatus(std::uint8_t& ST1) const { return checkStatus(ST1); }
    ResultCode CheckResetStatus(std::uint8_t& ST1) const { return checkStatus(ST1); }
    ResultCode CheckBlockEraseStatus(std::uint8_t& ST1) const { return checkStatus(ST1); }
    ResultCode CheckBlockBlankCheckStatus(std::uint8_t& ST1) const { return checkStatus(ST1); }
    ResultCode CheckSecurityGetCommand(std::uint8_t& ST1) const { return checkStatus(ST1); }
    ResultCode CheckSiliconSignatureStatus(std::uint8_t& ST1) const { return checkStatus(ST1); }
    ResultCode CheckProgrammingStatus(std::uint8_t& ST1) const { return checkStatus(ST1); }
    ResultCode CheckProgrammingDataFrameStatus(std::uint8_t& ST1) const { return checkStatus(ST1); }
    ResultCode CheckVerifyStatus(std::uint8_t& ST1) const { return checkStatus(ST1); }
    ResultCode CheckChecksumStatus(std::uint8_t& ST1) const { return checkStatus(ST1); }

    // The two-byte status that answers a data frame: format before SUM.
    ResultCode checkDataFrame(std::uint8_t& ST1, std::uint8_t& pbSt2) const;
    ResultCode CheckProgrammingDataFrameStatus(std::uint8_t& ST1, std::uint8_t& pbSt2) const {
        return checkDataFrame(ST1, pbSt2);
    }

    // The seven-byte Baud Rate Set status, its status byte and its two data bytes: SUM before
    // format, alone among the checks.
    ResultCode CheckBaudRateStatus(std::uint8_t& ST1, std::uint8_t& pdD01,
                                   std::uint8_t& pdD02) const;

    // The result frames below are judged in this order: start byte, end byte where LEN puts it,
    // SUM where LEN puts it, and last whether LEN is the one expected.

    // The first six of the eight data bytes, in frame order; the last two are not handed out.
    ResultCode CheckSecurityGetDataFrame(std::uint8_t& bFlg, std::uint8_t& pbBot,
                                         std::uint8_t& pbSsl, std::uint8_t& pbSsh,
                                         std::uint8_t& pbSel, std::uint8_t& pbSeh) const;

    // devCode, pbCen, pbDen (end addresses, low byte first) and pbVer take 3 bytes each. pbDev
    // takes the name's 10 characters, and a zero at position 11, so it needs 12 writable bytes;
    // position 10 stays as it is. Outputs are written in the order of the arguments, so that a
    // pbCen directly behind an 11-byte name, as in _SILICONSIGNATURE, overwrites that zero.
    ResultCode CheckSiliconSignatureDataFrames(std::uint8_t* devCode, std::uint8_t* pbDev,
                                               std::uint8_t* pbCen, std::uint8_t* pbDen,
                                               std::uint8_t* pbVer) const;

    // The low and the high byte of the target's checksum.
    ResultCode CheckChecksumDataFrams(std::uint8_t& bCk1, std::uint8_t& pbCk2) const;

    // The two's complement of the sum of count bytes from startIndex on; 0 when count is 0 or less.
    static std::uint8_t getCheckSum(const std::uint8_t* bytes, std::int32_t startIndex,
                                    std::int32_t count);

private:
    bool clearCommandFrame(std::uint64_t& cmdLength);
    ResultCode makeCommand(std::initializer_list<std::uint8_t> payload, std::uint64_t& cmdLength);
    void closeFrame(std::uint64_t payloadLength, std::uint8_t endByte, std::uint64_t& cmdLength);
    ResultCode checkResultFrame(std::uint8_t expectedLength) const;

    std::unique_ptr<std::uint8_t[]> m_pbCmdFlames;  // transmit buffer
    std::unique_ptr<std::uint8_t[]> m_pbDataFlames; // receive buffer
};

} // namespace flashwriter
