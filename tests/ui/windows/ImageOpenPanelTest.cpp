#include "ui/ImageOpenPanel.h"

#include <QFileSystemModel>
#include <QLineEdit>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

namespace flashwriter::testing {

// Of the toolkit's own panel: that of a desktop would do the same, but not here.
class ImageOpenPanelTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void offersImagesOnly();
    void saysWhatItIsFor();
    void closesOnAnImage_data();
    void closesOnAnImage();
    void staysOnAnythingElse_data();
    void staysOnAnythingElse();
    void opensAFolder();
    void isCancelled();

private:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    void type(const QString& text) {
        m_panel->findChild<QLineEdit*>("fileNameEdit")->setText(text);
        QMetaObject::invokeMethod(m_panel.get(), "accept");
    }
    QStringList offered() const;

    QTemporaryDir m_folder;
    std::unique_ptr<ImageOpenPanel> m_panel;
};

// The toolkit would keep the folder last used in a file of the person's.
void ImageOpenPanelTest::initTestCase() {
    for (const auto format : {QSettings::NativeFormat, QSettings::IniFormat}) {
        QSettings::setPath(format, QSettings::UserScope, m_folder.filePath("settings"));
    }
    for (const char* name : {"image.bin", "FIRMWARE.MOT", "Mixed.bIn", "image.hex", "image", ".bin",
                             "image.bin.txt"}) {
        QVERIFY(QFile(path(name)).open(QIODevice::WriteOnly));
    }
    QVERIFY(QDir(m_folder.path()).mkdir("folder"));
    QVERIFY(QDir(m_folder.path()).mkdir("folder.hex"));
}

void ImageOpenPanelTest::init() {
    m_panel = std::make_unique<ImageOpenPanel>();
    m_panel->setDirectory(m_folder.path());
    m_panel->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_panel.get()));
}

void ImageOpenPanelTest::cleanup() {
    m_panel.reset();
}

QStringList ImageOpenPanelTest::offered() const {
    const auto* tree = m_panel->findChild<QTreeView*>("treeView");
    QStringList names;
    for (int row = 0; row < tree->model()->rowCount(tree->rootIndex()); ++row) {
        names.append(tree->model()->index(row, 0, tree->rootIndex()).data().toString());
    }
    names.sort();
    return names;
}

void ImageOpenPanelTest::offersImagesOnly() {
    QTRY_COMPARE(offered(),
                 QStringList({"FIRMWARE.MOT", "Mixed.bIn", "folder", "folder.hex", "image.bin"}));
}

void ImageOpenPanelTest::saysWhatItIsFor() {
    QCOMPARE(m_panel->windowTitle(), QString("Select an image"));
    QCOMPARE(m_panel->fileMode(), QFileDialog::ExistingFile);
    QCOMPARE(m_panel->acceptMode(), QFileDialog::AcceptOpen);
    QCOMPARE(m_panel->labelText(QFileDialog::Accept), QString("Select"));
    QCOMPARE(m_panel->nameFilters(), QStringList("Images (*.bin *.mot *.BIN *.MOT)"));
}

void ImageOpenPanelTest::closesOnAnImage_data() {
    QTest::addColumn<QString>("name");
    for (const char* name : {"image.bin", "FIRMWARE.MOT", "Mixed.bIn"}) {
        QTest::newRow(name) << QString(name);
    }
}

void ImageOpenPanelTest::closesOnAnImage() {
    QFETCH(QString, name);
    type(name);
    QVERIFY(!m_panel->isVisible());
    QCOMPARE(m_panel->result(), int{QDialog::Accepted});
    QCOMPARE(m_panel->selectedFiles(), QStringList(path(name)));
}

void ImageOpenPanelTest::staysOnAnythingElse_data() {
    QTest::addColumn<QString>("name");
    for (const char* name : {"image.hex", "image", ".bin", "image.bin.txt", "\"image.hex\""}) {
        QTest::newRow(name) << QString(name);
    }
}

void ImageOpenPanelTest::staysOnAnythingElse() {
    QFETCH(QString, name);
    const QSignalSpy finished(m_panel.get(), &QDialog::finished);
    type(name);
    QVERIFY(m_panel->isVisible());
    QCOMPARE(finished.size(), 0);
    type("image.bin");
    QVERIFY(!m_panel->isVisible());
}

void ImageOpenPanelTest::opensAFolder() {
    for (const char* name : {"folder", "folder.hex"}) {
        m_panel->setDirectory(m_folder.path());
        type(name);
        QVERIFY(m_panel->isVisible());
        QCOMPARE(m_panel->directory().absolutePath(), path(name));
    }
}

void ImageOpenPanelTest::isCancelled() {
    QTest::keyClick(m_panel.get(), Qt::Key_Escape);
    QVERIFY(!m_panel->isVisible());
    QCOMPARE(m_panel->result(), int{QDialog::Rejected});
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::ImageOpenPanelTest)
#include "ImageOpenPanelTest.moc"
