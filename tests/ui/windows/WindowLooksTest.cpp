#include "tests/ui/windows/Outcomes.h"
#include "ui/NSFileDropWindow.h"
#include "ui/ProgressWindowController.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QStyleFactory>
#include <QTest>

#include <cmath>
#include <map>

namespace flashwriter::testing {

namespace {

constexpr double READABLE = 4.5; // contrast for text of the usual size

QPalette paletteOf(const QColor& window, const QColor& base, const QColor& text) {
    QPalette palette(window, window);
    palette.setColor(QPalette::Base, base);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, text);
    }
    return palette;
}

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

// 1 for the same colour, 21 for black and white.
double contrast(const QColor& one, const QColor& other) {
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

// Of what stands out most against the colour that there is most of.
double contrastSeen(QWidget& control) {
    const QRect place(control.mapTo(control.window(), QPoint()), control.size());
    const QImage seen = control.window()->grab(place).toImage();
    std::map<QRgb, int> counts;
    for (int y = 0; y < seen.height(); ++y) {
        for (int x = 0; x < seen.width(); ++x) {
            ++counts[seen.pixel(x, y)];
        }
    }
    const auto background = std::max_element(counts.begin(), counts.end(),
                                             [](auto& a, auto& b) { return a.second < b.second; });
    double best = 1;
    for (const auto& [color, count] : counts) {
        best = std::max(best, contrast(color, background->first));
    }
    return best;
}

} // namespace

// With pixels as small as those of a fine screen.
class WindowLooksTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void isReadable_data();
    void isReadable();
    void cutsNoText_data();
    void cutsNoText();

private:
    void checkContrast(QWidget& window);
    void checkSizes(QWidget& window);
    QList<QWidget*> showWindows();

    MainThreadQueue m_queue;
    std::unique_ptr<NSFileDropWindow> m_main;
    std::unique_ptr<ProgressWindowController> m_controller;
};

void WindowLooksTest::initTestCase() {
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QCOMPARE(qApp->devicePixelRatio(), 2.0);
}

void WindowLooksTest::init() {
    m_controller.reset();
    m_main = std::make_unique<NSFileDropWindow>();
    m_main->resize(200, 100);
    m_main->show();
    m_controller = std::make_unique<ProgressWindowController>(m_queue);
    m_controller->setMainWindow(m_main.get());
}

QList<QWidget*> WindowLooksTest::showWindows() {
    m_controller->beginSheet();
    NSCenteringWindow& result = m_controller->result().resultWindow();
    result.show();
    QList<QWidget*> windows{m_main->findChild<SheetWindow*>(), &result};
    for (QWidget* window : windows) {
        if (!QTest::qWaitForWindowExposed(window)) {
            return {};
        }
    }
    return windows;
}

void WindowLooksTest::isReadable_data() {
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << paletteOf(QColor(239, 239, 239), Qt::white, Qt::black);
    QTest::newRow("dark") << paletteOf(QColor(45, 45, 45), QColor(30, 30, 30), Qt::white);
}

void WindowLooksTest::checkContrast(QWidget& window) {
    int checked = 0;
    for (QWidget* control : window.findChildren<QWidget*>()) {
        const auto* label = qobject_cast<QLabel*>(control);
        const bool isButton = qobject_cast<QPushButton*>(control) != nullptr;
        if (!control->isVisible() || (!isButton && (label == nullptr || label->text().isEmpty()))) {
            continue;
        }
        ++checked;
        const QPalette& palette = control->palette();
        const double meant = isButton ? contrast(palette.color(QPalette::ButtonText),
                                                 palette.color(QPalette::Button))
                                      : contrast(palette.color(QPalette::WindowText),
                                                 window.palette().color(QPalette::Window));
        const double seen = contrastSeen(*control);
        const QString found = QString("%1: %2, seen %3");
        QVERIFY2(meant >= READABLE && seen >= READABLE,
                 qPrintable(found.arg(control->objectName()).arg(meant).arg(seen)));
    }
    QVERIFY(checked >= 2);
}

void WindowLooksTest::isReadable() {
    QFETCH(QPalette, palette);
    QApplication::setPalette(palette);
    setResult(*m_controller, failure(0x2005, 2));
    m_controller->result().setAdvice("Try another cable.");
    const QList<QWidget*> windows = showWindows();
    QCOMPARE(windows.size(), 2);
    m_controller->UpdateProgress(103, 45);
    for (QWidget* window : windows) {
        QCOMPARE(window->palette().color(QPalette::Window), palette.color(QPalette::Window));
        checkContrast(*window);
    }
}

void WindowLooksTest::cutsNoText_data() {
    QTest::addColumn<int>("step");
    QTest::addColumn<quint64>("code");
    QTest::addColumn<QString>("advice");
    QTest::newRow("success") << 100 << quint64{0} << "";
    QTest::newRow("failure") << 101 << quint64{0x2005} << "";
    QTest::newRow("advice") << 102 << quint64{0x2005} << "Try another cable.";
    QTest::newRow("long advice") << 103 << quint64{0x2005} << QString("Try this. ").repeated(40);
    QTest::newRow("long name") << 104 << quint64{0x2005} << "See " + QString(100, 'M') + " there.";
}

void WindowLooksTest::checkSizes(QWidget& window) {
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        const QSize needed = label->wordWrap() ? QSize(label->minimumSizeHint().width(),
                                                       label->heightForWidth(label->width()))
                                               : label->sizeHint();
        const bool isWhole =
            label->width() >= needed.width() && label->height() >= needed.height() &&
            window.rect().contains(QRect(label->mapTo(&window, QPoint()), label->size()));
        QVERIFY2(!label->isVisible() || isWhole, qPrintable(label->objectName()));
    }
    for (const QPushButton* button : window.findChildren<QPushButton*>()) {
        QVERIFY(button->width() >= button->sizeHint().width());
        QVERIFY(button->height() >= button->sizeHint().height());
    }
}

// Neither when the windows appear nor when their text changes after that.
void WindowLooksTest::cutsNoText() {
    QFETCH(int, step);
    QFETCH(quint64, code);
    QFETCH(QString, advice);
    const QList<QWidget*> windows = showWindows();
    QCOMPARE(windows.size(), 2);
    setResult(*m_controller, failure(code, ~quint64{1}));
    m_controller->result().setAdvice(advice.toStdString());
    m_controller->UpdateProgress(step, 100);
    QCoreApplication::processEvents();
    for (QWidget* window : windows) {
        checkSizes(*window);
        window->hide();
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        checkSizes(*window);
    }
}

} // namespace flashwriter::testing

int main(int argc, char** argv) {
    qputenv("QT_SCALE_FACTOR", "2");
    QApplication application(argc, argv);
    flashwriter::testing::WindowLooksTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WindowLooksTest.moc"
