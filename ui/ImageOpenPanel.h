#pragma once

#include <QFileDialog>

namespace flashwriter {

// Lets the person choose one image file: .bin or .mot, in any case of letters. A file of another
// kind, which can be typed here as well, does not close the panel. Main thread.
class ImageOpenPanel : public QFileDialog {
public:
    explicit ImageOpenPanel(QWidget* parent = nullptr);

protected:
    void accept() override;
};

} // namespace flashwriter
