// The main window as it is seen, heard and gone through: texts, colours, sizes, names, keys.
#include "app/AppDelegate.h"
#include "ui/NSFileDropWindow.h"

#include <QAccessible>
#include <QComboBox>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSet>
#include <QTest>

#include <cmath>
#include <memory>

namespace flashwriter::testing {

namespace {

const QStringList CONTROLS{"serialPortComboBox",      "updateButton",      "baudRateComboBox",
                           "filePathTextField",       "selectButton",      "writeButton",
                           "monitorBaudRateComboBox", "monitorOpenButton", "logDispTextView"};

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

// As the accessibility guidelines of the web count it: 1 for none, 21 for black on white.
double contrast(const QColor& one, const QColor& other) {
    const double a = luminance(one) + 0.05;
    const double b = luminance(other) + 0.05;
    return a > b ? a / b : b / a;
}

QPalette darkPalette() {
    QPalette palette(QColor(49, 54, 59), QColor(35, 38, 41));
    palette.setColor(QPalette::Base, QColor(27, 30, 32));
    return palette;
}

// The darkest and the lightest colour that a widget is drawn in.
std::pair<QColor, QColor> extremes(QWidget& widget) {
    const QImage picture = widget.grab().toImage();
    QColor darkest = Qt::white;
    QColor lightest = Qt::black;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor color = picture.pixelColor(x, y);
            darkest = luminance(color) < luminance(darkest) ? color : darkest;
            lightest = luminance(color) > luminance(lightest) ? color : lightest;
        }
    }
    return {darkest, lightest};
}

QChar mnemonicOf(const QString& text) {
    const auto at = text.indexOf('&');
    return at < 0 ? QChar() : text.at(at + 1).toUpper();
}

} // namespace

class MainWindowTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void hasATitle();
    void givesEveryControlItsNameForScreenReaders();
    void explainsEveryControl();
    void hasNoLetterTwice();
    void leadsFromLabelsToTheirFields();
    void isGoneThroughAsItIsRead();
    void cutsNoText();
    void fitsOntoSmallScreens();
    void isReadable_data();
    void isReadable();

private:
    template <class Control>
    Control* control(const QString& name) const {
        return m_window->findChild<Control*>(name);
    }

    std::unique_ptr<NSFileDropWindow> m_window;
    std::unique_ptr<AppDelegate> m_delegate;
};

void MainWindowTest::init() {
    m_window = std::make_unique<NSFileDropWindow>();
    m_delegate = std::make_unique<AppDelegate>(*m_window);
    m_delegate->applicationDidFinishLaunching(nullptr);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QTRY_VERIFY(!control<QLabel>("statusLabel")->text().isEmpty());
}

void MainWindowTest::cleanup() {
    m_delegate.reset();
    m_window.reset();
    QApplication::setPalette(QPalette());
}

void MainWindowTest::hasATitle() {
    QCOMPARE(m_window->windowTitle(), "Flash Writer");
}

void MainWindowTest::givesEveryControlItsNameForScreenReaders() {
    for (const QString& name : CONTROLS + QStringList{"statusLabel"}) {
        auto* widget = control<QWidget>(name);
        QVERIFY2(widget != nullptr, qPrintable(name));
        QCOMPARE(widget->accessibleName(), name);
        QVERIFY2(!widget->accessibleDescription().isEmpty(), qPrintable(name));
    }
    QCOMPARE(control<QLabel>("statusLabel")->accessibleDescription(),
             control<QLabel>("statusLabel")->text());
}

void MainWindowTest::explainsEveryControl() {
    for (const QString& name : CONTROLS) {
        QVERIFY2(!control<QWidget>(name)->toolTip().isEmpty(), qPrintable(name));
    }
}

