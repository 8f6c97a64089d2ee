#include "Linux/Files/AtomicFile.h"
#include "Linux/Files/PrivateFiles.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;
using PrivateFiles::Durability;

class PrivateFilesTest : public testing::Test {
protected:
    PrivateFilesTest() : before_(::umask(0)) {}
    ~PrivateFilesTest() override { ::umask(before_); }

    static unsigned modeOf(const fs::path& path) {
        struct stat its{};
        return ::stat(path.c_str(), &its) == 0 ? its.st_mode & 07777U : 0;
    }
    /// False where this user can't give files away.
    static bool giveAway(const fs::path& path) { return ::lchown(path.c_str(), 65534, 65534) == 0; }

    const TemporaryFolder folder;
    const fs::path& root = folder.path();

private:
    mode_t before_;
};

TEST_F(PrivateFilesTest, AreForTheOwnerWhateverTheMask) {
    for (const mode_t mask : {0000U, 0022U, 0777U}) {
        ::umask(mask);
        const fs::path folder = root / std::to_string(mask) / "deep";
        ASSERT_FALSE(PrivateFiles::makeFolder(folder));
        ASSERT_FALSE(PrivateFiles::replace(folder / "file", "x", Durability::onDisk));
        AtomicFile fresh(folder / "new", AtomicFile::Name::ofTheFile);
        ASSERT_FALSE(fresh.write("x"));
        ASSERT_FALSE(fresh.put());
        ASSERT_TRUE(PrivateFiles::openLock(folder / "lock"));
        for (const fs::path& made : {folder.parent_path(), folder})
            EXPECT_EQ(modeOf(made), 0700U) << made;
        for (const char* name : {"file", "new", "lock"})
            EXPECT_EQ(modeOf(folder / name), 0600U) << name;
    }
}

TEST_F(PrivateFilesTest, GoThroughTheUsersOwnLinksOnly) {
    folder.write("target", "before");
    fs::create_symlink("target", root / "own");
    fs::create_symlink("target", root / "planted");
    fs::create_directory(root / "folder");
    if (!giveAway(root / "planted") || !giveAway(root / "folder"))
        GTEST_SKIP() << "needs a user who may give files away";
    EXPECT_EQ(PrivateFiles::targetOf(root / "own"), root / "target");
    EXPECT_EQ(PrivateFiles::targetOf(root / "planted"), root / "planted");
    EXPECT_FALSE(PrivateFiles::openLock(root / "planted"));
    EXPECT_TRUE(PrivateFiles::makeFolder(root / "folder"));

    ASSERT_FALSE(PrivateFiles::replace(root / "planted", "ours", Durability::untilShutdown));
    EXPECT_EQ(contentOf(root / "target"), "before");
    EXPECT_EQ(contentOf(root / "planted"), "ours");
    ASSERT_FALSE(PrivateFiles::replace(root / "own", "ours", Durability::untilShutdown));
    EXPECT_EQ(contentOf(root / "target"), "ours");
    EXPECT_TRUE(fs::is_symlink(root / "own"));
}

} // namespace
} // namespace velmorquit
