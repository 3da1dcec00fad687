#include "targetfile/FileFacts.h"

#include "tests/unit/targetfile/OrdinaryUser.h"
#include "tests/unit/targetfile/TempDir.h"

#include <cerrno>
#include <sys/stat.h>

namespace flashwriter {
namespace {

TEST(FileFacts, TellAnImageByItsNameAlone) {
    EXPECT_EQ(imageKind("/no/such/folder/image.bin"), ImageKind::Bin);
    EXPECT_EQ(imageKind("IMAGE.Mot"), ImageKind::Mot);
    EXPECT_EQ(imageKind("image.hex"), ImageKind::Other);
    EXPECT_EQ(imageKind("bin"), ImageKind::Other);
}

TEST(FileFacts, OfAReadableFileAreItsSizeAndOwner) {
    const TempDir directory;
    const FileFacts facts = fileFacts(directory.write("image.bin", "12345"));
    EXPECT_EQ(facts.state, FileState::Readable);
    EXPECT_EQ(facts.error, 0);
    EXPECT_EQ(facts.owner, ::geteuid());
    EXPECT_EQ(facts.size, 5U);
    EXPECT_EQ(facts.kind, ImageKind::Bin);
}

TEST(FileFacts, TellTheKindByTheExtensionAlone) {
    EXPECT_EQ(fileFacts("/nowhere/image.BIN").kind, ImageKind::Bin);
    EXPECT_EQ(fileFacts("/nowhere/image.Mot").kind, ImageKind::Mot);
    EXPECT_EQ(fileFacts("/nowhere/image.hex").kind, ImageKind::Other);
    EXPECT_EQ(fileFacts("").kind, ImageKind::Other);
}

TEST(FileFacts, OfAMissingFileSaySo) {
    const TempDir directory;
    EXPECT_EQ(fileFacts("").state, FileState::Missing);
    EXPECT_EQ(fileFacts(directory.path("missing")).state, FileState::Missing);
    EXPECT_EQ(fileFacts(directory.path("missing")).error, ENOENT);
    const std::string below = directory.write("file", "x") + "/below";
    EXPECT_EQ(fileFacts(below).state, FileState::Missing);
    EXPECT_EQ(fileFacts(below).error, ENOTDIR);
}

TEST(FileFacts, OfAPathWithANulSayMissing) {
    const TempDir directory;
    const std::string path = directory.write("file", "x") + std::string(1, '\0');
    EXPECT_EQ(fileFacts(path).state, FileState::Missing);
    EXPECT_EQ(fileFacts(path).size, 0U);
}

TEST(FileFacts, OfAForbiddenFileNameTheOwnerAndTheReason) {
    const TempDir directory;
    const std::string path = directory.write("image.mot", "12345");
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    const uid_t owner = ::geteuid();
    const OrdinaryUser user;
    const FileFacts facts = fileFacts(path);
    EXPECT_EQ(facts.state, FileState::NotReadable);
    EXPECT_EQ(facts.error, EACCES);
    EXPECT_EQ(facts.owner, owner);
    EXPECT_EQ(facts.size, 5U);
}

TEST(FileFacts, OfALinkThatLeadsNowhereElseAreTheReason) {
    const TempDir directory;
    std::filesystem::create_symlink(directory.path("loop"), directory.path("loop"));
    EXPECT_EQ(fileFacts(directory.path("loop")).state, FileState::NotReadable);
    EXPECT_EQ(fileFacts(directory.path("loop")).error, ELOOP);
}

TEST(FileFacts, TellADirectoryAndWhatIsNoFileAtAll) {
    const TempDir directory;
    EXPECT_EQ(fileFacts(directory.path("")).state, FileState::Directory);
    EXPECT_EQ(fileFacts(directory.path("")).size, 0U);
    ASSERT_EQ(::mkfifo(directory.path("fifo.bin").c_str(), 0600), 0);
    EXPECT_EQ(fileFacts(directory.path("fifo.bin")).state, FileState::NotRegular);
    EXPECT_EQ(fileFacts("/dev/null").state, FileState::NotRegular);
    EXPECT_EQ(fileFacts("/dev/null").error, 0);
}

} // namespace
} // namespace flashwriter
