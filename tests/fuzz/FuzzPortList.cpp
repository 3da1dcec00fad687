// Lists of ports: names of any bytes in a folder of devices, and any listing that a command prints.
//
// Input: names, with a slash or a NUL between them, which no name contains.
#include "app/PortScan.h"
#include "serial/PortList.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/ScratchFolder.h"

#include <set>
#include <string_view>

namespace flashwriter::fuzz {
namespace {

std::set<std::string> namesIn(std::string_view input) {
    std::set<std::string> names;
    std::string name;
    for (const char character : std::string(input) + '/') {
        if (character != '/' && character != '\0') {
            name += character;
            continue;
        }
        if (!name.empty() && name != "." && name != "..") {
            names.insert(name);
        }
        name.clear();
    }
    return names;
}

bool isAdapter(const std::string& name) {
    const std::string_view start = std::string_view(name).substr(0, 6);
    return start == "ttyUSB" || start == "ttyACM" || start.substr(0, 4) == "cu.u";
}

void listFolder(const std::set<std::string>& names) {
    static const ScratchFolder folder;
    std::vector<std::string> expected;
    std::vector<std::string> created;
    for (const std::string& name : names) {
        if (!folder.create(name)) {
            continue; // too long for a name
        }
        created.push_back(folder.path(name));
        if (isAdapter(name)) {
            expected.push_back(created.back());
        }
    }
    const std::vector<std::string> ports = portList(folder.path());
    for (const std::string& path : created) {
        std::filesystem::remove(path);
    }
    require(ports == expected, "the adapters in their order, and nothing else");
}

// Whatever is printed comes back when the lines are put together again.
void splitListing(std::string_view input) {
    const QString listing = QString::fromUtf8(input.data(), static_cast<qsizetype>(input.size()));
    const QStringList ports = portsOf(listing);
    require(!ports.isEmpty(), "there is at least one line, be it empty");
    require(ports.join('\n') == listing.left(std::max<qsizetype>(listing.size(), 1) - 1),
            "all but the last character");
    for (const QString& port : ports) {
        require(!port.contains('\n'), "a line is one line");
    }
}

} // namespace
} // namespace flashwriter::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace flashwriter::fuzz;
    const std::string_view input(reinterpret_cast<const char*>(bytes), size);
    listFolder(namesIn(input));
    splitListing(input);
    return 0;
}
