#include "tests/ui/app/PortCommands.h"

namespace flashwriter::testing {

std::optional<std::vector<const char*>> portCommands;

// The names by which the linker knows platform::portListCommands and what stands in for it.
std::vector<const char*>
systemCommands() asm("__real__ZN11flashwriter8platform16portListCommandsEv");
std::vector<const char*>
chosenCommands() asm("__wrap__ZN11flashwriter8platform16portListCommandsEv");

std::vector<const char*> chosenCommands() {
    return portCommands ? *portCommands : systemCommands();
}

} // namespace flashwriter::testing
