#include "ui/NSFileDropTextField.h"

#include "targetfile/FileFacts.h"

#include <QClipboard>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QSysInfo>
#include <QUrl>

#include <algorithm>
#include <iterator>

namespace flashwriter {

namespace {

constexpr qreal FRAME_WIDTH = 5.0;

// Some file managers name the machine in the address of a file.
bool isOfThisMachine(const QUrl& url) {
    return url.host().isEmpty() || url.host() == "localhost" ||
           url.host().compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

// What stands in a text for bytes that are none may lead to another file.
bool isLossless(const QString& path, const QUrl& url) {
    return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toUtf8()) == path.toUtf8();
}

QString pathOf(const QUrl& url) {
    const QString path = url.path(QUrl::FullyDecoded);
    const bool isPath = url.scheme() == "file" && isOfThisMachine(url) && isLossless(path, url);
    return isPath ? path : url.toString();
}

// What is copied from a terminal brings a line end, and from a file manager an address.
QString pathOfPasted(const QString& text) {
    QString line = text;
    while (line.endsWith('\n') || line.endsWith('\r')) {
        line.chop(1);
    }
    return line.startsWith("file://") ? pathOf(QUrl(line)) : line;
}

// How much of the later text is not in the earlier one, where one place was changed.
qsizetype sizeOfInserted(const QString& before, const QString& after) {
    const auto start = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto end = std::mismatch(before.rbegin(), std::make_reverse_iterator(start.first),
                                   after.rbegin(), std::make_reverse_iterator(start.second));
    return end.second.base() - start.second;
}

bool isImageName(const QString& path) {
    return imageKind(path.toStdString()) != ImageKind::Other;
}

} // namespace

NSFileDropTextField::NSFileDropTextField(QWidget* parent) : QLineEdit(parent) {
    awakeFromNib();
}

void NSFileDropTextField::awakeFromNib() {
    setAcceptDrops(true);
    connect(this, &QLineEdit::textEdited, this, [this] { tidyPasted(); });
    connect(this, &QLineEdit::textChanged, this, [this](const QString& text) { m_text = text; });
    m_isDragging = false;
}

// The text may have been pasted from either clipboard, and into another one. The clipboards are not
// asked while somebody types: their owners may take their time to answer.
void NSFileDropTextField::tidyPasted() {
    const QString pasted = text();
    if (sizeOfInserted(m_text, pasted) <= 1) {
        return;
    }
    for (const auto clipboard : {QClipboard::Clipboard, QClipboard::Selection}) {
        const QString copied = QGuiApplication::clipboard()->text(clipboard);
        const QString path = pathOfPasted(copied);
        if (path != copied && pasted.contains(copied)) {
            undo();
            insert(path);
            return;
        }
    }
}

QStringList NSFileDropTextField::fileListInDraggingInfo(const QMimeData& dragging) {
    QStringList paths;
    for (const QUrl& url : dragging.urls()) {
        paths.append(pathOf(url));
    }
    return paths;
}

bool NSFileDropTextField::acceptableObject(const QMimeData& dragging) {
    const QStringList paths = fileListInDraggingInfo(dragging);
    // Nothing says from which folder an address without one would lead.
    if (paths.size() != 1 || !paths.front().startsWith('/')) {
        return false;
    }
    const QFileInfo file(paths.front());
    return file.exists() && !file.isDir();
}

// Disabling takes the keyboard's focus away; who was typing there goes on typing there. The window
// may be behind that of the program from which the file comes, and has its focus all the same.
void NSFileDropTextField::setInDragging(bool dragging) {
    if (dragging && !m_isDragging) {
        m_hadFocus = window()->focusWidget() == this;
    }
    const bool hasEnded = !dragging && m_isDragging;
    m_isDragging = dragging;
    setEnabled(!dragging);
    if (hasEnded && m_hadFocus) {
        setFocus();
    }
    update();
}

DragOperation NSFileDropTextField::draggingEntered(const QMimeData& /*dragging*/) {
    setInDragging(true);
    return DragOperation::Generic;
}

DragOperation NSFileDropTextField::draggingUpdated(const QMimeData& /*dragging*/) {
    return DragOperation::Generic;
}

void NSFileDropTextField::draggingExited() {
    setInDragging(false);
}

bool NSFileDropTextField::performDragOperation(const QMimeData& dragging) {
    setInDragging(false);
    if (!acceptableObject(dragging)) {
        return false;
    }
    const QString path = fileListInDraggingInfo(dragging).front();
    if (!isImageName(path)) {
        return false;
    }
    setText(path);
    return true;
}

void NSFileDropTextField::concludeDragOperation() {
    setInDragging(false);
}

void NSFileDropTextField::dragEnterEvent(QDragEnterEvent* event) {
    draggingEntered(*event->mimeData());
    event->setDropAction(Qt::CopyAction); // the file itself stays where it is
    event->accept();
}

void NSFileDropTextField::dragMoveEvent(QDragMoveEvent* event) {
    draggingUpdated(*event->mimeData());
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void NSFileDropTextField::dragLeaveEvent(QDragLeaveEvent* event) {
    draggingExited();
    event->accept();
}

void NSFileDropTextField::dropEvent(QDropEvent* event) {
    const bool isTaken = performDragOperation(*event->mimeData());
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(isTaken);
    concludeDragOperation();
}

void NSFileDropTextField::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    if (!m_isDragging) {
        return;
    }
    constexpr qreal HALF = FRAME_WIDTH / 2; // a pen draws to both sides of its line
    QPainter painter(this);
    // The line is disabled now; the colour is that of a selection in use.
    QPen pen(palette().color(QPalette::Active, QPalette::Highlight), FRAME_WIDTH);
    pen.setJoinStyle(Qt::MiterJoin);
    painter.setPen(pen);
    painter.drawRect(QRectF(rect()).adjusted(HALF, HALF, -HALF, -HALF));
}

} // namespace flashwriter
