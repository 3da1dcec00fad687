#include "tests/ui/windows/Drags.h"
#include "ui/NSFileDropTextField.h"
#include "ui/NSFileDropWindow.h"

#include <QDialog>
#include <QTest>
#include <QVBoxLayout>

namespace flashwriter::testing {

// A drag over the field that nobody hears the end of: some window systems tell nothing more once
// another window is in the way.
class FileDropEndTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void endsWhenADialogBlocksTheWindow();
    void endsWhenTheMouseMovesWithoutADrag_data();
    void endsWhenTheMouseMovesWithoutADrag();
    void lastsWhileNothingElseHappens();

private:
    QPoint onField() const { return m_field->mapTo(m_window.get(), m_field->rect().center()); }
    void hover() {
        enter(*m_window->windowHandle(), QMimeData(), onField());
        QVERIFY(!m_field->isEnabled());
    }
    bool isPlain() const { return m_field->isEnabled() && m_field->grab().toImage() == m_plain; }

    std::unique_ptr<NSFileDropWindow> m_window;
    NSFileDropTextField* m_field = nullptr;
    QWidget* m_beside = nullptr;
    QImage m_plain;
};

void FileDropEndTest::init() {
    m_window = std::make_unique<NSFileDropWindow>();
    auto* form = new QWidget;
    auto* layout = new QVBoxLayout(form);
    m_field = new NSFileDropTextField;
    m_beside = new QWidget;
    m_beside->setFocusPolicy(Qt::StrongFocus);
    layout->addWidget(m_field);
    layout->addWidget(m_beside);
    m_window->setCentralWidget(form);
    m_window->setTrgetTextField(m_field);
    m_window->resize(500, 200);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_beside->setFocus();
    m_plain = m_field->grab().toImage();
}

void FileDropEndTest::endsWhenADialogBlocksTheWindow() {
    hover();
    QDialog dialog(m_window.get());
    dialog.setModal(true);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QTRY_VERIFY(isPlain());
    dialog.close();
    QVERIFY(isPlain());
}

void FileDropEndTest::endsWhenTheMouseMovesWithoutADrag_data() {
    QTest::addColumn<bool>("isOverField");
    QTest::newRow("over the field") << true;
    QTest::newRow("beside it") << false;
}

void FileDropEndTest::endsWhenTheMouseMovesWithoutADrag() {
    QFETCH(const bool, isOverField);
    QWidget other; // where the drag came from
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    QTest::mouseMove(other.windowHandle(), QPoint(1, 1));
    hover();
    const QPoint target =
        isOverField ? onField() : m_beside->mapTo(m_window.get(), m_beside->rect().center());
    QTest::mouseMove(m_window->windowHandle(), target);
    QTest::mouseMove(m_window->windowHandle(), target + QPoint(2, 1));
    QTRY_VERIFY(m_field->isEnabled());
    QTest::mouseMove(m_window->windowHandle(), QPoint(1, 1)); // some styles draw a field otherwise
    QTRY_VERIFY(isPlain());
}

void FileDropEndTest::lastsWhileNothingElseHappens() {
    hover();
    QTest::qWait(100);
    QVERIFY(!m_field->isEnabled());
    moveOn(*m_window->windowHandle(), QMimeData(), onField() + QPoint(2, 0));
    QVERIFY(!m_field->isEnabled());
    leave(*m_window->windowHandle());
    QVERIFY(isPlain());
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::FileDropEndTest)
#include "FileDropEndTest.moc"
