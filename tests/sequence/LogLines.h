#pragma once

#include <string>
#include <vector>

namespace flashwriter {

// What a write says, in the words of the log view.
inline const std::string MODE_LINE = "## Programming Mode\n";
inline const std::string ERASE_LINE = "## Block Blank Check & Erace...";
inline const std::string PROGRAM_LINE = "## Programming...";
inline const std::string OK_TEXT = " OK\n";
inline const std::string COMPLETE = "## Write Complete";
inline const std::string FAILED = "## Write Failed";

inline const std::vector<std::string> SUCCESS_LOG{MODE_LINE,    ERASE_LINE, OK_TEXT,
                                                  PROGRAM_LINE, OK_TEXT,    COMPLETE};

} // namespace flashwriter
