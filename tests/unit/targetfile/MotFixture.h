// What the tests of the S-record file share.
#pragma once

#include "sequence/context/DiagnosticLog.h"
#include "targetfile/NSTargetFileForMot.h"
#include "tests/unit/targetfile/MotText.h"
#include "tests/unit/targetfile/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

namespace flashwriter {

class MotFixture : public ::testing::Test {
protected:
    MotFixture() {
        s_current = this;
        setDiagnosticSink([](const char* text) {
            s_current->m_log = text;
            if (s_current->m_betweenPasses) {
                s_current->m_betweenPasses();
            }
        });
    }
    ~MotFixture() override { setDiagnosticSink(nullptr); }

    std::string write(std::string_view contents) {
        return m_directory.write("image.mot", contents);
    }
    ResultCode read(std::string_view contents) { return m_file.ReadFile(write(contents)); }

    // Reads a file of four counting bytes.
    void load() { ASSERT_EQ(read(m_good), RESULT_OK); }

    Bytes program() const {
        return {m_file.GetProgramMemory(),
                m_file.GetProgramMemory() + m_file.GetProgramMemorySize()};
    }
    // What is kept of the data image.
    Bytes data() const {
        const auto size = std::min<std::uint64_t>(m_file.GetDataSize(), 0x1000000);
        return {m_file.GetDataFlash(), m_file.GetDataFlash() + size};
    }

    void expectEmpty() const {
        EXPECT_EQ(m_file.GetProgramMemory(), nullptr);
        EXPECT_EQ(m_file.GetProgramMemorySize(), 0U);
        EXPECT_EQ(m_file.GetDataFlash(), nullptr);
        EXPECT_EQ(m_file.GetDataSize(), 0U);
    }

    // The last line of the diagnostic log.
    const std::string& log() const { return m_log; }

    // A record of four bytes, with its line end.
    const std::string m_good = motLine(1, 0, counting(4)) + "\n";
    TempDir m_directory;
    NSTargetFileForMot m_file;
    // Called when the first pass logs what it measured: the second has not opened the file yet.
    std::function<void()> m_betweenPasses;

private:
    static inline MotFixture* s_current = nullptr;
    std::string m_log;
};

} // namespace flashwriter
