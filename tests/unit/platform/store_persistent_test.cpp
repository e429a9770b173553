#include "platform/file.h"
#include "platform/qor_platform.h"
#include "platform/reference/store.h"
#include "support/forked_process.h"
#include "support/scratch_root.h"
#include "support/text.h"

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace qorcfg {
namespace {

class StorePersistentTest : public testing::Test {
protected:
    void TearDown() override { store_close(); }

    std::string copy() const { return root / "etc/qorcfg/config.mdb"; }
    std::string copied() const { return read_file(copy(), 64 << 20).value_or("none"); }
    /// What a restart leaves: nothing of the memory file system.
    void restart() const
    {
        store_close();
        std::filesystem::remove_all(root / "tmp/cache");
    }
    /// Writes a persistent copy with some content, and restarts.
    void commit_and_restart() const
    {
        for (int i = 0; i < 50; ++i) {
            ASSERT_EQ(config_set(numbered("key", i).c_str(), std::string(300, 'x').c_str()), 0);
        }
        ASSERT_EQ(config_set("kept", "yes"), 0);
        ASSERT_EQ(config_commit(), 0);
        restart();
    }
    std::vector<std::string> files_of_copy() const
    {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(root / "etc/qorcfg")) {
            names.push_back(entry.path().filename());
        }
        return names;
    }
    /// Opens the store with a copy that is `content`; what is said on standard error.
    std::string open_with_copy(const std::string &content) const
    {
        restart();
        EXPECT_TRUE(replace_file(copy(), content, 0600));
        testing::internal::CaptureStderr();
        EXPECT_STREQ(config_get("kept"), "");
        return testing::internal::GetCapturedStderr();
    }

    ScratchRoot root;
};

mode_t mode_of(const std::string &path)
{
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}

/// The last line of a copy, worked out independently: FNV-1a of what stands before it.
std::string check_line(const std::string &database)
{
    std::uint64_t sum = 14695981039346656037U;
    for (std::size_t place = 0; place < database.size(); place += 8) {
        std::uint64_t word = 0;
        for (std::size_t i = std::min(place + 8, database.size()); i-- > place;) {
            word = word << 8 | static_cast<unsigned char>(database[i]);
        }
        sum = (sum ^ word) * 1099511628211U;
    }
    std::string digits;
    for (int i = 60; i >= 0; i -= 4) {
        digits += "0123456789abcdef"[sum >> i & 15U];
    }
    return "qorcfg-store " + digits + "\n";
}

TEST_F(StorePersistentTest, ACommittedSettingSurvivesARestartAndALaterOneDoesNot)
{
    commit_and_restart();
    EXPECT_STREQ(config_get("kept"), "yes");
    ASSERT_EQ(config_set("late", "1"), 0);
    restart();
    EXPECT_STREQ(config_get("late"), "");
    EXPECT_STREQ(config_get("kept"), "yes");
    EXPECT_STREQ(config_get("key49"), std::string(300, 'x').c_str());
}

TEST_F(StorePersistentTest, MarksDoNotSurviveARestart)
{
    commit_and_restart();
    std::vector<MarkedKey> marked;
    ASSERT_EQ(store_marked_keys(marked), "");
    EXPECT_TRUE(marked.empty());
    ASSERT_EQ(config_set("kept", "no"), 0);
    ASSERT_EQ(store_marked_keys(marked), "");
    ASSERT_EQ(marked.size(), 1U);
    EXPECT_EQ(marked[0].change, KeyChange::changed);
}

TEST_F(StorePersistentTest, CopyAndFolderHaveTheirModesWhateverTheUmaskSays)
{
    const mode_t old = ::umask(0777);
    const int status = config_commit();
    ::umask(old);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(mode_of(copy()), 0600U);
    EXPECT_EQ(mode_of(root / "etc/qorcfg"), 0755U);
}

TEST_F(StorePersistentTest, ACommitLeavesNothingBesideTheCopy)
{
    commit_and_restart();
    ASSERT_EQ(config_commit(), 0);
    EXPECT_EQ(files_of_copy(), std::vector<std::string>{"config.mdb"});
}

TEST_F(StorePersistentTest, TheCopyEndsInTheCheckSumOfTheRest)
{
    commit_and_restart();
    const std::string all = copied();
    ASSERT_GT(all.size(), 30U);
    const std::string database = all.substr(0, all.size() - 30);
    EXPECT_EQ(all.substr(database.size()), check_line(database));
}

TEST_F(StorePersistentTest, AStoreThatHasShrunkHasASmallCopy)
{
    commit_and_restart();
    const std::size_t small = copied().size();
    const std::string value(40000, 'v');
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(config_set(("big" + std::to_string(i)).c_str(), value.c_str()), 0);
    }
    ASSERT_EQ(config_commit(), 0);
    EXPECT_GT(copied().size(), 100 * value.size());
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(config_unset(("big" + std::to_string(i)).c_str()), 0);
    }
    ASSERT_EQ(config_commit(), 0);
    EXPECT_LT(copied().size(), small + 65536); // the marks of a hundred removed keys
}

