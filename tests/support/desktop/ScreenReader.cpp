#include "tests/support/desktop/ScreenReader.h"

#include "tests/support/Eventually.h"

#include <sstream>
#include <stdexcept>

namespace flashwriter::testing {

namespace {

// Milliseconds. A program that opens a port is busy for longer; it is asked again then.
constexpr int ANSWER_LIMIT = 500;

std::string nameOf(const Accessible& thing) {
    const std::string role = thing.role();
    if (role == "label" && !thing.related(ATSPI_RELATION_LABEL_FOR).empty()) {
        return "";
    }
    if (role != "combo box") {
        return thing.name();
    }
    for (const Accessible& label : thing.related(ATSPI_RELATION_LABELLED_BY)) {
        if (label.role() == "label") {
            return label.name();
        }
    }
    return "";
}

std::optional<Accessible> findIn(const std::vector<Accessible>& things, const std::string& name) {
    for (const Accessible& thing : things) {
        if (!thing.showing()) {
            continue;
        }
        if (nameOf(thing) == name) {
            return thing;
        }
        if (auto found = findIn(thing.children(), name)) {
            return found;
        }
    }
    return std::nullopt;
}

void describe(const std::vector<Accessible>& things, const std::string& indent,
              std::ostream& text) {
    for (const Accessible& thing : things) {
        const Rectangle place = thing.place();
        text << indent << thing.role() << " \"" << nameOf(thing) << "\" text \"" << thing.text()
             << "\" description \"" << thing.description() << "\" " << place.width << 'x'
             << place.height << '+' << place.x << '+' << place.y
             << (thing.enabled() ? "" : " disabled") << (thing.focused() ? " focused" : "")
             << (thing.showing() ? "" : " hidden") << '\n';
        describe(thing.children(), indent + "  ", text);
    }
}

} // namespace

ScreenReader::ScreenReader(pid_t program) : m_program(program) {
    atspi_set_timeout(ANSWER_LIMIT, ANSWER_LIMIT);
    if (atspi_init() > 1) { // 1: it has been done before
        throw std::runtime_error("no accessibility bus");
    }
}

std::optional<Accessible> ScreenReader::application() const {
    const Accessible desktop(atspi_get_desktop(0));
    for (const Accessible& application : desktop.children()) {
        if (application.processId() == m_program) {
            return application;
        }
    }
    return std::nullopt;
}

std::vector<Accessible> ScreenReader::windows() const {
    const auto program = application();
    return program ? program->children() : std::vector<Accessible>();
}

std::optional<Accessible> ScreenReader::find(const std::string& name) const {
    return findIn(windows(), name);
}

Accessible ScreenReader::get(const std::string& name) const {
    std::optional<Accessible> found;
    if (!eventually([&] {
            found = find(name);
            return found.has_value();
        })) {
        throw std::runtime_error("no " + name + " on the screen:\n" + everything());
    }
    return *found;
}

bool ScreenReader::waitUntil(const std::string& name,
                             const std::function<bool(const Accessible&)>& condition) const {
    return eventually([&] {
        const auto found = find(name);
        return found && condition(*found);
    });
}

bool ScreenReader::waitUntilGone(const std::string& name) const {
    return eventually([&] { return !find(name); });
}

std::string ScreenReader::everything() const {
    std::ostringstream text;
    describe(windows(), "", text);
    return text.str();
}

} // namespace flashwriter::testing
