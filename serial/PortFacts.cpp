#include "serial/PortFacts.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

namespace flashwriter {

namespace {

constexpr std::size_t LARGEST_ENTRY = std::size_t{1} << 20U;

struct User {
    std::string name;
    gid_t group = 0; // the one that the user database gives
    bool isKnown = false;
};

struct Group {
    std::string name;
    std::vector<std::string> members;
};

// Asks the user database through one of its reentrant functions, with as much room as the entry
// turns out to need; nullptr when there is no entry.
template <class Entry, class Look>
const Entry* lookUp(Entry& entry, std::vector<char>& room, Look look) {
    for (room.resize(1024); room.size() <= LARGEST_ENTRY; room.resize(room.size() * 2)) {
        Entry* found = nullptr;
        if (look(&entry, room.data(), room.size(), &found) != ERANGE) {
            return found;
        }
    }
    return nullptr;
}

User currentUser() {
    passwd entry{};
    std::vector<char> room;
    const uid_t id = ::geteuid();
    const passwd* found =
        lookUp(entry, room, [id](auto... rest) { return getpwuid_r(id, rest...); });
    return found != nullptr ? User{found->pw_name, found->pw_gid, true}
                            : User{std::to_string(id), 0, false};
}

Group groupOf(gid_t id) {
    group entry{};
    std::vector<char> room;
    const group* found =
        lookUp(entry, room, [id](auto... rest) { return getgrgid_r(id, rest...); });
    if (found == nullptr) {
        return {std::to_string(id), {}};
    }
    Group result{found->gr_name, {}};
    for (char** member = found->gr_mem; *member != nullptr; ++member) {
        result.members.emplace_back(*member);
    }
    return result;
}

bool sessionHas(gid_t group) {
    if (::getegid() == group) {
        return true;
    }
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(::getgroups(0, nullptr), 0)));
    const int count = ::getgroups(static_cast<int>(groups.size()), groups.data());
    groups.resize(static_cast<std::size_t>(std::max(count, 0)));
    return std::ranges::find(groups, group) != groups.end();
}

GroupMembership membershipIn(gid_t id, const Group& group, const User& user) {
    if (sessionHas(id)) {
        return GroupMembership::Active;
    }
    const bool isListed = std::ranges::find(group.members, user.name) != group.members.end();
    return user.isKnown && (user.group == id || isListed) ? GroupMembership::NextLogin
                                                          : GroupMembership::None;
}

PortState stateOf(const std::string& path, mode_t mode) {
    if (!S_ISCHR(mode) || platform::isOtherDevice(path)) {
        return PortState::NotPort;
    }
    const bool mayOpen = ::faccessat(AT_FDCWD, path.c_str(), R_OK | W_OK, AT_EACCESS) == 0;
    return mayOpen ? PortState::Permitted : PortState::Refused;
}

} // namespace

PortFacts portFacts(const std::string& path) {
    const User user = currentUser();
    PortFacts facts;
    facts.user = user.name;
    struct stat status {};
    if (path.find('\0') != std::string::npos || ::stat(path.c_str(), &status) != 0) {
        facts.error = path.find('\0') != std::string::npos ? ENOENT : errno;
        const bool isMissing = facts.error == ENOENT || facts.error == ENOTDIR;
        facts.state = isMissing ? PortState::Missing : PortState::Hidden;
        return facts;
    }
    const Group group = groupOf(status.st_gid);
    facts.state = stateOf(path, status.st_mode);
    facts.group = group.name;
    facts.groupMayUse = (status.st_mode & S_IRGRP) != 0 && (status.st_mode & S_IWGRP) != 0;
    facts.membership = membershipIn(status.st_gid, group, user);
    if (facts.state != PortState::NotPort) {
        facts.holders = platform::portHolders(path);
    }
    return facts;
}

} // namespace flashwriter