TEST_F(StorePersistentTest, ACopyWithAnyByteOfItDamagedIsSetAsideNotLost)
{
    commit_and_restart();
    const std::string good = copied();
    const std::string said_of = copy() + ": damaged, its check sum does not match; set aside as " +
                                copy() + ".damaged, the store starts empty\n";
    for (std::size_t place = 0; place < good.size(); place += 1009) {
        std::string bad = good;
        bad[place] = static_cast<char>(bad[place] ^ 0x10);
        ASSERT_EQ(open_with_copy(bad), said_of) << place;
        ASSERT_EQ(config_commit(), 0);
        EXPECT_EQ(read_file(copy() + ".damaged", 64 << 20), bad);
    }
}

TEST_F(StorePersistentTest, ACopyThatWasCutOffIsSetAside)
{
    commit_and_restart();
    const std::string good = copied();
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, std::size_t{29}, std::size_t{4096}, good.size() / 2,
          good.size() - 30, good.size() - 1}) {
        EXPECT_THAT(open_with_copy(good.substr(0, length)), testing::HasSubstr("set aside"))
            << length;
        EXPECT_FALSE(std::filesystem::exists(copy()));
    }
}

TEST_F(StorePersistentTest, AWholeFileThatIsNoDatabaseIsSetAside)
{
    ASSERT_EQ(config_commit(), 0);
    for (const std::string &text : {std::string(), std::string(100000, 'x')}) {
        EXPECT_THAT(open_with_copy(text + check_line(text)), testing::HasSubstr("set aside"));
        EXPECT_EQ(config_set("works", "1"), 0);
    }
}

TEST_F(StorePersistentTest, AFolderInThePlaceOfTheCopyIsSetAside)
{
    std::filesystem::create_directories(copy());
    testing::internal::CaptureStderr();
    EXPECT_EQ(config_set("key", "1"), 0);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("set aside"));
    EXPECT_EQ(config_commit(), 0);
}

TEST_F(StorePersistentTest, AFailedRestoreLeavesTheCopyAndIsTriedAgain)
{
    commit_and_restart();
    const std::string good = copied();
    std::filesystem::create_directories(root / "tmp/cache/config.restored");
    std::filesystem::create_directory(root / "tmp/cache/config.restored/x");
    EXPECT_THAT(store_write({{"key", "1"}}, Marking::mark), testing::HasSubstr("cannot write"));
    EXPECT_EQ(copied(), good);
    EXPECT_FALSE(std::filesystem::exists(root / "tmp/cache/config"));
    std::filesystem::remove_all(root / "tmp/cache/config.restored");
    EXPECT_STREQ(config_get("kept"), "yes");
}

TEST_F(StorePersistentTest, ALiveStoreIsNotReplacedByTheCopy)
{
    ASSERT_EQ(config_set("key", "old"), 0);
    ASSERT_EQ(config_commit(), 0);
    ASSERT_EQ(config_set("key", "new"), 0);
    store_close();
    EXPECT_STREQ(config_get("key"), "new");
}

