#include "tests/support/desktop/DesktopProgram.h"

#include "tests/support/Eventually.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace flashwriter::testing {

namespace {

std::string newDirectory() {
    std::string pattern = desktop().directory() + "/user-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no directory for a user");
    }
    return pattern;
}

ChildOptions starting(const std::string& program, const std::string& linesLibrary,
                      const std::string& home, const std::string& errorFile) {
    ChildOptions options;
    options.arguments = {program};
    options.environment = {"LD_PRELOAD=" + linesLibrary, "HOME=" + home};
    options.errorFile = errorFile;
    return options;
}

// The times are the fields 14 and 15; the second, a name, may hold anything.
long processorTimeIn(const std::string& statusFile) {
    std::ifstream file(statusFile);
    const std::string line(std::istreambuf_iterator<char>(file), {});
    std::istringstream fields(line.substr(line.rfind(')') + 2));
    std::string skipped;
    for (int i = 0; i < 11; ++i) {
        fields >> skipped;
    }
    long user = 0;
    long system = 0;
    fields >> user >> system;
    return user + system;
}

// What a label shows is its description; an editable combo box has a field of its own in it.
std::string textOf(const Accessible& control) {
    const std::string role = control.role();
    if (role == "label") {
        return control.description();
    }
    if (role != "combo box") {
        return control.text();
    }
    for (const Accessible& part : control.children()) {
        if (part.role() == "text") {
            return part.text();
        }
    }
    return "";
}

} // namespace

DesktopProgram::DesktopProgram(const std::string& program, const std::string& linesLibrary)
    : m_home(newDirectory()), m_errorFile(m_home + ".err"),
      m_process(starting(program, linesLibrary, m_home, m_errorFile)), m_reader(m_process.pid()) {
    if (!eventually([] { return activeWindow() == MAIN_WINDOW; })) {
        throw std::runtime_error("the program shows no window: " + diagnostics());
    }
    m_reader.get(LOG);
}

DesktopProgram::~DesktopProgram() {
    std::error_code ignored;
    std::filesystem::remove_all(m_home, ignored);
    std::filesystem::remove(m_errorFile, ignored);
}

std::string DesktopProgram::diagnostics() const {
    std::ifstream file(m_errorFile, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string DesktopProgram::processDirectory() const {
    return "/proc/" + std::to_string(m_process.pid());
}

long DesktopProgram::processorTime() const {
    return processorTimeIn(processDirectory() + "/stat");
}

// The first thread goes by the number of the process.
long DesktopProgram::windowProcessorTime() const {
    return processorTimeIn(processDirectory() + "/task/" + std::to_string(m_process.pid()) +
                           "/stat");
}

void DesktopProgram::clickOn(const std::string& name) const {
    click(m_reader.get(name).place().centre());
}

void DesktopProgram::enter(const std::string& name, const std::string& text) const {
    clickOn(name);
    press("ctrl+a");
    press("Delete");
    if (!text.empty()) {
        testing::type(text);
    }
    press("Delete"); // what the list would complete it to
    if (!waitUntilShown(name, text)) {
        throw std::runtime_error(name + " shows " + shown(name) + "\n" + m_reader.everything());
    }
}

void DesktopProgram::choose(const std::string& name, std::size_t index) const {
    const std::vector<std::string> texts = items(name);
    clickOn(name);
    for (std::size_t i = 0; i < texts.size(); ++i) { // to the last, from wherever it is
        press("Down");
    }
    for (std::size_t i = texts.size() - 1; i > index; --i) {
        press("Up");
    }
    if (!waitUntilShown(name, texts.at(index))) {
        throw std::runtime_error(name + " shows " + shown(name) + "\n" + m_reader.everything());
    }
}

std::vector<std::string> DesktopProgram::items(const std::string& name) const {
    std::vector<std::string> texts;
    for (const Accessible& part : m_reader.get(name).children()) {
        if (part.role() == "list") {
            for (const Accessible& item : part.children()) {
                texts.push_back(item.name());
            }
        }
    }
    return texts;
}

std::string DesktopProgram::shown(const std::string& name) const {
    const auto control = m_reader.find(name);
    return control ? textOf(*control) : "";
}

bool DesktopProgram::waitUntilShown(const std::string& name, const std::string& text) const {
    return m_reader.waitUntil(name, [&](const Accessible& it) { return textOf(it) == text; });
}

bool DesktopProgram::waitUntilEnabled(const std::string& name, bool enabled) const {
    return m_reader.waitUntil(name, [&](const Accessible& it) { return it.enabled() == enabled; });
}

bool DesktopProgram::waitUntilFocused(const std::string& name) const {
    return m_reader.waitUntil(name, [](const Accessible& it) {
        const auto parts = it.children();
        return it.focused() || std::any_of(parts.begin(), parts.end(),
                                           [](const Accessible& part) { return part.focused(); });
    });
}

void DesktopProgram::startWrite(const std::string& port, const std::string& file) const {
    enter(PORT, port);
    enter(IMAGE_FILE, file);
    clickOn("writeButton");
}

std::string DesktopProgram::result() const {
    const std::string text = textOf(m_reader.get(RESULT));
    if (!m_reader.waitUntil("okButton", [](const Accessible& it) { return it.focused(); })) {
        throw std::runtime_error("the result does not have the keyboard:\n" +
                                 m_reader.everything());
    }
    return text;
}

void DesktopProgram::dismissResult() const {
    press("Return");
    if (!m_reader.waitUntilGone(RESULT)) {
        throw std::runtime_error("the result stays:\n" + m_reader.everything());
    }
    if (!waitUntilEnabled("monitorOpenButton")) {
        throw std::runtime_error("the main window stays blocked:\n" + m_reader.everything());
    }
}

std::string DesktopProgram::write(const std::string& port, const std::string& file) const {
    startWrite(port, file);
    const std::string text = result();
    dismissResult();
    return text;
}

// As the window manager draws it: a line all around, a title above, a handle below.
Rectangle DesktopProgram::frame() const {
    constexpr int LINE = 1;
    constexpr int TITLE = 20;
    constexpr int HANDLE = 5;
    for (const Accessible& window : m_reader.windows()) {
        if (window.name() == MAIN_WINDOW && window.showing()) {
            const Rectangle inner = window.place();
            return {inner.x - LINE, inner.y - TITLE, inner.width + 2 * LINE,
                    inner.height + TITLE + HANDLE};
        }
    }
    throw std::runtime_error("no main window on the screen:\n" + m_reader.everything());
}

void DesktopProgram::closeByFrame() const {
    clickFrame(11);
}

void DesktopProgram::minimiseByFrame() const {
    clickFrame(44);
}

// fromRight: pixels from the frame's right edge.
void DesktopProgram::clickFrame(int fromRight) const {
    const Rectangle outer = frame();
    click({outer.x + outer.width - fromRight, outer.y + 10});
}

} // namespace flashwriter::testing
