#include "ui/Lookup.h"

#include "sequence/context/Shelter.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace flashwriter {

namespace {

constexpr long MOST_UNANSWERED = 8;

} // namespace

struct Lookup::Inquiry {
    Question question;
    Answer answer;
    MainQueue queue;
    std::atomic<bool> isWanted{true};

    std::mutex mutex;
    std::condition_variable answered;
    bool isAnswered = false;
    std::string text; // the answer, from then on

    // Asks, and hands the answer to the main thread before it says that it is there.
    static void run(const std::shared_ptr<Inquiry>& self) {
        const bool isThere = sheltered("lookup", [&] {
            std::function<void()> give;
            whenThereIsMemory([&] {
                give = [self] { self->give(); };
                self->text = self->question();
            });
            self->queue(std::move(give));
        });
        if (!isThere) {
            self->isWanted = false;
        }
        const std::lock_guard lock(self->mutex);
        self->isAnswered = true;
        self->answered.notify_all();
    }

    // Main thread.
    void give() {
        if (isWanted.exchange(false)) {
            answer(text);
        }
    }
};

Lookup::Lookup(const MainThreadQueue& mainThread)
    : m_mainThread(mainThread), m_unanswered(std::make_shared<int>(0)) {}

Lookup::~Lookup() {
    forget();
}

bool Lookup::ask(Question question, Answer answer, std::chrono::milliseconds patience) {
    forget();
    if (m_unanswered.use_count() > MOST_UNANSWERED) {
        return false;
    }
    std::shared_ptr<Inquiry> inquiry;
    const bool isAsked = sheltered("lookup", [&] {
        inquiry = std::make_shared<Inquiry>();
        inquiry->question = std::move(question);
        inquiry->answer = std::move(answer);
        inquiry->queue = m_mainThread.queue();
        std::thread([inquiry, unanswered = m_unanswered] { Inquiry::run(inquiry); }).detach();
    });
    if (!isAsked) {
        return false;
    }
    m_last = inquiry;
    if (waitFor(*inquiry, patience)) {
        m_mainThread.run([inquiry] { inquiry->give(); });
    }
    return true;
}

bool Lookup::isWaiting() const {
    return m_last && m_last->isWanted;
}

bool Lookup::waitFor(Inquiry& inquiry, std::chrono::milliseconds patience) {
    std::unique_lock lock(inquiry.mutex);
    return inquiry.answered.wait_for(lock, patience, [&] { return inquiry.isAnswered; });
}

void Lookup::forget() {
    if (m_last) {
        m_last->isWanted = false;
        m_last.reset();
    }
}

} // namespace flashwriter
