#include "tests/endtoend/console/Flashwrite.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace flashwriter::testing {
namespace {

using ::testing::HasSubstr;

TEST(FlashwriteArguments, HelpGoesToStandardOutput) {
    ChildProcess program(flashwrite({"--help"}));
    EXPECT_EQ(program.wait(), 0);
    EXPECT_THAT(program.output(), HasSubstr("Usage: flashwrite PORT SPEED FILE"));
    EXPECT_EQ(program.error(), "");
}

TEST(FlashwriteArguments, WrongOnesGoToStandardError) {
    const std::vector<std::vector<std::string>> wrong{{},
                                                      {"/dev/null"},
                                                      {"/dev/null", "115200"},
                                                      {"/dev/null", "9600", "image.bin"},
                                                      {"/dev/null", "115200", "image.bin", "more"},
                                                      {"--fast", "/dev/null", "115200", "f.bin"},
                                                      {"", "115200", "image.bin"}};
    for (const auto& operands : wrong) {
        ChildProcess program(flashwrite(operands));
        EXPECT_EQ(program.wait(), 2);
        EXPECT_EQ(program.output(), "");
        EXPECT_TRUE(program.error().starts_with("flashwrite: ")) << program.error();
        EXPECT_TRUE(program.error().ends_with("Try: flashwrite --help\n")) << program.error();
    }
}

TEST(FlashwriteArguments, NothingIsSentBeforeAllOfThemAreRight) {
    const std::vector<std::vector<std::string>> wrong{
        {"9600", "image.bin"}, {"115200", std::string(260, 'x')}, {"115200"}};
    for (const auto& rest : wrong) {
        const SilentPort port;
        std::vector<std::string> operands{port.path()};
        operands.insert(operands.end(), rest.begin(), rest.end());
        ChildProcess program(flashwrite(operands));
        EXPECT_EQ(program.wait(), 2);
        EXPECT_EQ(port.received(), "");
    }
}

TEST(FlashwriteArguments, AnOverLongPathIsNeverShortened) {
    ChildProcess port(flashwrite({"/dev/null" + std::string(260, '/'), "115200", "image.bin"}));
    EXPECT_EQ(port.wait(), 2);
    EXPECT_THAT(port.error(), HasSubstr("PORT is 269 bytes long, at most 259 fit"));
    ChildProcess file(flashwrite({"/dev/null", "115200", std::string(256, '/') + "image.bin"}));
    EXPECT_EQ(file.wait(), 2);
    EXPECT_THAT(file.error(), HasSubstr("FILE is 265 bytes long, at most 259 fit"));
}

} // namespace
} // namespace flashwriter::testing
