#include "console/Arguments.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace flashwriter {
namespace {

using ::testing::HasSubstr;

std::variant<_CONTEXTINFO, NoWrite> parse(const std::vector<std::string>& operands) {
    std::vector<const char*> argv{"flashwrite"};
    for (const std::string& operand : operands) {
        argv.push_back(operand.c_str());
    }
    return parseArguments(static_cast<int>(argv.size()), argv.data());
}

_CONTEXTINFO context(const std::vector<std::string>& operands) {
    return std::get<_CONTEXTINFO>(parse(operands));
}

// The refusal's text, after a look at what every refusal has.
std::string refusal(const std::vector<std::string>& operands) {
    const auto reason = std::get<NoWrite>(parse(operands));
    EXPECT_EQ(reason.status, 2);
    EXPECT_TRUE(reason.text.starts_with("flashwrite: ")) << reason.text;
    EXPECT_TRUE(reason.text.ends_with("\nTry: flashwrite --help\n")) << reason.text;
    return reason.text;
}

TEST(Arguments, ThreeOperandsFillAContext) {
    const _CONTEXTINFO result = context({"/dev/ttyUSB0", "115200", "image.bin"});
    EXPECT_STREQ(result.PortName, "/dev/ttyUSB0");
    EXPECT_EQ(result.BaudRate, 0);
    EXPECT_STREQ(result.TargetFileInfo.FilePath, "image.bin");
    EXPECT_EQ(result.pResultInfo, nullptr);
    EXPECT_EQ(result.ComRetryMax, 0U);
}

TEST(Arguments, EitherSpeedMayBeWrittenWithAComma) {
    EXPECT_EQ(context({"p", "115,200", "f"}).BaudRate, 0);
    EXPECT_EQ(context({"p", "500000", "f"}).BaudRate, 2);
    EXPECT_EQ(context({"p", "500,000", "f"}).BaudRate, 2);
}

TEST(Arguments, AnyOtherSpeedIsRefusedWithTheChoices) {
    for (const char* speed : {"9600", "250000", "1000000", "", "115200 ", "0115200", "+115200",
                              "115200x", "5000000", "fast"}) {
        EXPECT_THAT(refusal({"p", speed, "f"}),
                    HasSubstr(std::string("SPEED is 115200 or 500000, not \"") + speed + "\""));
    }
}

TEST(Arguments, MissingOperandsAreNamed) {
    EXPECT_THAT(refusal({}), HasSubstr("PORT"));
    EXPECT_THAT(refusal({"p"}), HasSubstr("SPEED"));
    EXPECT_THAT(refusal({"p", "115200"}), HasSubstr("FILE"));
}

TEST(Arguments, NothingElseIsTaken) {
    EXPECT_THAT(refusal({"p", "115200", "f", "extra"}), HasSubstr("extra"));
    EXPECT_THAT(refusal({"p", "115200", "f", "--verbose"}), HasSubstr("--verbose"));
    EXPECT_THAT(refusal({"-h"}), HasSubstr("flashwrite: "));
    EXPECT_THAT(refusal({"--PORT=p", "115200", "f"}), HasSubstr("flashwrite: "));
}

TEST(Arguments, HelpIsNoFailure) {
    for (const auto& operands : std::vector<std::vector<std::string>>{
             {"--help"}, {"p", "--help"}, {"p", "115200", "f", "--help"}}) {
        const auto help = std::get<NoWrite>(parse(operands));
        EXPECT_EQ(help.status, 0);
        for (const char* word : {"Usage: flashwrite PORT SPEED FILE", "PORT ", "SPEED ", "FILE ",
                                 "115200", "500000", ".mot", "Exit status", "diagnostics"}) {
            EXPECT_THAT(help.text, HasSubstr(word));
        }
    }
}

TEST(Arguments, EmptyPathsAreRefused) {
    EXPECT_THAT(refusal({"", "115200", "f"}), HasSubstr("PORT is empty"));
    EXPECT_THAT(refusal({"p", "115200", ""}), HasSubstr("FILE is empty"));
}

TEST(Arguments, PathsFitUpTo259BytesAndAreNeverShortened) {
    const std::string longest(259, 'x');
    const _CONTEXTINFO result = context({longest, "115200", longest});
    EXPECT_EQ(result.PortName, longest);
    EXPECT_EQ(result.TargetFileInfo.FilePath, longest);
    const std::string tooLong(260, 'x');
    EXPECT_THAT(refusal({tooLong, "115200", "f"}),
                HasSubstr("PORT is 260 bytes long, at most 259"));
    EXPECT_THAT(refusal({"p", "115200", tooLong}),
                HasSubstr("FILE is 260 bytes long, at most 259"));
}

TEST(Arguments, PathsAreTakenAsTheyAre) {
    const std::string odd = "a b,[c]{d}'\"%s\\\xC3\xA4\xFF";
    EXPECT_EQ(context({odd, "115200", odd}).PortName, odd);
    EXPECT_EQ(context({odd, "115200", odd}).TargetFileInfo.FilePath, odd);
}

TEST(Arguments, PathsThatBeginWithADashComeAfterTwo) {
    EXPECT_STREQ(context({"p", "115200", "--", "-image.bin"}).TargetFileInfo.FilePath,
                 "-image.bin");
    EXPECT_THAT(refusal({"p", "115200", "-image.bin"}), HasSubstr("flashwrite: "));
}

TEST(Arguments, ARefusalRepeatsNoControlCharacters) {
    EXPECT_THAT(refusal({"p", "\x1b[2J\n", "f"}), HasSubstr("\"?[2J?\""));
}

} // namespace
} // namespace flashwriter
