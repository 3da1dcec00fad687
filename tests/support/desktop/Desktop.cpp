#include "tests/support/desktop/Desktop.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace flashwriter::testing {

namespace {

ChildOptions tool(std::vector<std::string> arguments) {
    ChildOptions options;
    options.arguments = {"/usr/bin/env"};
    options.arguments.insert(options.arguments.end(), arguments.begin(), arguments.end());
    return options;
}

// The first line that a service prints once it is ready to serve.
std::string firstLine(ChildProcess& service, const char* what) {
    const auto isThere = [&] { return service.output().find('\n') != std::string::npos; };
    if (!service.waitFor(isThere)) {
        throw std::runtime_error(std::string(what) + " does not start: " + service.error());
    }
    return service.output().substr(0, service.output().find('\n'));
}

// The X server removes its socket when it is asked to end, and only then.
void end(std::unique_ptr<ChildProcess>& service) {
    if (service) {
        service->signal(SIGTERM);
        service->wait();
        service.reset();
    }
}

void set(const char* name, const std::string& value) {
    ::setenv(name, value.c_str(), 1); // NOLINT(concurrency-mt-unsafe): before there are threads
}

// What a person's own desktop says in the environment is not to reach the test's.
void forgetOtherDesktops() {
    for (const char* name :
         {"AT_SPI_BUS_ADDRESS", "DESKTOP_SESSION", "GTK_MODULES", "NO_AT_BRIDGE",
          "QT_ACCESSIBILITY", "QT_QPA_PLATFORM", "QT_QPA_PLATFORMTHEME", "QT_SCALE_FACTOR",
          "QT_STYLE_OVERRIDE", "SESSION_MANAGER", "WAYLAND_DISPLAY", "XAUTHORITY", "XDG_CACHE_HOME",
          "XDG_CONFIG_HOME", "XDG_CURRENT_DESKTOP", "XDG_DATA_HOME", "XDG_SESSION_TYPE",
          "XDG_STATE_HOME"}) {
        ::unsetenv(name); // NOLINT(concurrency-mt-unsafe): as above
    }
}

} // namespace

std::string toolOutput(const std::vector<std::string>& arguments) {
    ChildProcess process(tool(arguments));
    if (process.wait() != 0) {
        std::string words;
        for (const std::string& argument : arguments) {
            words += argument + " ";
        }
        throw std::runtime_error(words + "failed: " + process.error());
    }
    return process.output();
}

Desktop& desktop() {
    static Desktop ofThisProcess;
    return ofThisProcess;
}

Desktop::Desktop() {
    std::string pattern = std::filesystem::temp_directory_path() / "flash-writer-desktop-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary directory");
    }
    m_directory = pattern;
    for (const char* name : {"/run", "/home"}) {
        std::filesystem::create_directory(m_directory + name);
    }
    std::filesystem::permissions(m_directory + "/run", std::filesystem::perms::owner_all);
    forgetOtherDesktops();
    set("XDG_RUNTIME_DIR", m_directory + "/run");
    set("HOME", m_directory + "/home");
    set("LC_ALL", "C.UTF-8");
    set("GSETTINGS_BACKEND", "memory");
    startScreen();
    startBus();
    startWindowManager();
}

Desktop::~Desktop() {
    end(m_windowManager);
    end(m_bus); // what it has started ends with it
    end(m_screen);
    std::error_code ignored;
    std::filesystem::remove_all(m_directory, ignored);
}

// A key that a busy machine lets go of late is not to be typed again and again: -r.
void Desktop::startScreen() {
    const std::string size = std::to_string(WIDTH) + "x" + std::to_string(HEIGHT) + "x24";
    m_screen = std::make_unique<ChildProcess>(tool(
        {"Xvfb", "-displayfd", "1", "-screen", "0", size, "-nolisten", "tcp", "-noreset", "-r"}));
    set("DISPLAY", ":" + firstLine(*m_screen, "Xvfb"));
    // With the first key that is ever pressed the server tells everybody of another keyboard, and
    // the window manager lets go of its keys for a moment: better now than in a test.
    toolOutput({"xdotool", "key", "shift"});
}

// The bus starts the accessibility's own services when they are first asked for; this asks.
void Desktop::startBus() {
    m_bus = std::make_unique<ChildProcess>(
        tool({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"}));
    set("DBUS_SESSION_BUS_ADDRESS", firstLine(*m_bus, "dbus-daemon"));
    toolOutput({"dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled",
                "variant:boolean:true"});
}

// As it is installed, but for showing how windows shrink, which keeps the screen busy for a while.
void Desktop::startWindowManager() {
    std::ifstream installed("/etc/xdg/openbox/rc.xml");
    std::string settings(std::istreambuf_iterator<char>(installed), {});
    const std::string animated = "<animateIconify>yes";
    const std::size_t at = settings.find(animated);
    if (at == std::string::npos) {
        throw std::runtime_error("the window manager's settings are not as expected");
    }
    settings.replace(at, animated.size(), "<animateIconify>no");
    const std::string file = m_directory + "/openbox.xml";
    std::ofstream(file) << settings;
    m_windowManager = std::make_unique<ChildProcess>(
        tool({"openbox", "--sm-disable", "--config-file", file, "--startup", "echo ready"}));
    firstLine(*m_windowManager, "openbox");
}

} // namespace flashwriter::testing
