#include "advice/FormAdvice.h"
#include "tests/unit/advice/AdviceFixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <string>

namespace flashwriter {
namespace {

using ::testing::HasSubstr;

// A form that is filled in as it should be.
FormFacts goodForm() {
    const FailureFacts good = goodFacts();
    FormFacts facts;
    facts.portPath = good.portPath;
    facts.port = good.port;
    facts.ports = good.ports;
    facts.speedChosen = true;
    facts.filePath = good.filePath;
    facts.file = good.file;
    return facts;
}

// The text of what stands in the way.
std::string obstacle(const FormFacts& facts) {
    const FormAdvice advice = formAdvice(facts);
    EXPECT_TRUE(advice.standsInTheWay) << advice.text;
    EXPECT_EQ(advice.text.find('\n'), std::string::npos) << advice.text;
    return advice.text;
}

TEST(FormAdvice, NothingStandsInTheWayOfAGoodForm) {
    FormFacts facts = goodForm();
    EXPECT_EQ(formAdvice(facts).text, "Ready to write.");
    EXPECT_FALSE(formAdvice(facts).standsInTheWay);
    facts.ports.clear(); // a port may have another name than adapters have
    EXPECT_FALSE(formAdvice(facts).standsInTheWay);
    facts.file.size = 262144;
    EXPECT_FALSE(formAdvice(facts).standsInTheWay);
}

TEST(FormAdvice, TheObstaclesComeInTheOrderOfTheForm) {
    FormFacts facts;
    facts.ports = {"/dev/ttyUSB0"};
    EXPECT_THAT(obstacle(facts), HasSubstr("No port is chosen"));
    facts.portPath = "/dev/ttyUSB0";
    facts.port.state = PortState::Permitted;
    EXPECT_THAT(obstacle(facts), HasSubstr("No speed is chosen"));
    facts.speedChosen = true;
    EXPECT_THAT(obstacle(facts), HasSubstr("No image is chosen"));
}

TEST(FormAdvice, WithoutAnAdapterOneIsToBePluggedIn) {
    FormFacts facts = goodForm();
    facts.portPath = "";
    facts.port = {};
    facts.ports.clear();
    EXPECT_EQ(obstacle(facts),
              "No USB-serial adapter is to be seen: plug it in. Then press Update.");
}

TEST(FormAdvice, AnEmptyPortFieldIsShownThePorts) {
    FormFacts facts = goodForm();
    facts.portPath = "";
    facts.port = {};
    EXPECT_EQ(obstacle(facts), "No port is chosen: choose one, after Update if it is not in the "
                               "list. Ports here: /dev/ttyACM0, /dev/ttyUSB0.");
}

TEST(FormAdvice, AMissingPortIsNamedBesideThoseThereAre) {
    FormFacts facts = goodForm();
    facts.port = {};
    facts.ports = {"/dev/ttyUSB1"};
    EXPECT_EQ(obstacle(facts), "No such port: /dev/ttyUSB0. Ports here: /dev/ttyUSB1.");
    facts.ports.clear();
    EXPECT_EQ(obstacle(facts), "No such port: /dev/ttyUSB0. No USB-serial adapter is to be seen: "
                               "plug it in. Then press Update.");
}

TEST(FormAdvice, WhatIsNoPortIsCalledThat) {
    FormFacts facts = goodForm();
    facts.portPath = "image.bin";
    facts.port.state = PortState::NotPort;
    EXPECT_EQ(obstacle(facts),
              "image.bin is not a serial port. Ports here: /dev/ttyACM0, /dev/ttyUSB0.");
    facts.ports.clear();
    EXPECT_EQ(obstacle(facts), "image.bin is not a serial port. No USB-serial adapter is to be "
                               "seen: plug it in. Then press Update.");
}

TEST(FormAdvice, APathThatMayNotBeFollowedSaysWhy) {
    FormFacts facts = goodForm();
    facts.port.state = PortState::Hidden;
    facts.port.error = EACCES;
    EXPECT_EQ(obstacle(facts), "/dev/ttyUSB0 cannot be looked at: Permission denied. Check the "
                               "path, and who may pass the directories in it.");
}

TEST(FormAdvice, APortThatMayNotBeOpenedSaysWhoMay) {
    FormFacts facts = goodForm();
    facts.port.state = PortState::Refused;
    facts.ports.clear();
    EXPECT_EQ(obstacle(facts),
              "/dev/ttyUSB0 may not be opened by ada, and its group would not help: have its "
              "permissions changed, for example by a udev rule.");
    facts.port.membership = GroupMembership::None;
    EXPECT_EQ(obstacle(facts),
              "/dev/ttyUSB0 belongs to group dialout and ada is not in it: run \"sudo usermod -aG "
              "dialout ada\" and log in again.");
    facts.port.membership = GroupMembership::NextLogin;
    EXPECT_EQ(obstacle(facts), "/dev/ttyUSB0 belongs to group dialout, which ada has joined since "
                               "this session began: log out and in again.");
}

TEST(FormAdvice, WhoHoldsThePortIsNamed) {
    FormFacts facts = goodForm();
    facts.port.holders = {{812, "screen"}};
    facts.ports.clear();
    EXPECT_EQ(obstacle(facts), "/dev/ttyUSB0 is held by screen (process 812): close it first.");
}

TEST(FormAdvice, ATypedSpeedDoesNotCount) {
    FormFacts facts = goodForm();
    facts.speedChosen = false;
    EXPECT_EQ(obstacle(facts), "No speed is chosen: choose 115,200 or 500,000 bps from the list; "
                               "typed text does not count.");
}

TEST(FormAdvice, AnEmptyFileFieldIsToldHowItIsFilled) {
    FormFacts facts = goodForm();
    facts.filePath = "";
    facts.file = {};
    EXPECT_EQ(obstacle(facts),
              "No image is chosen: press Select, or drop a .bin or .mot file onto its field.");
}

TEST(FormAdvice, WhatStandsAtTheFilesPathComesBeforeItsNameAndSize) {
    FormFacts facts = goodForm();
    facts.file.kind = ImageKind::Other;
    facts.file.size = 0;
    facts.file.state = FileState::Missing;
    EXPECT_EQ(obstacle(facts), "No such file: image.bin. Check the path.");
    facts.file.state = FileState::NotReadable;
    facts.file.error = EACCES;
    EXPECT_EQ(obstacle(facts),
              "image.bin may not be read: Permission denied. Check its permissions.");
    facts.file.state = FileState::Directory;
    EXPECT_EQ(obstacle(facts), "image.bin is a directory: name the image in it.");
    facts.file.state = FileState::NotRegular;
    EXPECT_EQ(obstacle(facts), "image.bin is not a regular file: images are read from those only.");
}

TEST(FormAdvice, AnotherKindOfFileIsToldByItsName) {
    FormFacts facts = goodForm();
    facts.filePath = "image.hex";
    facts.file.kind = ImageKind::Other;
    EXPECT_EQ(obstacle(facts), "image.hex ends neither in .bin nor in .mot: name a raw image .bin, "
                               "and an S-record file .mot.");
}

TEST(FormAdvice, SizesThatCannotBeAreTold) {
    FormFacts facts = goodForm();
    facts.file.size = 0;
    EXPECT_EQ(obstacle(facts), "image.bin is empty: build it again.");
    facts.file.kind = ImageKind::Mot;
    EXPECT_EQ(obstacle(facts), "image.bin is empty: build it again.");
    facts.file.size = 262145;
    EXPECT_FALSE(formAdvice(facts).standsInTheWay) << "S-records are longer than their image";
    facts.file.kind = ImageKind::Bin;
    EXPECT_EQ(obstacle(facts), "image.bin has 262145 bytes, and a raw image has at most 262144: "
                               "choose the image itself, or build it smaller.");
}

TEST(FormAdvice, PathsOf259BytesFitAndLongerOnesDoNot) {
    FormFacts facts = goodForm();
    facts.portPath = facts.filePath = std::string(259, 'x');
    EXPECT_FALSE(formAdvice(facts).standsInTheWay);
    facts.filePath += 'x';
    EXPECT_EQ(obstacle(facts), "The path of the image file has 260 bytes, and at most 259 fit: use "
                               "a shorter one, such as that of a link to it.");
    facts.portPath += 'x';
    EXPECT_EQ(obstacle(facts), "The path of the port has 260 bytes, and at most 259 fit: use a "
                               "shorter one, such as that of a link to it.");
}

TEST(FormAdvice, NamesCannotBreakTheLine) {
    FormFacts facts = goodForm();
    facts.filePath = "a\nb\x1b.bin";
    facts.file.size = 0;
    EXPECT_EQ(obstacle(facts), "a?b?.bin is empty: build it again.");
}

} // namespace
} // namespace flashwriter
