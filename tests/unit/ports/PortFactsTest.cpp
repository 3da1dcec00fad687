#include "serial/PortFacts.h"

#include "tests/support/Terminal.h"

#include <gtest/gtest.h>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace flashwriter {
namespace {

// While it lives, the process is that of a user without rights: nothing is ever refused to root. No
// change for a process that is an ordinary user's already.
class OrdinarySession {
public:
    explicit OrdinarySession(uid_t user = 65534) : m_isRoot(::geteuid() == 0) {
        m_groups.resize(static_cast<std::size_t>(::getgroups(0, nullptr)));
        ::getgroups(static_cast<int>(m_groups.size()), m_groups.data());
        if (m_isRoot &&
            (::setgroups(0, nullptr) != 0 || ::setegid(65534) != 0 || ::seteuid(user) != 0)) {
            throw std::runtime_error("cannot become an ordinary user");
        }
    }
    ~OrdinarySession() {
        if (m_isRoot && (::seteuid(0) != 0 || ::setegid(0) != 0 ||
                         ::setgroups(m_groups.size(), m_groups.data()) != 0)) {
            ::_exit(1);
        }
    }
    OrdinarySession(const OrdinarySession&) = delete;
    OrdinarySession& operator=(const OrdinarySession&) = delete;

private:
    bool m_isRoot;
    std::vector<gid_t> m_groups;
};

TEST(PortFacts, OfAPortThatMayBeOpened) {
    const testing::Terminal port;
    const PortFacts facts = portFacts(port.path());
    EXPECT_EQ(facts.state, PortState::Permitted);
    EXPECT_EQ(facts.error, 0);
    EXPECT_TRUE(facts.holders.empty());
}

TEST(PortFacts, OfAPortThatMayNotBeOpened) {
    const testing::Terminal port;
    ASSERT_EQ(::chmod(port.path().c_str(), 0), 0);
    const OrdinarySession session;
    const PortFacts facts = portFacts(port.path());
    EXPECT_EQ(facts.state, PortState::Refused);
    EXPECT_FALSE(facts.groupMayUse);
}

TEST(PortFacts, ReadingAloneIsNotEnough) {
    const testing::Terminal port;
    ASSERT_EQ(::chmod(port.path().c_str(), 0444), 0);
    const OrdinarySession session;
    const PortFacts facts = portFacts(port.path());
    EXPECT_EQ(facts.state, PortState::Refused);
    EXPECT_FALSE(facts.groupMayUse);
}

TEST(PortFacts, TellWhetherTheGroupMayUseThePort) {
    const testing::Terminal port;
    ASSERT_EQ(::chmod(port.path().c_str(), 0660), 0);
    EXPECT_TRUE(portFacts(port.path()).groupMayUse);
}

TEST(PortFacts, NameUserAndGroup) {
    const testing::Terminal port;
    ASSERT_EQ(::chown(port.path().c_str(), static_cast<uid_t>(-1), ::getegid()), 0);
    const PortFacts facts = portFacts(port.path());
    const group* owner = ::getgrgid(::getegid());
    EXPECT_EQ(facts.group, owner != nullptr ? owner->gr_name : std::to_string(::getegid()));
    EXPECT_EQ(facts.membership, GroupMembership::Active);
    const passwd* user = ::getpwuid(::geteuid());
    EXPECT_EQ(facts.user, user != nullptr ? user->pw_name : std::to_string(::geteuid()));
}

TEST(PortFacts, AnUnknownGroupAndUserAreTheirNumbers) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give a port to somebody unknown";
    }
    const testing::Terminal port;
    ASSERT_EQ(::chown(port.path().c_str(), 0, 3999999), 0);
    const OrdinarySession session(3999998);
    const PortFacts facts = portFacts(port.path());
    EXPECT_EQ(facts.group, "3999999");
    EXPECT_EQ(facts.user, "3999998");
    EXPECT_EQ(facts.membership, GroupMembership::None);
}

TEST(PortFacts, AMembershipThatTheSessionDoesNotHaveYetWaitsForTheNextLogin) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can have a session without its user's groups";
    }
    const passwd* daemon = ::getpwnam("daemon");
    ASSERT_NE(daemon, nullptr);
    const testing::Terminal port;
    ASSERT_EQ(::chown(port.path().c_str(), 0, daemon->pw_gid), 0);
    const OrdinarySession session(daemon->pw_uid);
    const PortFacts facts = portFacts(port.path());
    EXPECT_EQ(facts.user, "daemon");
    EXPECT_EQ(facts.membership, GroupMembership::NextLogin);
}

TEST(PortFacts, OfWhatIsNotThere) {
    EXPECT_EQ(portFacts("/dev/nowhere").state, PortState::Missing);
    EXPECT_EQ(portFacts("/dev/nowhere").error, ENOENT);
    EXPECT_EQ(portFacts("").state, PortState::Missing);
    EXPECT_EQ(portFacts("/etc/passwd/port").state, PortState::Missing);
    EXPECT_EQ(portFacts(std::string("/dev/null\0x", 11)).state, PortState::Missing);
}

TEST(PortFacts, OfWhatIsNoPort) {
    EXPECT_EQ(portFacts("/etc/passwd").state, PortState::NotPort);
    EXPECT_EQ(portFacts("/tmp").state, PortState::NotPort);
    EXPECT_EQ(portFacts("/dev/null").state, PortState::NotPort);
    EXPECT_TRUE(portFacts("/dev/null").holders.empty());
}

TEST(PortFacts, OfWhatMayNotEvenBeLookedAt) {
    const std::string directory = ::testing::TempDir() + "hidden-" + std::to_string(::getpid());
    std::filesystem::create_directory(directory);
    std::ofstream(directory + "/port").put('\n');
    std::filesystem::permissions(directory, std::filesystem::perms::none);
    PortFacts facts;
    {
        const OrdinarySession session;
        facts = portFacts(directory + "/port");
    }
    std::filesystem::permissions(directory, std::filesystem::perms::owner_all);
    std::filesystem::remove_all(directory);
    EXPECT_EQ(facts.state, PortState::Hidden);
    EXPECT_EQ(facts.error, EACCES);
}

} // namespace
} // namespace flashwriter