TEST_F(StorePersistentTest, ProcessesThatOpenAMissingStoreAtOnceAllSeeTheCopy)
{
    commit_and_restart();
    for (int round = 0; round < 5; ++round) {
        std::vector<pid_t> processes;
        for (int i = 0; i < 8; ++i) {
            processes.push_back(start_process([i] {
                const std::string name = numbered("own", i);
                return config_match("kept", "yes") == 1 && config_set(name.c_str(), "1") == 0 ? 0
                                                                                              : 1;
            }));
        }
        for (const pid_t process : processes) {
            EXPECT_EQ(end_of(process), 0);
        }
        std::vector<Setting> own;
        ASSERT_EQ(store_settings("own", own), "");
        EXPECT_EQ(own.size(), 8U);
        restart();
    }
}

TEST_F(StorePersistentTest, CommitsOfSeveralProcessesLeaveAWholeCopy)
{
    ASSERT_EQ(config_set("kept", "yes"), 0);
    std::vector<pid_t> processes;
    for (int i = 0; i < 4; ++i) {
        processes.push_back(start_process([i] {
            const std::string name = numbered("own", i);
            for (int round = 0; round < 10; ++round) {
                if (config_set(name.c_str(), std::to_string(round).c_str()) != 0 ||
                    config_commit() != 0) {
                    return 1;
                }
            }
            return 0;
        }));
    }
    for (const pid_t process : processes) {
        EXPECT_EQ(end_of(process), 0);
    }
    restart();
    EXPECT_STREQ(config_get("kept"), "yes");
    for (const char *name : {"own0", "own1", "own2", "own3"}) {
        EXPECT_STREQ(config_get(name), "9");
    }
    EXPECT_EQ(files_of_copy(), std::vector<std::string>{"config.mdb"});
}

TEST_F(StorePersistentTest, AFullDiskLeavesTheOldCopy)
{
    ASSERT_EQ(config_set("kept", "old"), 0);
    ASSERT_EQ(config_commit(), 0);
    const std::string before = copied();
    ASSERT_EQ(config_set("kept", "new"), 0);
    store_close();
    for (const rlim_t limit :
         {rlim_t{0}, rlim_t{4096}, rlim_t{before.size() - 30}, rlim_t{before.size() - 1}}) {
        EXPECT_EQ(end_of(start_process([limit] {
                      std::signal(SIGXFSZ, SIG_IGN);
                      const rlimit bound{limit, limit};
                      if (config_match("kept", "new") != 1 ||
                          ::setrlimit(RLIMIT_FSIZE, &bound) != 0) {
                          return 2;
                      }
                      return config_commit() == -1 ? 0 : 1;
                  })),
                  0)
            << limit;
        EXPECT_EQ(copied(), before);
        EXPECT_EQ(files_of_copy(), std::vector<std::string>{"config.mdb"});
    }
    EXPECT_EQ(config_commit(), 0);
    EXPECT_NE(copied(), before);
}

TEST_F(StorePersistentTest, ACommitThatWasKilledLeavesTheOldCopyAndTheNextOneCleansUp)
{
    ASSERT_EQ(config_set("kept", "yes"), 0);
    ASSERT_EQ(config_commit(), 0);
    // What a killed process leaves beside the copy.
    ASSERT_TRUE(replace_file(copy() + ".new", "half", 0600));
    ASSERT_EQ(config_commit(), 0);
    EXPECT_EQ(files_of_copy(), std::vector<std::string>{"config.mdb"});
}

TEST_F(StorePersistentTest, ACommitWithoutItsFolderSaysWhere)
{
    std::filesystem::remove_all(root / "etc");
    testing::internal::CaptureStderr();
    EXPECT_EQ(config_commit(), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "cannot write " + copy() + ": No such file or directory\n");
}

} // namespace
} // namespace qorcfg
