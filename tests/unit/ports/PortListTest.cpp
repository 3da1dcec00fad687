#include "serial/PortList.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace flashwriter {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PortList : public ::testing::Test {
protected:
    PortList() {
        if (::mkdtemp(directory.data()) == nullptr) {
            throw std::runtime_error("no temporary directory");
        }
    }
    ~PortList() override { std::filesystem::remove_all(directory); }

    void put(const char* name) const { std::ofstream(directory + "/" + name).put('\n'); }

    std::string directory = ::testing::TempDir() + "ports-XXXXXX";
};

TEST_F(PortList, NamesTheAdaptersInAlphabeticalOrder) {
    for (const char* name : {"ttyUSB1", "ttyACM0", "cu.usbserial-7", "ttyUSB0"}) {
        put(name);
    }
    EXPECT_THAT(portList(directory),
                ElementsAre(directory + "/cu.usbserial-7", directory + "/ttyACM0",
                            directory + "/ttyUSB0", directory + "/ttyUSB1"));
}

TEST_F(PortList, LeavesOutWhatIsNoAdapter) {
    for (const char* name : {"tty0", "ttyS0", "cu.Bluetooth", "tty.usbserial-7", "xttyUSB0"}) {
        put(name);
    }
    EXPECT_THAT(portList(directory), IsEmpty());
}

TEST_F(PortList, IsEmptyWhereThereIsNoSuchDirectory) {
    EXPECT_THAT(portList(directory + "/nowhere"), IsEmpty());
}

} // namespace
} // namespace flashwriter
