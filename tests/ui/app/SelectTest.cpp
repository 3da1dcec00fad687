// The choice of a file, in the panel that really comes up.
#include "tests/support/ImageFile.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "ui/ImageOpenPanel.h"

#include <QApplication>
#include <QFileInfo>
#include <QTest>
#include <QTimer>

#include <functional>

namespace flashwriter::testing {

namespace {

// Does something in the panel that pushSelect() opens; returns whether there was one.
bool selectWith(const std::function<void()>& pushSelect,
                const std::function<void(ImageOpenPanel&)>& act) {
    bool isPanelSeen = false;
    QTimer::singleShot(0, [&] {
        auto* panel = dynamic_cast<ImageOpenPanel*>(QApplication::activeModalWidget());
        isPanelSeen = panel != nullptr && panel->isModal();
        if (panel != nullptr) {
            act(*panel);
        }
    });
    pushSelect();
    return isPanelSeen;
}

// What a panel's Select button does with a file.
void choose(ImageOpenPanel& panel, const std::string& file) {
    panel.setDirectory(QFileInfo(QString::fromStdString(file)).path());
    auto* name = panel.findChild<QLineEdit*>("fileNameEdit");
    name->setText(QString::fromStdString(file));
    QMetaObject::invokeMethod(&panel, "accept");
}

} // namespace

class SelectTest : public QObject {
    Q_OBJECT

private slots:
    static void initTestCase() { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
    void cancelChangesNothing();
    void okTakesThePath_data();
    void okTakesThePath();
    void aFileOfAnotherKindKeepsThePanel();
    void redrawsTheWindowFirst();
    void selectButtonSelects();
};

void SelectTest::cancelChangesNothing() {
    MainWindowFixture main;
    main.path.setText("/tmp/before.bin");
    const Lines before = DiagnosticLines::all();
    const bool isSeen =
        selectWith([&] { main.delegate.pushSelect(nullptr); }, [](auto& panel) { panel.reject(); });
    QVERIFY(isSeen);
    Lines expected = before;
    expected.emplace_back("Cancel button was pressed.");
    QCOMPARE(DiagnosticLines::all(), expected);
    QCOMPARE(main.path.text(), "/tmp/before.bin");
    QVERIFY(main.log().isEmpty());
}

void SelectTest::okTakesThePath_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("nameInUrl");
    QTest::newRow("bin") << "image.bin"
                         << "image.bin";
    QTest::newRow("mot") << "image.mot"
                         << "image.mot";
    QTest::newRow("capitals") << "IMAGE.MOT"
                              << "IMAGE.MOT";
    QTest::newRow("blank") << "my image.bin"
                           << "my%20image.bin";
    QTest::newRow("percent") << "100%25.bin"
                             << "100%2525.bin";
    QTest::newRow("wide") << QString::fromUtf8("\xC3\xA9.bin") << "%C3%A9.bin";
}

void SelectTest::okTakesThePath() {
    QFETCH(const QString, name);
    QFETCH(const QString, nameInUrl);
    MainWindowFixture main;
    const ImageFile file(name.toStdString(), std::string("image"));
    const std::string folder = QFileInfo(QString::fromStdString(file.path())).path().toStdString();
    const bool isSeen = selectWith([&] { main.delegate.pushSelect(nullptr); },
                                   [&](auto& panel) { choose(panel, file.path()); });
    QVERIFY(isSeen);
    QCOMPARE(main.path.text(), QString::fromStdString(file.path()));
    const Lines expected{"task_error:",
                         "file opened 'file://" + folder + "/" + nameInUrl.toStdString() + "'"};
    QCOMPARE(DiagnosticLines::all(), expected);
    QVERIFY(main.log().isEmpty());
}

void SelectTest::aFileOfAnotherKindKeepsThePanel() {
    MainWindowFixture main;
    const ImageFile file("image.txt", std::string("image"));
    bool isStillUp = false;
    selectWith([&] { main.delegate.pushSelect(nullptr); },
               [&](ImageOpenPanel& panel) {
                   choose(panel, file.path());
                   isStillUp = panel.isVisible();
                   panel.reject();
               });
    QVERIFY(isStillUp);
    QVERIFY(main.path.text().isEmpty());
    QCOMPARE(main.count("Cancel button was pressed."), 1);
}

// Counts how often a window draws itself.
class PaintCount : public QObject {
public:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int paints = 0;
};

void SelectTest::redrawsTheWindowFirst() {
    MainWindowFixture main;
    main.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&main.window));
    PaintCount count;
    main.window.installEventFilter(&count);
    int paintsBefore = 0;
    selectWith([&] { main.delegate.pushSelect(nullptr); },
               [&](ImageOpenPanel& panel) {
                   paintsBefore = count.paints;
                   panel.reject();
               });
    QVERIFY(paintsBefore >= 1);
}

void SelectTest::selectButtonSelects() {
    const MainWindowFixture main;
    const bool isSeen =
        selectWith([&] { main.selectButton.click(); }, [](auto& panel) { panel.reject(); });
    QVERIFY(isSeen);
    QCOMPARE(main.count("Cancel button was pressed."), 1);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::SelectTest)
#include "SelectTest.moc"
