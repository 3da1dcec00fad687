#pragma once

#include <QDialog>

namespace flashwriter {

class NSFileDropWindow;

// A dialog that hangs on the main window and keeps it from being used, closed and minimised for as
// long as it is up. The person cannot take it away: it has no close button, and Escape does
// nothing. Main thread.
class SheetWindow : public QDialog {
public:
    explicit SheetWindow(QWidget* parent = nullptr);

    // Returns at once; the window is borrowed and becomes the parent.
    void beginSheet(NSFileDropWindow& mainWindow);
    void endSheet();

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void reject() override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void place();
};

} // namespace flashwriter
