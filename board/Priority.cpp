#include "board/Priority.h"

#include <pthread.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace flashwriter::board {

void makeThreadPrompt(bool realTime) {
    static_cast<void>(prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL));
    if (!realTime) {
        return;
    }
    sched_param parameters{};
    parameters.sched_priority = sched_get_priority_min(SCHED_FIFO);
    if (pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters) != 0) {
        const auto self = static_cast<id_t>(syscall(SYS_gettid));
        static_cast<void>(setpriority(PRIO_PROCESS, self, -20));
    }
}

} // namespace flashwriter::board
