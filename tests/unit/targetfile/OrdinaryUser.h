// Refused permissions, also where the tests run as root, whom nothing is refused.
#pragma once

#include <stdexcept>
#include <unistd.h>

namespace flashwriter {

// While it lives, the process has the rights of a user who owns nothing; no change for a process
// that is an ordinary user's already.
class OrdinaryUser {
public:
    OrdinaryUser() : m_before(::geteuid()) {
        if (m_before == 0 && ::seteuid(nobody) != 0) {
            throw std::runtime_error("cannot become an ordinary user");
        }
    }
    ~OrdinaryUser() {
        if (m_before == 0 && ::seteuid(m_before) != 0) {
            ::_exit(1);
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static constexpr uid_t nobody = 65534;
    uid_t m_before;
};

} // namespace flashwriter
