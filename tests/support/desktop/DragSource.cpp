// A window to drag files out of, as a file manager's is:
//   drag-source [file]...
// Whatever is dragged out of it carries the list of these files, also when there are none.
#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

namespace {

class DragSource : public QLabel {
public:
    explicit DragSource(const QStringList& files) : QLabel("Drag me") {
        for (const QString& file : files) {
            m_files.append(QUrl::fromLocalFile(file));
        }
        setWindowTitle("Files");
        setAlignment(Qt::AlignCenter);
    }

protected:
    void mouseMoveEvent(QMouseEvent* event) override {
        if (event->buttons().testFlag(Qt::LeftButton)) {
            auto* content = new QMimeData;
            content->setData("text/uri-list", {}); // there, even when it is empty
            content->setUrls(m_files);
            auto* drag = new QDrag(this);
            drag->setMimeData(content);
            drag->exec(Qt::CopyAction);
        }
    }

private:
    QList<QUrl> m_files;
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    DragSource window(QApplication::arguments().mid(1));
    window.setGeometry(20, 40, 160, 120);
    window.show();
    return QApplication::exec();
}
