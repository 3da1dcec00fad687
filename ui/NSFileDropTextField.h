#pragma once

#include <QLineEdit>
#include <QStringList>

class QMimeData;

namespace flashwriter {

// What a place answers to a drag that hovers over it.
enum class DragOperation : std::uint32_t { None = 0, Generic = 4 };

// A line for the path of an image file, which takes one file that is dropped on it. While a file
// hovers over it, it is disabled and framed. Main thread.
class NSFileDropTextField : public QLineEdit {
public:
    explicit NSFileDropTextField(QWidget* parent = nullptr);

    // The dropped paths in the order given. What is not a file of this machine, or has a name that
    // is not UTF-8, is in the list as its address, at which no file stands.
    static QStringList fileListInDraggingInfo(const QMimeData& dragging);

    // Whether a drag is one thing that is there and no directory.
    static bool acceptableObject(const QMimeData& dragging);

    // Disables and frames the line, or enables it and takes the frame away.
    void setInDragging(bool dragging);
    bool isDragging() const { return m_isDragging; }

    // The operations of a drag. Entering and updated do not look at what is dragged; the drop does:
    // it takes the path into the line when it is one file named .bin or .mot, in any case of
    // letters, and refuses it otherwise.
    DragOperation draggingEntered(const QMimeData& dragging);
    static DragOperation draggingUpdated(const QMimeData& dragging);
    void draggingExited();
    bool performDragOperation(const QMimeData& dragging);
    void concludeDragOperation();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void awakeFromNib();
    void tidyPasted();

    bool m_isDragging = false;
    QString m_text;          // before the edit that is being told
    bool m_hadFocus = false; // before a drag disabled the line
};

} // namespace flashwriter
