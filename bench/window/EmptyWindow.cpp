// The least that a window takes, to measure the program's beside it:
//   empty_window
#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle("Empty window");
    window.setCentralWidget(new QWidget);
    window.resize(720, 620); // as the program's main window
    window.show();
    return QApplication::exec();
}
