#pragma once

#include <QDialog>
#include <QPointF>
#include <QRectF>

namespace flashwriter {

// A window that appears in the middle of another one. Main thread.
class NSCenteringWindow : public QDialog {
public:
    explicit NSCenteringWindow(QWidget* parent = nullptr);

    // Once, when the window's description has been loaded: forgets the stored point.
    void awakeFromNib();

    // Stores the point at which this window, with its frame as it is now, stands in the middle of
    // the parent's frame (screen coordinates). The window is not moved here, but every time that
    // it is placed from now on.
    void makeCenteringPoint(const QRectF& parent);

    // Places the window's frame; display: and draws it at once. The stored point replaces the
    // rectangle's origin when both its coordinates are other than 0. A coordinate of exactly 0
    // stands for no point, so a window that the middle would put at the screen's very edge stays
    // where the platform puts it. A place or a size that no window can have leaves it as it is.
    void setFrame(const QRectF& frame, bool display);

    QPointF dispPoint() const { return m_dispPoint; }

    void setVisible(bool visible) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QSizeF frameSize() const;

    QPointF m_dispPoint;
};

} // namespace flashwriter
