// What each kind of adapter tells of itself.

#include "DeviceHost.h"

#include <gtest/gtest.h>

namespace flashwriter::kernel {
namespace {

constexpr std::uint16_t kGetDescriptor = 0x8006;

class Description : public ::testing::TestWithParam<AdapterKind> {
protected:
    DeviceHost m_host{GetParam()};
};

TEST_P(Description, ConfigurationIsAsLongAsItSays) {
    const Bytes bytes = m_host.ask(kGetDescriptor, 0x0200, 255).value();
    EXPECT_EQ(bytes.at(2) + bytes.at(3) * 256U, bytes.size());
    std::size_t at = 0;
    while (at < bytes.size()) {
        ASSERT_GE(bytes[at], 2);
        at += bytes[at];
    }
    EXPECT_EQ(at, bytes.size());
}

TEST_P(Description, CountsAreRight) {
    const DeviceDescription& description = m_host.device().description();
    EXPECT_EQ(description.configuration.at(4), description.interfaces().size());
    std::size_t announced = 0;
    for (std::size_t at = 0; at < description.configuration.size();
         at += description.configuration[at]) {
        announced += description.configuration[at + 1] == 4 ? description.configuration[at + 4] : 0;
    }
    EXPECT_EQ(announced, description.endpoints().size());
}

TEST_P(Description, HostsGetNoMoreThanTheyAskFor) {
    EXPECT_EQ(m_host.ask(kGetDescriptor, 0x0100, 8).value().size(), 8U);
    EXPECT_EQ(m_host.ask(kGetDescriptor, 0x0100, 64).value().size(), 18U);
    EXPECT_EQ(m_host.ask(kGetDescriptor, 0x0200, 9).value().size(), 9U);
}

TEST_P(Description, HasItsStrings) {
    EXPECT_EQ(m_host.ask(kGetDescriptor, 0x0300, 255).value(), (Bytes{4, 3, 0x09, 0x04}));
    EXPECT_EQ(m_host.ask(kGetDescriptor, 0x0303, 255, 0x0409).value(),
              (Bytes{10, 3, '0', 0, '0', 0, '0', 0, '1', 0}));
}

TEST_P(Description, RefusesWhatThereIsNot) {
    EXPECT_FALSE(m_host.ask(kGetDescriptor, 0x0304, 255)); // a fourth string
    EXPECT_FALSE(m_host.ask(kGetDescriptor, 0x0201, 255)); // a second configuration
    EXPECT_FALSE(m_host.ask(kGetDescriptor, 0x0600, 10));  // another speed
    EXPECT_FALSE(m_host.ask(kGetDescriptor, 0x0F00, 5));
    EXPECT_FALSE(m_host.tell(0x0003, 1)); // no feature to set
    EXPECT_FALSE(m_host.tell(0x4077, 0));
    EXPECT_FALSE(m_host.ask(0xC077, 0, 2));
    EXPECT_FALSE(m_host.tell(0x2177, 0));
}

TEST_P(Description, HasOneConfigurationAndOneSettingOfEachInterface) {
    UsbDevice& device = m_host.device();
    EXPECT_TRUE(device.configure(1));
    EXPECT_FALSE(device.configure(2));
    EXPECT_EQ(device.configuration(), 1);
    device.reset();
    EXPECT_EQ(device.configuration(), 0);
    EXPECT_TRUE(device.hasSetting(0, 0));
    EXPECT_FALSE(device.hasSetting(0, 1));
    EXPECT_FALSE(device.hasSetting(7, 0));
}

INSTANTIATE_TEST_SUITE_P(Kinds, Description,
                         testing::Values(AdapterKind::cdcAcm, AdapterKind::ftdiSio),
                         [](const auto& kind) {
                             return kind.param == AdapterKind::cdcAcm ? "cdcAcm" : "ftdiSio";
                         });

} // namespace
} // namespace flashwriter::kernel
