#include "ui/Lookup.h"
#include "tests/ui/windows/DiagnosticLines.h"

#include <QTest>

#include <array>
#include <future>
#include <stdexcept>
#include <string>

namespace flashwriter::testing {

namespace {

constexpr std::chrono::seconds LONG{20}; // which only a hang exceeds

// A question that is answered when the test says so.
class HeldQuestion {
public:
    Lookup::Question question() {
        return [answer = m_answer.get_future().share()] { return answer.get(); };
    }
    void answer(const std::string& text) { m_answer.set_value(text); }

private:
    std::promise<std::string> m_answer;
};

} // namespace

class LookupTest : public QObject {
    Q_OBJECT

private slots:
    void givesAQuickAnswerBeforeItReturns();
    void givesALateAnswerWhenItComes();
    void givesNoAnswerThatIsForgotten();
    void givesTheAnswerToTheLastQuestionOnly();
    void waitsForNoAnswerToAQuestionThatFails();
    void asksNoMoreWhileEightAreUnanswered();

private:
    MainThreadQueue m_queue;
};

void LookupTest::givesAQuickAnswerBeforeItReturns() {
    Lookup lookup(m_queue);
    std::string given;
    QVERIFY(
        lookup.ask([] { return "quick"; }, [&](const std::string& text) { given += text; }, LONG));
    QCOMPARE(given, std::string("quick"));
    QTest::qWait(20);
    QCOMPARE(given, std::string("quick")); // and only once
}

void LookupTest::givesALateAnswerWhenItComes() {
    Lookup lookup(m_queue);
    HeldQuestion held;
    std::string given;
    QVERIFY(lookup.ask(held.question(), [&](const std::string& text) { given = text; }));
    QVERIFY(given.empty());
    held.answer("late");
    QTRY_COMPARE(given, std::string("late"));
}

void LookupTest::givesNoAnswerThatIsForgotten() {
    Lookup lookup(m_queue);
    HeldQuestion held;
    std::string given;
    QVERIFY(lookup.ask(held.question(), [&](const std::string& text) { given = text; }));
    lookup.forget();
    held.answer("late");
    QTest::qWait(100);
    QVERIFY(given.empty());
}

void LookupTest::givesTheAnswerToTheLastQuestionOnly() {
    Lookup lookup(m_queue);
    HeldQuestion held;
    std::string given;
    const auto note = [&](const std::string& text) { given += text; };
    QVERIFY(lookup.ask(held.question(), note));
    QVERIFY(lookup.ask([] { return "second"; }, note, LONG));
    held.answer("first");
    QTest::qWait(100);
    QCOMPARE(given, std::string("second"));
}

// Neither who asked nor the next question is kept waiting.
void LookupTest::waitsForNoAnswerToAQuestionThatFails() {
    const DiagnosticLines log;
    Lookup lookup(m_queue);
    std::string given;
    const auto note = [&](const std::string& text) { given += text; };
    QVERIFY(!lookup.isWaiting());
    QVERIFY(lookup.ask([]() -> std::string { throw std::runtime_error("no such user"); }, note));
    QTRY_VERIFY(!lookup.isWaiting());
    QVERIFY(
        lookup.ask([]() -> std::string { throw std::runtime_error("no such user"); }, note, LONG));
    QVERIFY(!lookup.isWaiting());
    QCOMPARE(DiagnosticLines::take(), QStringList(2, "lookup: no such user"));
    HeldQuestion held;
    QVERIFY(lookup.ask(held.question(), note));
    QVERIFY(lookup.isWaiting());
    held.answer("there");
    QTRY_COMPARE(given, std::string("there"));
    QVERIFY(!lookup.isWaiting());
}

// Each of them keeps a thread, of which there are not any number.
void LookupTest::asksNoMoreWhileEightAreUnanswered() {
    Lookup lookup(m_queue);
    std::array<HeldQuestion, 8> held;
    std::string given;
    const auto note = [&](const std::string& text) { given += text; };
    for (HeldQuestion& question : held) {
        QVERIFY(lookup.ask(question.question(), note));
    }
    QVERIFY(!lookup.ask([] { return "ninth"; }, note, LONG));
    QVERIFY(!lookup.isWaiting());
    held[3].answer("fourth");
    bool isAsked = false;
    QTRY_VERIFY(isAsked || (isAsked = lookup.ask([] { return "tenth"; }, note, LONG)));
    for (HeldQuestion& question : held) {
        if (&question != &held[3]) {
            question.answer("late");
        }
    }
    QTest::qWait(100);
    QCOMPARE(given, std::string("tenth"));
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::LookupTest)
#include "LookupTest.moc"
