#include "targetfile/PathExtension.h"

#include <gtest/gtest.h>

namespace flashwriter {
namespace {

TEST(PathExtension, IsWhatStandsBehindTheLastDot) {
    EXPECT_EQ(pathExtension("image.bin"), "bin");
    EXPECT_EQ(pathExtension("/home/me/image.MOT"), "MOT");
    EXPECT_EQ(pathExtension("image.bin.txt"), "txt");
    EXPECT_EQ(pathExtension("..bin"), "bin");
    EXPECT_EQ(pathExtension("ファーム.bin"), "bin");
}

TEST(PathExtension, IsEmptyWhereThereIsNone) {
    for (const char* path :
         {"", "/", "//", "image", "image.", ".bin", "/tmp/.bin", ".", "/a.b/c"}) {
        EXPECT_EQ(pathExtension(path), "") << path;
    }
}

TEST(PathExtension, LooksAtTheLastComponentOnly) {
    EXPECT_EQ(pathExtension("/build.bin/image"), "");
    EXPECT_EQ(pathExtension("/build.bin/"), "bin");
    EXPECT_EQ(pathExtension("/build.bin///"), "bin");
    EXPECT_EQ(pathExtension("/.bin/"), "");
}

TEST(HasPathExtension, IgnoresTheCaseOfAsciiLetters) {
    for (const char* path : {"a.mot", "a.MOT", "a.mOt"}) {
        EXPECT_TRUE(hasPathExtension(path, "mot")) << path;
        EXPECT_FALSE(hasPathExtension(path, "bin")) << path;
    }
}

TEST(HasPathExtension, WantsTheWholeExtension) {
    for (const char* path : {"a.bi", "a.bins", "a.bin ", "a.b\xC4\xB1n", "bin", ".bin", "a.", ""}) {
        EXPECT_FALSE(hasPathExtension(path, "bin")) << path;
    }
}

} // namespace
} // namespace flashwriter
