#include "sequence/context/DiagnosticLog.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

namespace flashwriter {
namespace {

std::vector<std::string> collected;

void collect(const char* text) {
    collected.emplace_back(text);
}

class DiagnosticLog : public testing::Test {
protected:
    DiagnosticLog() {
        collected.clear();
        setDiagnosticSink(collect);
    }
    ~DiagnosticLog() override { setDiagnosticSink(nullptr); }
};

TEST_F(DiagnosticLog, FormatsOneLine) {
    diagnosticLog("SendDataSize: %ld Bytes", 260L);
    EXPECT_EQ(collected, std::vector<std::string>{"SendDataSize: 260 Bytes"});
}

TEST_F(DiagnosticLog, KeepsALineOfAnyLengthWhole) {
    for (const std::size_t length : {510U, 511U, 512U, 513U, 100000U}) {
        collected.clear();
        const std::string text(length, 'x');
        diagnosticLog("%s", text.c_str());
        EXPECT_EQ(collected, std::vector<std::string>{text}) << length;
    }
}

TEST_F(DiagnosticLog, WithoutASinkWritesLinesToStandardError) {
    setDiagnosticSink(nullptr);
    testing::internal::CaptureStderr();
    diagnosticLog("DTR=%s", "true");
    diagnosticLog("errno:%d", 5);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "DTR=true\nerrno:5\n");
    EXPECT_TRUE(collected.empty());
}

// Its callers are in the middle of a write, or on threads that must not throw.
TEST_F(DiagnosticLog, LosesWhatASinkThrowsAtAndNothingElse) {
    setDiagnosticSink([](const char* text) {
        collect(text);
        throw std::bad_alloc();
    });
    const std::string longText(1000, 'x');
    EXPECT_NO_THROW(diagnosticLog("errno:%d", 5));
    EXPECT_NO_THROW(diagnosticLog("%s", longText.c_str()));
    EXPECT_EQ(collected, (std::vector<std::string>{"errno:5", longText})) << "each of them once";
    setDiagnosticSink([](const char* /*text*/) { throw 1; });
    EXPECT_NO_THROW(diagnosticLog("errno:%d", 5));
}

} // namespace
} // namespace flashwriter
