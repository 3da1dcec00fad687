#pragma once

#include <string>

namespace flashwriter::testing {

// A port under the name that a USB-serial adapter's would have, where this process may give such
// names; otherwise under its own. The name is gone at the end.
class AdapterName {
public:
    explicit AdapterName(const std::string& port);
    ~AdapterName();
    AdapterName(const AdapterName&) = delete;
    AdapterName& operator=(const AdapterName&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
    bool m_isLink = false;
};

} // namespace flashwriter::testing
