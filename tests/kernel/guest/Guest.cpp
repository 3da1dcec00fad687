#include "tests/kernel/guest/Guest.h"

#include <sys/resource.h>

#include <array>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace flashwriter::kernel {

namespace {

constexpr std::chrono::seconds BOOT_PATIENCE{60}; // some seconds are enough on a machine at rest

// The boards that programs in the machine talk to wait no longer than for a real one, so it goes
// before others where the system allows that.
constexpr int PRIORITY = -10;

// Of the process among those of its session, and of its session among others.
void makePrompt(pid_t process) {
    static_cast<void>(::setpriority(PRIO_PROCESS, static_cast<id_t>(process), PRIORITY));
    std::ofstream("/proc/" + std::to_string(process) + "/autogroup") << PRIORITY;
}

} // namespace

Guest::Guest()
    : m_adapterSocket(m_files.path("adapter")),
      m_machine(std::make_unique<testing::ChildProcess>(machine())) {
    makePrompt(m_machine->pid());
    awaitRunner();
}

// Without hardware acceleration, which a machine may offer and not have. The kernel is booted
// unpacked, takes the emulated clock for what it is: the host's, and does not try out its timer,
// which looks broken when this machine is too busy to let the emulated one run.
testing::ChildOptions Guest::machine() const {
    using Option = std::pair<const char*, std::string>;
    const std::array<Option, 14> hardware{
        Option{"-accel", "tcg"},
        {"-M", "q35"},
        {"-cpu", "max"},
        {"-m", "256"},
        {"-display", "none"},
        {"-serial", "file:" + m_files.path("console")},
        {"-virtfs", "local,path=/,mount_tag=host,security_model=none,readonly=on,multidevs=remap"},
        {"-device", "virtio-serial-pci"},
        {"-chardev", "socket,id=runner,path=" + m_files.path("runner")},
        {"-device", "virtserialport,chardev=runner,name=runner"},
        {"-device", "qemu-xhci"},
        {"-chardev", "socket,id=red,server=on,wait=off,path=" + m_adapterSocket},
        {"-device", "usb-redir,chardev=red"},
        {"-append", "console=ttyS0 quiet panic=-1 tsc=reliable no_timer_check runner=" +
                        m_files.path("first")},
    };
    const std::string kernel = KERNEL_DIR;
    testing::ChildOptions options;
    options.arguments = {"/usr/bin/qemu-system-x86_64",
                         "-nodefaults",
                         "-no-user-config",
                         "-no-reboot",
                         "-kernel",
                         kernel + "/vmlinux",
                         "-initrd",
                         kernel + "/initramfs.cpio"};
    for (const auto& [name, value] : hardware) {
        options.arguments.insert(options.arguments.end(), {name, value});
    }
    return options;
}

void Guest::awaitRunner() {
    int connection = -1;
    m_machine->waitFor([&] { return (connection = m_files.accept()) != -1; });
    if (connection == -1) {
        throw std::runtime_error("the emulated machine does not start: " + m_machine->error());
    }
    m_link = std::make_unique<GuestLink>(connection);
    if (!m_link->waitUntilReady(BOOT_PATIENCE)) {
        throw std::runtime_error("the emulated machine does not boot:\n" + console());
    }
}

std::unique_ptr<GuestProcess> Guest::start(const Command& command) {
    return std::make_unique<GuestProcess>(*m_link, command);
}

std::string Guest::shell(const std::string& line) {
    const auto process = start({.arguments = {"/bin/sh", "-c", line}, .environment = {}});
    const auto status = process->wait();
    if (status != 0) {
        throw std::runtime_error(line + ": " + process->output() + process->error());
    }
    return process->output();
}

std::string Guest::console() const {
    std::ifstream file(m_files.path("console"), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

} // namespace flashwriter::kernel
