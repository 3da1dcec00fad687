#include "ui/ImageOpenPanel.h"

#include "targetfile/FileFacts.h"

#include <QGuiApplication>

#include <algorithm>

namespace flashwriter {

ImageOpenPanel::ImageOpenPanel(QWidget* parent) : QFileDialog(parent, "Select an image") {
    setFileMode(QFileDialog::ExistingFile);
    setNameFilter("Images (*.bin *.mot *.BIN *.MOT)");
    // Panels of the desktop close on whatever is chosen; only that of macOS offers images alone.
    setOption(QFileDialog::DontUseNativeDialog, QGuiApplication::platformName() != "cocoa");
    setLabelText(QFileDialog::Accept, "Select");
}

void ImageOpenPanel::startAt(const QString& path) {
    const QFileInfo file(path);
    setDirectory(file.absolutePath());
    selectFile(file.absoluteFilePath());
}

void ImageOpenPanel::accept() {
    const QStringList chosen = selectedFiles();
    const auto isImage = [](const QString& path) {
        return imageKind(path.toStdString()) != ImageKind::Other;
    };
    const bool isFolder = chosen.size() == 1 && QFileInfo(chosen.front()).isDir();
    if (isFolder || std::all_of(chosen.begin(), chosen.end(), isImage)) {
        QFileDialog::accept();
    }
}

} // namespace flashwriter
