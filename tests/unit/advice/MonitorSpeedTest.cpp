#include "advice/MonitorSpeed.h"

#include <gtest/gtest.h>

#include <string>

namespace flashwriter {
namespace {

TEST(MonitorSpeed, IsANumberOfDigitsWithinTheLimits) {
    EXPECT_EQ(monitorSpeed("9600"), 9600U);
    EXPECT_EQ(monitorSpeed("110"), 110U);
    EXPECT_EQ(monitorSpeed("921600"), 921600U);
    EXPECT_EQ(monitorSpeed("0000000000000000000000115200"), 115200U);
}

TEST(MonitorSpeed, IsNothingElse) {
    for (const std::string text :
         {"", "9600 bps", " 9600", "9600 ", "115,200", "+9600", "-9600", "9600.0", "0x2580", "1e5",
          "１１５２００", "0", "109", "921601", "1000000", "18446744073709561216"}) {
        EXPECT_EQ(monitorSpeed(text), std::nullopt) << text;
    }
    EXPECT_EQ(monitorSpeed(std::string("9600\0", 5)), std::nullopt);
}

} // namespace
} // namespace flashwriter
