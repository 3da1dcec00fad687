#include "ui/ImageOpenPanel.h"

#include "targetfile/PathExtension.h"

#include <algorithm>

namespace flashwriter {

namespace {

bool isImageName(const QString& path) {
    const std::string name = path.toStdString();
    return hasPathExtension(name, "bin") || hasPathExtension(name, "mot");
}

} // namespace

ImageOpenPanel::ImageOpenPanel(QWidget* parent) : QFileDialog(parent, "Select an image") {
    setFileMode(QFileDialog::ExistingFile);
    setNameFilter("Images (*.bin *.mot)");
    setLabelText(QFileDialog::Accept, "Select");
}

void ImageOpenPanel::accept() {
    const QStringList chosen = selectedFiles();
    const bool isFolder = chosen.size() == 1 && QFileInfo(chosen.front()).isDir();
    if (isFolder || std::all_of(chosen.begin(), chosen.end(), isImageName)) {
        QFileDialog::accept();
    }
}

} // namespace flashwriter
