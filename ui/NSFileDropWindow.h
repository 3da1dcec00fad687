#pragma once

#include "ui/NSFileDropTextField.h"

#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <utility>

namespace flashwriter {

// The main window: knows the field that dropped files are meant for and takes none itself; presses
// its default button on Return; can be neither closed nor minimised while a sheet is up. Main
// thread.
class NSFileDropWindow : public QMainWindow {
public:
    explicit NSFileDropWindow(QWidget* parent = nullptr);

    // Borrowed. Set once, at the start.
    void setTrgetTextField(NSFileDropTextField* field);

    // The answer to a drag over the window: always none. The field is disabled and enabled on the
    // way, so it is enabled afterwards.
    DragOperation draggingEntered(const QMimeData& dragging);

    // The button that minimises the window.
    void setMiniaturizeEnabled(bool enabled);
    bool isMiniaturizeEnabled() const { return m_isMiniaturizeEnabled; }

    // See SheetWindow, which calls it.
    void setSheetUp(bool isUp);
    bool isSheetUp() const { return m_isSheetUp; }
    // Is called each time that a sheet has been taken away.
    void whenSheetEnds(std::function<void()> action) { m_sheetEnd = std::move(action); }

    // While it is held the window does not close. Who asks it to has not asked in vain: it closes
    // soon after.
    void holdClose(bool isHeld);

protected:
    bool event(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void awakeFromNib();

    QPointer<NSFileDropTextField> m_trgetTextField;
    bool m_isMiniaturizeEnabled = true;
    bool m_isSheetUp = false;
    bool m_isCloseHeld = false;
    bool m_isCloseDue = false;
    std::function<void()> m_sheetEnd;
};

} // namespace flashwriter
