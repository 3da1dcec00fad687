#include "advice/FormAdvice.h"
#include "serial/PortList.h"
#include "tests/support/ChildProcess.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace flashwriter {
namespace {

using ::testing::HasSubstr;

// What the form says of real things: a serial port, and files in a directory of the test's own.
class FormFactsTest : public ::testing::Test {
protected:
    const testing::Terminal port;
    std::string directory = ::testing::TempDir() + "form-XXXXXX";

    FormFactsTest() { EXPECT_NE(::mkdtemp(directory.data()), nullptr); }
    ~FormFactsTest() override { std::filesystem::remove_all(directory); }

    std::string file(const std::string& name, const std::string& contents) const {
        const std::string path = directory + "/" + name;
        std::ofstream(path) << contents;
        return path;
    }
    std::string text(const std::string& filePath) const {
        return formAdvice(formFacts(port.path(), true, filePath)).text;
    }
};

TEST_F(FormFactsTest, DescribeThePortAndTheFile) {
    const std::string path = file("image.mot", "S9030000FC\n");
    const FormFacts facts = formFacts(port.path(), true, path);
    EXPECT_EQ(facts.portPath, port.path());
    EXPECT_EQ(facts.port.state, PortState::Permitted);
    EXPECT_EQ(facts.ports, portList());
    EXPECT_TRUE(facts.speedChosen);
    EXPECT_EQ(facts.filePath, path);
    EXPECT_EQ(facts.file.state, FileState::Readable);
    EXPECT_EQ(facts.file.kind, ImageKind::Mot);
    EXPECT_EQ(facts.file.size, 11U);
    EXPECT_EQ(formAdvice(facts).text, "Ready to write.");
    EXPECT_FALSE(formFacts(port.path(), false, path).speedChosen);
}

TEST_F(FormFactsTest, OfAnEmptyFormAreNone) {
    const FormFacts facts = formFacts("", false, "");
    EXPECT_EQ(facts.port.user, "");
    EXPECT_EQ(facts.file.error, 0);
    EXPECT_TRUE(formAdvice(facts).standsInTheWay);
}

TEST_F(FormFactsTest, TellWhatIsWrongWithTheFile) {
    EXPECT_EQ(text(file("image.bin", "12345")), "Ready to write.");
    EXPECT_THAT(text(file("empty.bin", "")), HasSubstr("is empty"));
    EXPECT_THAT(text(file("large.bin", std::string(262145, 'x'))), HasSubstr("262145 bytes"));
    EXPECT_THAT(text(file("image.hex", "12345")), HasSubstr("ends neither"));
    EXPECT_THAT(text(directory + "/nowhere.bin"), HasSubstr("No such file"));
    EXPECT_THAT(text(directory), HasSubstr("is a directory"));
    EXPECT_THAT(text("/dev/null"), HasSubstr("not a regular file"));
}

TEST_F(FormFactsTest, TellWhatIsWrongWithThePort) {
    const std::string path = file("image.bin", "12345");
    EXPECT_THAT(formAdvice(formFacts(directory + "/port", true, path)).text,
                HasSubstr("No such port: " + directory + "/port."));
    EXPECT_THAT(formAdvice(formFacts(path, true, path)).text, HasSubstr("is not a serial port"));
}

TEST_F(FormFactsTest, TellWhoHoldsThePort) {
    testing::ChildOptions options;
    options.arguments = {"/bin/sh", "-c", "exec 7<\"$0\"; echo open; exec sleep 60", port.path()};
    testing::ChildProcess holder(options);
    const std::string path = file("image.bin", "12345");
    const auto isTold = [&] {
        return text(path) == port.path() + " is held by sleep (process " +
                                 std::to_string(holder.pid()) + "): close it first.";
    };
    EXPECT_TRUE(holder.waitFor(isTold)) << text(path);
}

} // namespace
} // namespace flashwriter
