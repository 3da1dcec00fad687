// Result codes: what every operation of the sequence, the exchanges, the frame codec, the serial
// transport and the image readers returns. A code travels upward unchanged; 0 is success.
// getResultText() in ResultText.h gives each code's text.
#pragma once

#include <cstdint>

namespace flashwriter {

using ResultCode = std::uint64_t;

inline constexpr ResultCode RESULT_OK = 0x0000;

// 0x1xxx: the serial port.
inline constexpr ResultCode RESULT_PORT_INFO_FAILED = 0x1000; // no operation returns it
inline constexpr ResultCode RESULT_PORT_NOT_SELECTED = 0x1001;
inline constexpr ResultCode RESULT_PORT_OPEN_ERROR = 0x1002;
// No text of its own; only the serial monitor returns it.
inline constexpr ResultCode RESULT_MONITOR_TIMER_FAILED = 0x1004;

// 0x2xxx: the protocol and the target.
inline constexpr ResultCode RESULT_INIT_FAILED = 0x2000;
inline constexpr ResultCode RESULT_FRAME_FORMAT_ERROR = 0x2001;
inline constexpr ResultCode RESULT_PARAMETER_ERROR = 0x2002;
inline constexpr ResultCode RESULT_SUM_ERROR = 0x2003;
inline constexpr ResultCode RESULT_SEND_FAILED = 0x2004;
inline constexpr ResultCode RESULT_RECEIVE_TIMEOUT = 0x2005;
inline constexpr ResultCode RESULT_SEND_TIMEOUT = 0x2006; // no operation returns it
inline constexpr ResultCode RESULT_COMMAND_FRAME_ABORT = 0x2007;
inline constexpr ResultCode RESULT_DATA_FRAME_ABORT = 0x2008;
inline constexpr ResultCode RESULT_MODE_ENTRY_TIMEOUT = 0x2009;
inline constexpr ResultCode RESULT_NOT_BLANK = 0x200A;
inline constexpr ResultCode RESULT_BAUD_RATE_CHANGE_FAILED = 0x200B;
inline constexpr ResultCode RESULT_BUFFER_OVERFLOW = 0x200C;
inline constexpr ResultCode RESULT_CHECKSUM_MISMATCH = 0x200D;

// 0x3xxx: the image file and its sizes.
inline constexpr ResultCode RESULT_FILE_NOT_FOUND = 0x3000;
inline constexpr ResultCode RESULT_UNSUPPORTED_FORMAT = 0x3001;
inline constexpr ResultCode RESULT_FILE_SIZE_ERROR = 0x3002;
inline constexpr ResultCode RESULT_FILE_READ_FAILED = 0x3003;
inline constexpr ResultCode RESULT_CODE_FLASH_SIZE_ERROR = 0x3004;
inline constexpr ResultCode RESULT_DATA_FLASH_SIZE_ERROR = 0x3005;
inline constexpr ResultCode RESULT_CODE_FLASH_ADDRESS_ERROR = 0x3006;
inline constexpr ResultCode RESULT_DATA_FLASH_ADDRESS_ERROR = 0x3007;

} // namespace flashwriter
