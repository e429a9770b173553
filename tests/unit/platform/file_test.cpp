#include "platform/file.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace qorcfg {
namespace {

class FileTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = "/tmp/qor-file.XXXXXX";
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string path(const std::string &name) const { return folder_ + "/" + name; }
    std::size_t entries() const
    {
        std::size_t count = 0;
        for (const auto &entry : std::filesystem::directory_iterator(folder_)) {
            count += entry.exists() ? 1 : 0;
        }
        return count;
    }

    std::string folder_;
};

TEST_F(FileTest, AFileAboveTheBoundIsRefusedAndOneAtTheBoundIsRead)
{
    ASSERT_TRUE(replace_file(path("a"), "12345", 0600));
    EXPECT_EQ(read_file(path("a"), 5), "12345");
    EXPECT_FALSE(read_file(path("a"), 4));
    EXPECT_EQ(errno, EFBIG);
}

TEST_F(FileTest, AMissingFileIsToldApartFromAnEmptyOne)
{
    ASSERT_TRUE(replace_file(path("empty"), "", 0600));
    EXPECT_EQ(read_file(path("empty"), 10), "");
    EXPECT_FALSE(read_file(path("missing"), 10));
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(FileTest, ANewFileGetsItsModeWhateverTheUmaskSays)
{
    const mode_t old = ::umask(077);
    ASSERT_TRUE(replace_file(path("a"), "x", 0644));
    ::umask(old);
    struct stat info {};
    ASSERT_EQ(::stat(path("a").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0644U);
}

TEST_F(FileTest, AReplacedFileKeepsItsMode)
{
    ASSERT_TRUE(replace_file(path("a"), "old", 0640));
    ASSERT_TRUE(replace_file(path("a"), "new", 0600));
    struct stat info {};
    ASSERT_EQ(::stat(path("a").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
    EXPECT_EQ(read_file(path("a"), 10), "new");
}

TEST_F(FileTest, AnUncommittedFileLeavesTheOldOneAndNoTemporary)
{
    ASSERT_TRUE(replace_file(path("a"), "old", 0600));
    {
        AtomicFile file(path("a"), 0600);
        ASSERT_TRUE(file.write("half"));
    }
    EXPECT_EQ(read_file(path("a"), 10), "old");
    EXPECT_EQ(entries(), 1U);
}

TEST_F(FileTest, APreparedFileIsCompleteBesideTheOldOneUntilItIsCommitted)
{
    ASSERT_TRUE(replace_file(path("a"), "old", 0600));
    AtomicFile file(path("a"), 0600, ".new");
    ASSERT_TRUE(file.write("new") && file.prepare());
    EXPECT_EQ(read_file(path("a.new"), 10), "new");
    EXPECT_EQ(read_file(path("a"), 10), "old");
    ASSERT_TRUE(file.commit());
    EXPECT_EQ(read_file(path("a"), 10), "new");
    EXPECT_EQ(entries(), 1U);
}

TEST_F(FileTest, ALinkPlantedAtTheTemporaryIsReplacedNotFollowed)
{
    ASSERT_TRUE(replace_file(path("victim"), "untouched", 0600));
    ASSERT_EQ(::symlink(path("victim").c_str(), path("a.new").c_str()), 0);
    AtomicFile file(path("a"), 0600, ".new");
    ASSERT_TRUE(file.write("mine") && file.commit());
    EXPECT_EQ(read_file(path("victim"), 20), "untouched");
}

TEST_F(FileTest, AMissingFolderIsReported)
{
    EXPECT_FALSE(replace_file(path("no/where"), "x", 0600));
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(FileTest, AppendingToADescriptorThatCannotBeWrittenFails)
{
    ASSERT_TRUE(replace_file(path("a"), "keep", 0600));
    const Fd fd = open_file(path("a"), O_RDONLY);
    EXPECT_FALSE(append_all(fd.get(), "more"));
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(read_file(path("a"), 10), "keep");
}

TEST_F(FileTest, HalfALineIsCutOffAndWholeOnesStay)
{
    const auto rest_of = [&](const std::string &text) {
        EXPECT_TRUE(replace_file(path("a"), text, 0600));
        EXPECT_TRUE(drop_cut_off_line(open_file(path("a"), O_RDWR).get()));
        return read_file(path("a"), 100).value_or("none");
    };
    EXPECT_EQ(rest_of("one\ntw"), "one\n");
    EXPECT_EQ(rest_of("one\ntwo\n"), "one\ntwo\n");
    EXPECT_EQ(rest_of("on"), "");
    EXPECT_EQ(rest_of(""), "");
    EXPECT_FALSE(drop_cut_off_line(-1));
}

TEST_F(FileTest, AnExclusiveLockKeepsOutASharedOne)
{
    const Fd exclusive = lock_path(folder_, LOCK_EX);
    ASSERT_TRUE(exclusive);
    const Fd other = open_file(folder_, O_RDONLY);
    EXPECT_NE(::flock(other.get(), LOCK_SH | LOCK_NB), 0);
    EXPECT_EQ(errno, EWOULDBLOCK);
}

} // namespace
} // namespace qorcfg
