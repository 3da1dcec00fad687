#pragma once

namespace flashwriter::testing {

// While true, NSTargetFile::ReadFile of the program that this is linked into lets every file
// through as an image of no bytes, which the reader itself refuses.
extern bool imagesAreEmpty;

} // namespace flashwriter::testing
