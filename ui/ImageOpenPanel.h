#pragma once

#include <QFileDialog>

namespace flashwriter {

// Lets the person choose one image file: .bin or .mot, in any case of letters. A file of another
// kind, which can be typed here as well, does not close the panel. Main thread.
class ImageOpenPanel : public QFileDialog {
public:
    explicit ImageOpenPanel(QWidget* parent = nullptr);

    // Begins in the folder of this file, with it chosen. The file is there: the toolkit looks at it
    // before it returns, however long the system takes.
    void startAt(const QString& path);

protected:
    void accept() override;
};

} // namespace flashwriter
