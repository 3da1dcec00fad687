#include "sequence/context/ContextInfo.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace flashwriter {
namespace {

TEST(ContextInfo, RecordsArePlainValues) {
    EXPECT_TRUE(std::is_trivially_copyable_v<_CONTEXTINFO>);
    EXPECT_TRUE(std::is_aggregate_v<_CONTEXTINFO>);
    EXPECT_EQ(sizeof(_CONTEXTINFO::PortName), 260U);
    EXPECT_EQ(sizeof(_TARGETFILEINFO::FilePath), 260U);
    EXPECT_EQ(sizeof(_SILICONSIGNATURE), 23U);
    EXPECT_EQ(sizeof(_SECURITYGETINFO), 6U);
}

TEST(StorePath, StoresTheTextAndClearsTheRest) {
    _CONTEXTINFO context{};
    ASSERT_EQ(storePath(context.PortName, "/dev/cu.usbserial-0123456789"), RESULT_OK);
    ASSERT_EQ(storePath(context.PortName, "/dev/cu.usb1"), RESULT_OK);
    EXPECT_STREQ(context.PortName, "/dev/cu.usb1");
    EXPECT_EQ(context.PortName[20], '\0');
}

TEST(StorePath, TakesTheLongestTextThatLeavesRoomForItsNul) {
    _CONTEXTINFO context{};
    EXPECT_EQ(storePath(context.PortName, std::string(259, 'x')), RESULT_OK);
    EXPECT_EQ(std::string(context.PortName), std::string(259, 'x'));
}

TEST(StorePath, RefusesALongerTextAndKeepsTheField) {
    _CONTEXTINFO context{};
    ASSERT_EQ(storePath(context.PortName, "before"), RESULT_OK);
    EXPECT_EQ(storePath(context.PortName, std::string(260, 'x')), RESULT_PARAMETER_ERROR);
    EXPECT_STREQ(context.PortName, "before");
}

TEST(StorePath, RefusesATextWithANulOfItsOwn) {
    _CONTEXTINFO context{};
    EXPECT_EQ(storePath(context.PortName, std::string("a\0b", 3)), RESULT_PARAMETER_ERROR);
}

TEST(StorePath, CountsBytesNotCharacters) {
    std::string text;
    for (int i = 0; i < 87; ++i) {
        text += "あ"; // three bytes each: 261
    }
    _CONTEXTINFO context{};
    EXPECT_EQ(storePath(context.TargetFileInfo.FilePath, text), RESULT_PARAMETER_ERROR);
}

} // namespace
} // namespace flashwriter
