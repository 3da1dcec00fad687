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

// Likewise of the other threads, which are counted as one: whatever else runs in the program must
// do without memory, or stand it. One at a time, made and destroyed on the same thread.
class FailingNewElsewhere {
public:
    // So many fail, one after the other; after that there is memory again.
    explicit FailingNewElsewhere(int n, int failures = 1);
    ~FailingNewElsewhere();
    FailingNewElsewhere(const FailingNewElsewhere&) = delete;
    FailingNewElsewhere& operator=(const FailingNewElsewhere&) = delete;

    static bool hasFailed(); // since one was made last, once at least
};

} // namespace flashwriter::testing
