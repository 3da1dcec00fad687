#include "serial/platform/PortInspection.h"

#include <gmock/gmock.h>

#include <fnmatch.h>

#include <algorithm>
#include <string>

namespace flashwriter {
namespace {

using ::testing::ElementsAre;
using ::testing::StrEq;

TEST(PortListCommands, TryTheCommonNamesFirst) {
    EXPECT_THAT(platform::portListCommands(),
                ElementsAre(StrEq("/bin/ls /dev/cu.u*"), StrEq("/bin/ls /dev/tty[AU][CS][BM]*")));
}

// Whether the shell would put the path in place of a command's pattern.
bool isListed(const std::string& path) {
    return std::ranges::any_of(platform::portListCommands(), [&](const std::string& command) {
        const std::string pattern = command.substr(command.find(' ') + 1);
        return ::fnmatch(pattern.c_str(), path.c_str(), FNM_PATHNAME) == 0;
    });
}

TEST(PortListCommands, ListAdaptersAndNothingElse) {
    for (const char* port : {"/dev/cu.usbserial-7", "/dev/ttyUSB0", "/dev/ttyACM12"}) {
        EXPECT_TRUE(isListed(port)) << port;
    }
    for (const char* other : {"/dev/tty", "/dev/tty0", "/dev/ttyS0", "/dev/ttyAMA0", "/dev/null"}) {
        EXPECT_FALSE(isListed(other)) << other;
    }
}

} // namespace
} // namespace flashwriter
