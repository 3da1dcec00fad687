// What the end of a path says about the file: the program goes by it, never by the contents.
#pragma once

#include <string_view>

namespace flashwriter {

// The part of the path's last component behind its last dot, as spelt, without the dot; a view into
// path. Empty when there is none: no dot, nothing behind the last dot ("image."), or a dot that
// only hides the file (".bin"). Slashes at the path's end are ignored.
std::string_view pathExtension(std::string_view path);

// Whether path has this extension, given in lower case ("bin", "mot"); the path may spell it in any
// mixture of ASCII capitals and small letters.
bool hasPathExtension(std::string_view path, std::string_view lowerCaseExtension);

} // namespace flashwriter
