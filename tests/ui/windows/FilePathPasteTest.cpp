#include "ui/NSFileDropTextField.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>

namespace flashwriter::testing {

// What programs for files and terminals put onto the clipboard for a file, and what becomes of it.
class FilePathPasteTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void takesAPath_data();
    void takesAPath();
    void replacesTheSelectionOnly();
    void canBeUndone();
    void takesWhatIsTyped();

private:
    std::unique_ptr<NSFileDropTextField> m_field;
};

void FilePathPasteTest::init() {
    m_field = std::make_unique<NSFileDropTextField>();
    m_field->show();
    m_field->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_field.get()));
    m_field->setFocus();
}

void FilePathPasteTest::takesAPath_data() {
    QTest::addColumn<QString>("copied");
    QTest::addColumn<QString>("pasted");
    QTest::newRow("line end") << "/tmp/x.bin\n"
                              << "/tmp/x.bin";
    QTest::newRow("address") << "file:///tmp/x%20y.bin"
                             << "/tmp/x y.bin";
    for (const char* text : {"/tmp/x.bin", "/tmp/x y.bin", "x.bin", "/tmp/x%20y.bin",
                             "http://localhost/x.bin", "see file:///tmp/x.bin", "Größe.bin"}) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(text);
    }
}

void FilePathPasteTest::takesAPath() {
    QFETCH(const QString, copied);
    QFETCH(const QString, pasted);
    QApplication::clipboard()->setText(copied);
    QTest::keyClick(m_field.get(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_field->text(), pasted);
    m_field->clear();
    m_field->paste();
    QCOMPARE(m_field->text(), pasted);
}

void FilePathPasteTest::replacesTheSelectionOnly() {
    QApplication::clipboard()->setText("y.bin\n");
    m_field->setText("/tmp/x.bin");
    m_field->setSelection(5, 5);
    QTest::keyClick(m_field.get(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_field->text(), QString("/tmp/y.bin"));
}

void FilePathPasteTest::canBeUndone() {
    QApplication::clipboard()->setText("/tmp/y.bin\n");
    m_field->setText("/tmp/x.bin");
    m_field->selectAll();
    QTest::keyClick(m_field.get(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_field->text(), QString("/tmp/y.bin"));
    QTest::keyClick(m_field.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(m_field->text(), QString("/tmp/x.bin"));
}

void FilePathPasteTest::takesWhatIsTyped() {
    const QString typed = "file:///tmp/x%20y.bin";
    QTest::keyClicks(m_field.get(), typed);
    QCOMPARE(m_field->text(), typed);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::FilePathPasteTest)
#include "FilePathPasteTest.moc"
