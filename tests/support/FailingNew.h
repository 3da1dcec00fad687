#pragma once

namespace flashwriter::testing {

// Lets one allocation of this thread fail with std::bad_alloc: the n-th, counted from 1, while this
// object lives. Counted is what the objects of the program itself allocate that this is linked
// into, strings among them, and not what shared libraries allocate within. One at a time.
class FailingNew {
public:
    explicit FailingNew(int n);
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;

    static bool hasFailed(); // since one was made last
};

} // namespace flashwriter::testing