void MainWindowTest::hasNoLetterTwice() {
    QStringList texts;
    for (const QLabel* label : m_window->findChildren<QLabel*>()) {
        texts.append(label->buddy() != nullptr ? label->text() : QString());
    }
    for (const QPushButton* button : m_window->findChildren<QPushButton*>()) {
        texts.append(button->text());
    }
    for (const QAction* menu : m_window->menuBar()->actions()) {
        texts.append(menu->text());
    }
    QSet<QChar> letters{'O'}; // of the monitor's button, whose title has no place for it
    int count = 1;
    for (const QString& text : texts) {
        if (!mnemonicOf(text).isNull()) {
            letters.insert(mnemonicOf(text));
            ++count;
        }
    }
    QCOMPARE(letters.size(), count);
    QCOMPARE(count, 11);
}

void MainWindowTest::leadsFromLabelsToTheirFields() {
    QCOMPARE(control<QLabel>("serialPortLabel")->buddy(), control<QWidget>("serialPortComboBox"));
    QCOMPARE(control<QLabel>("baudRateLabel")->buddy(), control<QWidget>("baudRateComboBox"));
    QCOMPARE(control<QLabel>("filePathLabel")->buddy(), control<QWidget>("filePathTextField"));
    QCOMPARE(control<QLabel>("monitorBaudRateLabel")->buddy(),
             control<QWidget>("monitorBaudRateComboBox"));
    QCOMPARE(control<QLabel>("logLabel")->buddy(), control<QWidget>("logDispTextView"));
}

void MainWindowTest::isGoneThroughAsItIsRead() {
    m_window->activateWindow();
    control<QWidget>("serialPortComboBox")->setFocus();
    QStringList order;
    for (int i = 0; i < CONTROLS.size(); ++i) {
        order.append(m_window->focusWidget()->objectName());
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(order, CONTROLS);
}

void MainWindowTest::cutsNoText() {
    m_window->resize(m_window->minimumSizeHint().expandedTo(m_window->minimumSize()));
    QCoreApplication::processEvents();
    for (const QPushButton* button : m_window->findChildren<QPushButton*>()) {
        QVERIFY2(button->width() >= button->sizeHint().width(), qPrintable(button->text()));
        QVERIFY2(button->height() >= button->sizeHint().height(), qPrintable(button->text()));
    }
    for (const QLabel* label : m_window->findChildren<QLabel*>()) {
        const int width = label->wordWrap() ? 0 : label->sizeHint().width();
        QVERIFY2(label->width() >= width, qPrintable(label->text()));
        QVERIFY2(label->height() >= label->heightForWidth(label->width()),
                 qPrintable(label->text()));
    }
    for (const char* name : {"serialPortComboBox", "baudRateComboBox"}) {
        const auto* comboBox = control<QComboBox>(name);
        QVERIFY(comboBox->height() >= comboBox->fontMetrics().height());
    }
    QVERIFY(control<QWidget>("logDispTextView")->height() > 40);
}

// 1280 x 800 pixels at 200 %, less what a desktop takes for itself.
void MainWindowTest::fitsOntoSmallScreens() {
    const QSize smallest = m_window->minimumSizeHint().expandedTo(m_window->minimumSize());
    QVERIFY2(smallest.width() <= 640 && smallest.height() <= 400,
             qPrintable(QString("%1 x %2").arg(smallest.width()).arg(smallest.height())));
}

void MainWindowTest::isReadable_data() {
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << QPalette(QColor(239, 240, 241));
    QTest::newRow("dark") << darkPalette();
}

void MainWindowTest::isReadable() {
    QFETCH(const QPalette, palette);
    QApplication::setPalette(palette);
    m_delegate->addLogDispTextView("## Programming...");
    control<QLineEdit>("filePathTextField")->setText("/tmp/firmware.bin");
    QCoreApplication::processEvents();
    for (const QString& name : CONTROLS + QStringList{"statusLabel", "serialPortLabel"}) {
        QWidget& widget = *control<QWidget>(name);
        QVERIFY2(contrast(widget.palette().color(widget.foregroundRole()),
                          widget.palette().color(widget.backgroundRole())) >= 4.5,
                 qPrintable(name));
        const auto [darkest, lightest] = extremes(widget);
        QVERIFY2(contrast(darkest, lightest) >= 4.5,
                 qPrintable(QString("%1: %2 on %3").arg(name, darkest.name(), lightest.name())));
    }
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::MainWindowTest)
#include "MainWindowTest.moc"
