#include "ui/NSCenteringWindow.h"

#include <QTest>

#include <limits>

namespace flashwriter::testing {

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

} // namespace

// The window system of these tests draws nothing around a window that has not been shown.
class NSCenteringWindowTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void hasNoPointAtFirst();
    void forgetsItsPointWhenLoaded();
    void computesThePoint_data();
    void computesThePoint();
    void isNotMovedByThePointAlone();
    void placesItsFrameAtThePoint();
    void drawsAtOnceWhenAsked();
    void ignoresAPointWithAZero_data();
    void ignoresAPointWithAZero();
    void ignoresWhatNoScreenHas_data();
    void ignoresWhatNoScreenHas();
    void ignoresASizeThatNoScreenHas();
    void appearsAtThePoint();
    void appearsWhereItStoodWhenThePointHasAZero();

private:
    std::unique_ptr<NSCenteringWindow> m_window;
};

void NSCenteringWindowTest::init() {
    m_window = std::make_unique<NSCenteringWindow>();
    m_window->resize(200, 100);
    m_window->move(31, 37);
}

void NSCenteringWindowTest::hasNoPointAtFirst() {
    QCOMPARE(m_window->dispPoint(), QPointF(0, 0));
}

void NSCenteringWindowTest::forgetsItsPointWhenLoaded() {
    m_window->makeCenteringPoint(QRectF(10, 20, 600, 400));
    m_window->awakeFromNib();
    QCOMPARE(m_window->dispPoint(), QPointF(0, 0));
}

void NSCenteringWindowTest::computesThePoint_data() {
    QTest::addColumn<QRectF>("parent");
    QTest::addColumn<QPointF>("point");
    QTest::newRow("larger parent") << QRectF(10, 20, 600, 400) << QPointF(210, 170);
    QTest::newRow("odd sizes") << QRectF(0, 0, 301, 203) << QPointF(50.5, 51.5);
    QTest::newRow("smaller parent") << QRectF(500, 300, 100, 50) << QPointF(450, 275);
    QTest::newRow("screen on the left") << QRectF(-1000, -500, 400, 300) << QPointF(-900, -400);
    QTest::newRow("fractions") << QRectF(0.25, 0.5, 200, 100) << QPointF(0.25, 0.5);
    QTest::newRow("no parent") << QRectF(0, 0, 0, 0) << QPointF(-100, -50);
    QTest::newRow("middle at the left edge") << QRectF(0, 10, 200, 300) << QPointF(0, 110);
}

void NSCenteringWindowTest::computesThePoint() {
    QFETCH(QRectF, parent);
    m_window->makeCenteringPoint(parent);
    QTEST(m_window->dispPoint(), "point");
}

void NSCenteringWindowTest::isNotMovedByThePointAlone() {
    m_window->makeCenteringPoint(QRectF(10, 20, 600, 400));
    QCOMPARE(m_window->pos(), QPoint(31, 37));
}

void NSCenteringWindowTest::placesItsFrameAtThePoint() {
    m_window->makeCenteringPoint(QRectF(10, 20, 600, 400));
    m_window->setFrame(QRectF(5, 6, 220, 130), true);
    QCOMPARE(m_window->frameGeometry(), QRect(210, 170, 220, 130));
    m_window->setFrame(QRectF(7, 8, 180, 90), false); // and every time from then on
    QCOMPARE(m_window->frameGeometry(), QRect(210, 170, 180, 90));
}

void NSCenteringWindowTest::drawsAtOnceWhenAsked() {
    class Drawn : public NSCenteringWindow {
    public:
        int m_times = 0;

    protected:
        void paintEvent(QPaintEvent* /*event*/) override { ++m_times; }
    } window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QRectF frame = window.frameGeometry();
    const int before = window.m_times;
    window.setFrame(frame, false);
    QCOMPARE(window.m_times, before);
    window.setFrame(frame, true);
    QCOMPARE(window.m_times, before + 1);
}

void NSCenteringWindowTest::ignoresAPointWithAZero_data() {
    QTest::addColumn<QRectF>("parent"); // twice the size of the window
    QTest::newRow("x") << QRectF(-100, 20, 400, 200);
    QTest::newRow("y") << QRectF(20, -50, 400, 200);
    QTest::newRow("both") << QRectF(-100, -50, 400, 200);
    QTest::newRow("x of no number, y") << QRectF(NOT_A_NUMBER, -50, 400, 200);
}

void NSCenteringWindowTest::ignoresAPointWithAZero() {
    QFETCH(QRectF, parent);
    m_window->makeCenteringPoint(parent);
    m_window->setFrame(QRectF(61, 62, 220, 130), true);
    QCOMPARE(m_window->frameGeometry(), QRect(61, 62, 220, 130));
}

void NSCenteringWindowTest::ignoresWhatNoScreenHas_data() {
    QTest::addColumn<QRectF>("parent");
    QTest::newRow("x is no number") << QRectF(NOT_A_NUMBER, 20, 600, 400);
    QTest::newRow("y is no number") << QRectF(10, NOT_A_NUMBER, 600, 400);
    QTest::newRow("neither is") << QRectF(NOT_A_NUMBER, NOT_A_NUMBER, 600, 400);
    QTest::newRow("width is no number") << QRectF(10, 20, NOT_A_NUMBER, 400);
    QTest::newRow("infinite") << QRectF(INFINITE, -INFINITE, 600, 400);
    QTest::newRow("far right") << QRectF(1e300, 20, 600, 400);
    QTest::newRow("far up") << QRectF(10, -3e9, 600, 400);
}

// Such a point stands in for the origin that was asked for, all the same.
void NSCenteringWindowTest::ignoresWhatNoScreenHas() {
    QFETCH(QRectF, parent);
    m_window->makeCenteringPoint(parent);
    m_window->setFrame(QRectF(61, 62, 220, 130), true);
    QCOMPARE(m_window->frameGeometry(), QRect(31, 37, 220, 130));
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QCOMPARE(m_window->size(), QSize(220, 130));
}

void NSCenteringWindowTest::ignoresASizeThatNoScreenHas() {
    for (const double size : {NOT_A_NUMBER, INFINITE, -INFINITE, 1e300}) {
        m_window->setFrame(QRectF(61, 62, size, 130), false);
        QCOMPARE(m_window->frameGeometry(), QRect(61, 62, 200, 100));
        m_window->setFrame(QRectF(61, 62, 220, size), false);
        QCOMPARE(m_window->frameGeometry(), QRect(61, 62, 200, 100));
    }
}

void NSCenteringWindowTest::appearsAtThePoint() {
    m_window->makeCenteringPoint(QRectF(100, 120, 600, 400));
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QCOMPARE(m_window->pos(), QPoint(300, 270));
    m_window->hide();
    m_window->move(3, 4);
    m_window->show(); // again
    QCOMPARE(m_window->pos(), QPoint(300, 270));
}

void NSCenteringWindowTest::appearsWhereItStoodWhenThePointHasAZero() {
    m_window->makeCenteringPoint(QRectF(0, 120, 200, 400));
    QCOMPARE(m_window->dispPoint().x(), 0.0);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QCOMPARE(m_window->pos(), QPoint(31, 37));
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::NSCenteringWindowTest)
#include "NSCenteringWindowTest.moc"
