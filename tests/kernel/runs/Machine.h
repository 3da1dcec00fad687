#pragma once

#include "tests/kernel/adapter/UsbAdapter.h"
#include "tests/kernel/guest/Guest.h"

#include <gtest/gtest.h>

#include <optional>

namespace flashwriter::kernel {

// What all tests of one run share: the emulated machine, booted before the first of them and gone
// after the last, and the adapter that can be plugged into it.
class Machine : public ::testing::Environment {
public:
    explicit Machine(AdapterKind kind);

    void SetUp() override;
    void TearDown() override;

    // The only one of this process.
    static Machine& the();

    AdapterKind kind() const { return m_kind; }
    Guest& guest() { return *m_guest; }
    UsbAdapter& adapter() { return *m_adapter; }

    // A write was made anew because the machine was held up. A run with many of these says more of
    // what else goes on here than of drivers, and fails.
    void noteRepeat();

private:
    AdapterKind m_kind;
    int m_repeats = 0;
    std::optional<Guest> m_guest;
    std::optional<UsbAdapter> m_adapter;
};

} // namespace flashwriter::kernel
