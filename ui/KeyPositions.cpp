#include "ui/KeyPositions.h"

#include <QGuiApplication>
#include <QKeyEvent>

#include <array>

namespace flashwriter {

namespace {

struct KeyCode {
    KeyPosition position;
    quint32 cocoa;    // virtual key code of macOS
    quint32 scanCode; // X11's, which is the kernel's plus 8; Wayland's is given in the same way
};

constexpr std::array<KeyCode, 5> CODES{{{KeyPosition::A, 0, 38},
                                        {KeyPosition::Z, 6, 52},
                                        {KeyPosition::X, 7, 53},
                                        {KeyPosition::C, 8, 54},
                                        {KeyPosition::V, 9, 55}}};

// A key of macOS has the code 0, which is also what an event has that comes from no keyboard; the
// modifiers of one that does come from there are never all zero.
bool hasCocoaCode(const QKeyEvent& event) {
    return event.nativeVirtualKey() != 0 || event.nativeModifiers() != 0;
}

bool isCocoaHere() {
    return QGuiApplication::platformName() == "cocoa";
}

} // namespace

KeyPosition keyPosition(const QKeyEvent& event, bool isCocoa) {
    if (isCocoa && !hasCocoaCode(event)) {
        return KeyPosition::Other;
    }
    for (const KeyCode& code : CODES) {
        if (isCocoa ? code.cocoa == event.nativeVirtualKey()
                    : code.scanCode == event.nativeScanCode()) {
            return code.position;
        }
    }
    return KeyPosition::Other;
}

KeyPosition keyPosition(const QKeyEvent& event) {
    return keyPosition(event, isCocoaHere());
}

bool comesFromKeyboard(const QKeyEvent& event) {
    return isCocoaHere() ? hasCocoaCode(event) : event.nativeScanCode() != 0;
}

} // namespace flashwriter
