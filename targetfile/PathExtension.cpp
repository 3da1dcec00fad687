#include "targetfile/PathExtension.h"

#include <algorithm>

namespace flashwriter {

namespace {

// Not std::tolower: what counts as a capital must not depend on the user's locale.
char lowerCase(char character) {
    const bool isCapital = character >= 'A' && character <= 'Z';
    return isCapital ? static_cast<char>(character - 'A' + 'a') : character;
}

} // namespace

std::string_view pathExtension(std::string_view path) {
    while (!path.empty() && path.back() == '/') {
        path.remove_suffix(1);
    }
    const std::size_t slash = path.rfind('/');
    if (slash != std::string_view::npos) {
        path.remove_prefix(slash + 1);
    }
    const std::size_t dot = path.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return {};
    }
    return path.substr(dot + 1);
}

bool hasPathExtension(std::string_view path, std::string_view lowerCaseExtension) {
    const std::string_view extension = pathExtension(path);
    return std::equal(extension.begin(), extension.end(), lowerCaseExtension.begin(),
                      lowerCaseExtension.end(),
                      [](char spelt, char wanted) { return lowerCase(spelt) == wanted; });
}

} // namespace flashwriter
