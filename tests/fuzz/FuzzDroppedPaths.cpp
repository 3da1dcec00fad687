// Drags with any contents over the line for the image file's path.
//
// Input: a letter for the way in which the drag carries its list, one for what happens to it, then
// the list, one entry on a line. "@" in it stands for the folder with the target's files.
#include "tests/fuzz/Require.h"
#include "tests/fuzz/ScratchFolder.h"
#include "tests/ui/windows/Drags.h"
#include "ui/NSFileDropTextField.h"

#include <sys/stat.h>

#include <string_view>

namespace flashwriter::fuzz {
namespace {

namespace fs = std::filesystem;

const QString BEFORE("/what/was/there.bin");

class Files {
public:
    Files() {
        for (const char* name : {"image.bin", "image.MOT", "image.hex", "image", ".bin",
                                 "two words.bin", "100%25.bin", "line\nend.mot", "\xC3\xA9.bin",
                                 "not\xFF"
                                 "utf8.bin"}) {
            require(m_folder.create(name), "a file of the target's");
        }
        fs::create_directory(m_folder.path("folder.bin"));
        fs::create_symlink("image.bin", m_folder.path("link.mot"));
        fs::create_symlink("nothing", m_folder.path("broken.bin"));
        fs::create_symlink("folder.bin", m_folder.path("folderlink.mot"));
    }

    // The text with the folder's path for each "@".
    std::string withFolder(std::string_view text) const {
        std::string result;
        for (const char character : text) {
            result += character == '@' ? m_folder.path() : std::string(1, character);
        }
        return result;
    }

private:
    ScratchFolder m_folder;
};

std::unique_ptr<QMimeData> dragOfList(char way, const std::string& list) {
    using namespace flashwriter::testing;
    const QStringList lines = QString::fromStdString(list).split('\n');
    if (way == 'p') {
        return dragOfFiles(lines);
    }
    if (way == 'a') {
        return dragOf(QUrl::fromStringList(lines));
    }
    auto dragging = std::make_unique<QMimeData>();
    dragging->setData(way == 't' ? "text/plain" : "text/uri-list", QByteArray::fromStdString(list));
    return dragging;
}

// Asks the system itself, and looks for the extension in another way than the program.
bool isImageFile(const QString& path) {
    struct stat status {};
    const std::string name = path.toStdString();
    if (name.find('\0') != std::string::npos || ::stat(name.c_str(), &status) != 0 ||
        S_ISDIR(status.st_mode)) {
        return false;
    }
    const QString last = path.section('/', -1, -1, QString::SectionSkipEmpty);
    return last.lastIndexOf('.') > 0 && (last.endsWith(".bin", Qt::CaseInsensitive) ||
                                         last.endsWith(".mot", Qt::CaseInsensitive));
}

// Whether everybody has to take the drag for one image file.
bool isPlainlyOneImage(const QMimeData& dragging) {
    const QList<QUrl> urls = dragging.urls();
    return urls.size() == 1 && urls[0].scheme() == "file" && urls[0].host().isEmpty() &&
           urls[0].path().startsWith('/') && isImageFile(urls[0].path(QUrl::FullyDecoded));
}

void judgeDrop(const NSFileDropTextField& field, const QMimeData& dragging, bool isTaken) {
    if (isTaken) {
        require(dragging.urls().size() == 1, "only one file is taken");
        require(field.text().startsWith('/') && isImageFile(field.text()),
                "what is taken is an image file that is there");
    } else {
        require(field.text() == BEFORE, "a refused drop leaves the text");
    }
    require(isTaken || !isPlainlyOneImage(dragging), "one image file is taken");
}

void hoverOver(NSFileDropTextField& field, const QMimeData& dragging) {
    using namespace flashwriter::testing;
    require(enter(field, dragging).isAccepted && moveOn(field, dragging).isAccepted,
            "a drag may hover");
    require(field.isDragging() && !field.isEnabled(), "the line shows a drag that hovers");
    require(field.text() == BEFORE, "a drag that hovers leaves the text");
}

void drag(char course, const QMimeData& dragging) {
    NSFileDropTextField field;
    field.setText(BEFORE);
    if (course == 'd') {
        // The toolkit itself delivers no drop that has not entered.
        judgeDrop(field, dragging, field.performDragOperation(dragging));
    } else if (course == 'l') {
        hoverOver(field, dragging);
        flashwriter::testing::leave(field);
        require(field.text() == BEFORE, "a drag that leaves leaves the text");
    } else {
        hoverOver(field, dragging);
        judgeDrop(field, dragging, flashwriter::testing::drop(field, dragging).isAccepted);
    }
    require(!field.isDragging() && field.isEnabled(), "no drag is left");
}

} // namespace
} // namespace flashwriter::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace flashwriter::fuzz;
    static const Files files;
    const std::string_view input(reinterpret_cast<const char*>(bytes), size);
    if (size >= 2) {
        drag(input[1], *dragOfList(input[0], files.withFolder(input.substr(2))));
    }
    return 0;
}
