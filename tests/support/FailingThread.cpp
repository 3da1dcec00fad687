#include "tests/support/FailingThread.h"

#include <system_error>

namespace flashwriter::testing {

bool failThreadCreation = false;
std::atomic<long> failingThread{0};

} // namespace flashwriter::testing

// The names by which the linker knows the library's function behind std::thread's constructor. The
// state that it is given travels by reference.
extern "C" {
using Depend = void (*)();
void __real__ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE(
    void* thread, void* state, Depend depend);

void __wrap__ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE(
    void* thread, void* state, Depend depend) {
    using namespace flashwriter::testing;
    if (failingThread.fetch_sub(1) == 1 || failThreadCreation) {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    __real__ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE(
        thread, state, depend);
}
}
