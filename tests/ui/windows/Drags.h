// A drag's steps over a widget, as the toolkit tells it of them.
#pragma once

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QUrl>

#include <memory>

namespace flashwriter::testing {

inline std::unique_ptr<QMimeData> dragOf(const QList<QUrl>& urls) {
    auto dragging = std::make_unique<QMimeData>();
    dragging->setUrls(urls);
    return dragging;
}

inline std::unique_ptr<QMimeData> dragOfFiles(const QStringList& paths) {
    QList<QUrl> urls;
    for (const QString& path : paths) {
        urls.append(QUrl::fromLocalFile(path));
    }
    return dragOf(urls);
}

// Each of these three says whether the receiver took the step, and as what it then counts.
struct DragAnswer {
    bool isAccepted;
    Qt::DropAction action;
};

inline DragAnswer enter(QObject& receiver, const QMimeData& dragging, QPoint at = {3, 3}) {
    QDragEnterEvent event(at, Qt::CopyAction | Qt::MoveAction, &dragging, Qt::LeftButton, {});
    event.setAccepted(false);
    QCoreApplication::sendEvent(&receiver, &event);
    return {event.isAccepted(), event.dropAction()};
}

inline DragAnswer moveOn(QObject& receiver, const QMimeData& dragging, QPoint at = {4, 4}) {
    QDragMoveEvent event(at, Qt::CopyAction | Qt::MoveAction, &dragging, Qt::LeftButton, {});
    event.setAccepted(false);
    QCoreApplication::sendEvent(&receiver, &event);
    return {event.isAccepted(), event.dropAction()};
}

inline DragAnswer drop(QObject& receiver, const QMimeData& dragging, QPoint at = {4, 4}) {
    QDropEvent event(at, Qt::CopyAction | Qt::MoveAction, &dragging, Qt::LeftButton, {});
    event.setAccepted(false);
    QCoreApplication::sendEvent(&receiver, &event);
    return {event.isAccepted(), event.dropAction()};
}

inline void leave(QObject& receiver) {
    QDragLeaveEvent event;
    QCoreApplication::sendEvent(&receiver, &event);
}

} // namespace flashwriter::testing
