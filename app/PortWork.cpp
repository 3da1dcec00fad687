#include "app/PortWork.h"

#include "sequence/context/Shelter.h"
#include "ui/NSFileDropWindow.h"

#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <future>
#include <thread>
#include <utility>

namespace flashwriter {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds QUICK = 100ms; // for so long nobody notices
constexpr std::chrono::milliseconds HELD = 2s;
constexpr std::chrono::milliseconds PAUSE_BETWEEN_LOOKS = 10ms;

// For as long as it lives there is work, and the window does not close.
class Busy {
public:
    Busy(bool& flag, NSFileDropWindow& window) : m_flag(flag), m_window(window) {
        m_flag = true;
        m_window.holdClose(true);
    }
    ~Busy() {
        m_flag = false;
        m_window.holdClose(false);
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

private:
    bool& m_flag;
    NSFileDropWindow& m_window;
};

// What runs here does not include what the person does: that comes when the work is done, as it
// would if this thread had done it.
void liveUntil(const std::future<void>& done, const std::function<void()>& whenHeld) {
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (done.wait_for(0ms) == std::future_status::ready) {
            loop.quit();
        }
    });
    look.start(PAUSE_BETWEEN_LOOKS);
    QTimer held;
    held.setSingleShot(true);
    QObject::connect(&held, &QTimer::timeout, &loop, [&] { sheltered("held", whenHeld); });
    held.start(HELD - QUICK);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    done.wait(); // the program may be ending, which ends the loop too
}

} // namespace

PortWork::PortWork(NSFileDropWindow& window, std::function<void()> whenHeld)
    : m_window(window), m_whenHeld(std::move(whenHeld)) {}

void PortWork::run(const std::function<void()>& work) {
    const Busy busy(m_isBusy, m_window);
    std::packaged_task<void()> task;
    std::future<void> done;
    std::thread thread;
    const bool isApart = sheltered("port", [&] {
        task = std::packaged_task<void()>([&work] { work(); });
        done = task.get_future();
        thread = std::thread([&task] { task(); });
    });
    if (!isApart) {
        work();
        return;
    }
    if (done.wait_for(QUICK) != std::future_status::ready) {
        sheltered("port", [&] { liveUntil(done, m_whenHeld); }); // without memory it just waits
    }
    thread.join();
    done.get();
}

} // namespace flashwriter
