#include "platform/reference/store.h"

#include "platform/config_value.h"
#include "platform/qor_platform.h"
#include "support/forked_process.h"
#include "support/scratch_root.h"
#include "support/text.h"

#include <atomic>
#include <csignal>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>

namespace qorcfg {
namespace {

using testing::HasSubstr;

class StoreTest : public testing::Test {
protected:
    void TearDown() override { store_close(); }

    static std::string set(const std::string &key, const std::string &value)
    {
        return store_write({{key, value}}, Marking::mark);
    }
    static std::vector<std::string> listed(std::string_view prefix)
    {
        std::vector<Setting> settings;
        EXPECT_EQ(store_settings(prefix, settings), "");
        std::vector<std::string> lines;
        for (const Setting &setting : settings) {
            lines.push_back(setting.key + "=" + setting.value);
        }
        return lines;
    }

    ScratchRoot root;
};

using Lines = std::vector<std::string>;

TEST_F(StoreTest, AStoredTextIsReadAndAnUnsetKeyIsEmpty)
{
    EXPECT_EQ(config_set("lan_ipaddr", "192.168.1.1"), 0);
    EXPECT_STREQ(config_get("lan_ipaddr"), "192.168.1.1");
    EXPECT_STREQ(config_get("lan"), "");
    EXPECT_STREQ(config_get(""), "");
    EXPECT_STREQ(config_get(nullptr), "");
    EXPECT_EQ(config_unset("lan_ipaddr"), 0);
    EXPECT_STREQ(config_get("lan_ipaddr"), "");
}

TEST_F(StoreTest, MatchingComparesTheWholeText)
{
    ASSERT_EQ(config_set("mode", "ap"), 0);
    EXPECT_EQ(config_match("mode", "ap"), 1);
    EXPECT_EQ(config_match("mode", "a"), 0);
    EXPECT_EQ(config_match("mode", "apx"), 0);
    EXPECT_EQ(config_invmatch("mode", "ap"), 0);
    EXPECT_EQ(config_invmatch("mode", "a"), 1);
    EXPECT_EQ(config_match("unset", ""), 1);
    EXPECT_EQ(config_invmatch("unset", "x"), 1);
}

TEST_F(StoreTest, MatchingLeavesTheTextOfTheLastReadAlone)
{
    ASSERT_EQ(config_set("mode", "ap"), 0);
    const char *text = config_get("mode");
    EXPECT_EQ(config_match("other", "x"), 0);
    EXPECT_STREQ(text, "ap");
}

TEST_F(StoreTest, AKeyWithAnEmptyValueExists)
{
    ASSERT_EQ(config_set("empty", ""), 0);
    EXPECT_TRUE(store_has("empty"));
    EXPECT_FALSE(store_has("missing"));
    EXPECT_FALSE(store_has(""));
    EXPECT_STREQ(config_get("empty"), "");
}

TEST_F(StoreTest, KeysAndValuesAtTheirLimitsAreKeptWhole)
{
    const std::string key(store_key_limit, 'k');
    std::string value(store_value_limit, 'v');
    value.back() = '\xff';
    ASSERT_EQ(set(key, value), "");
    EXPECT_EQ(config_value(key), value);
}

TEST_F(StoreTest, WhatDoesNotFitIsRefusedWithTheKeyNamed)
{
    EXPECT_THAT(set("", "x"), HasSubstr("empty key"));
    EXPECT_EQ(set(std::string(512, 'k'), "x"),
              "key longer than 511 bytes: " + std::string(80, 'k') + "...");
    EXPECT_EQ(set("big", std::string(65537, 'v')), "value longer than 65536 bytes: big");
    EXPECT_EQ(set(std::string("a\0b", 3), "x"), "key with a NUL byte: a?b");
    EXPECT_EQ(set("nul", std::string("a\0b", 3)), "value with a NUL byte: nul");
    EXPECT_EQ(set("line\nfeed" + std::string(600, 'k'), "x").find('\n'), std::string::npos);
    EXPECT_STREQ(config_get(std::string(512, 'k').c_str()), "");
    EXPECT_THAT(listed(""), testing::IsEmpty());
}

TEST_F(StoreTest, TheCallsOfTheDeviceSayWhyTheyFail)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(config_set("", "x"), -1);
    EXPECT_EQ(config_set("key", nullptr), -1);
    EXPECT_EQ(config_set(nullptr, "x"), -1);
    EXPECT_EQ(config_unset(nullptr), -1);
    EXPECT_EQ(mappi_set("name", nullptr), -1);
    EXPECT_EQ(mappi_set(nullptr, "x"), -1);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 6);
    EXPECT_THAT(said, HasSubstr("no value for name\n"));
}

TEST_F(StoreTest, OneBadWriteKeepsOutAllWritesOfTheCall)
{
    EXPECT_NE(store_write({{"good", "1"}, {"", "2"}}, Marking::mark), "");
    EXPECT_FALSE(store_has("good"));
}

TEST_F(StoreTest, SettingsAreListedByPrefixInTheOrderOfTheirBytes)
{
    for (const char *key : {"b1", "a2", "a10", "a", "ab", "\xc3\xa4"}) {
        ASSERT_EQ(set(key, "x"), "");
    }
    EXPECT_EQ(listed(""), (Lines{"a=x", "a10=x", "a2=x", "ab=x", "b1=x", "\xc3\xa4=x"}));
    EXPECT_EQ(listed("a"), (Lines{"a=x", "a10=x", "a2=x", "ab=x"}));
    EXPECT_EQ(listed("zz"), Lines{});
    EXPECT_EQ(listed(std::string(600, 'a')), Lines{});
}

TEST_F(StoreTest, AFullStoreIsSaidWithTheKeyAndNothingOfTheCallIsWritten)
{
    ASSERT_EQ(set("before", "1"), "");
    std::vector<StoreWrite> writes;
    for (int i = 0; i < 600; ++i) {
        writes.push_back({numbered("big", i), std::string(store_value_limit, 'v')});
    }
    EXPECT_THAT(store_write(writes, Marking::mark), testing::StartsWith("store is full: big"));
    EXPECT_EQ(listed(""), Lines{"before=1"});
    EXPECT_EQ(set("after", "2"), "");
    EXPECT_STREQ(config_get("after"), "2");
}

TEST_F(StoreTest, SettingsOfAFullStoreCanBeRemovedAgain)
{
    std::string error;
    int count = 0;
    while (error.empty() && count < 1000) {
        error = set(numbered("big", count++), std::string(store_value_limit, 'v'));
    }
    ASSERT_THAT(error, testing::StartsWith("store is full: big"));
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(config_unset(numbered("big", i).c_str()), 0);
    }
    EXPECT_EQ(set("small", "1"), "");
    EXPECT_STREQ(config_get("small"), "1");
}

TEST_F(StoreTest, AFullMemoryFileSystemRefusesTheWriteAndLaterWritesSucceed)
{
    ASSERT_EQ(set("before", "1"), "");
    const rlim_t now = std::filesystem::file_size(root / "tmp/cache/config");
    store_close();
    EXPECT_EQ(end_of(start_process([now] {
                  std::signal(SIGXFSZ, SIG_IGN);
                  const rlimit full{now, RLIM_INFINITY};
                  const rlimit free{RLIM_INFINITY, RLIM_INFINITY};
                  if (config_match("before", "1") != 1 || ::setrlimit(RLIMIT_FSIZE, &full) != 0) {
                      return 1;
                  }
                  const std::string error = set("big", std::string(store_value_limit, 'v'));
                  if (error.find("cannot write big to ") != 0 || store_has("big")) {
                      return 2;
                  }
                  ::setrlimit(RLIMIT_FSIZE, &free);
                  return config_set("after", "1") == 0 && config_match("before", "1") == 1 ? 0 : 3;
              })),
              0);
    EXPECT_EQ(listed(""), (Lines{"after=1", "before=1"}));
}

TEST_F(StoreTest, AStoreThatCannotBeOpenedIsSaidWithPathAndReason)
{
    std::filesystem::remove_all(root / "tmp");
    EXPECT_EQ(set("key", "x"), "cannot open the store, no folder " + (root / "tmp/cache") +
                                   ": No such file or directory");
    testing::internal::CaptureStderr();
    EXPECT_STREQ(config_get("key"), "");
    EXPECT_STREQ(config_get("key"), "");
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    std::filesystem::create_directory(root / "tmp");
    EXPECT_EQ(set("key", "x"), "") << "the folder can come later";
}

TEST_F(StoreTest, AFileThatIsNoStoreIsNotTouched)
{
    std::filesystem::create_directory(root / "tmp/cache/config");
    EXPECT_EQ(set("key", "x"),
              "cannot open the store " + (root / "tmp/cache/config") + ": Is a directory");
}

TEST_F(StoreTest, EachRootHasAStoreOfItsOwn)
{
    ASSERT_EQ(set("key", "first"), "");
    {
        const ScratchRoot second;
        EXPECT_STREQ(config_get("key"), "");
        ASSERT_EQ(set("key", "second"), "");
        EXPECT_STREQ(config_get("key"), "second");
        set_path_root(root.path());
        EXPECT_STREQ(config_get("key"), "first");
    }
    set_path_root(root.path());
    EXPECT_STREQ(config_get("key"), "first");
}

TEST_F(StoreTest, TheStoreFileIsForItsOwnerOnly)
{
    ASSERT_EQ(set("password", "x"), "");
    using std::filesystem::perms;
    for (const auto &entry : std::filesystem::directory_iterator(root / "tmp/cache")) {
        if (entry.is_regular_file()) {
            EXPECT_EQ(entry.status().permissions() & (perms::group_all | perms::others_all),
                      perms::none)
                << entry.path();
        }
    }
    EXPECT_TRUE(std::filesystem::is_regular_file(root / "tmp/cache/config"));
}

TEST_F(StoreTest, WritersInSeveralProcessesLoseNothing)
{
    constexpr int writers = 4;
    constexpr int rounds = 100;
    ASSERT_EQ(set("opened", "1"), "");
    std::vector<pid_t> processes;
    for (int writer = 0; writer < writers; ++writer) {
        processes.push_back(start_process([writer] {
            for (int round = 0; round < rounds; ++round) {
                const auto name = numbered("w", writer) + "_" + std::to_string(round);
                if (config_set(name.c_str(), "x") != 0 || config_match(name.c_str(), "x") != 1) {
                    return 1;
                }
            }
            return 0;
        }));
    }
    for (const pid_t process : processes) {
        EXPECT_EQ(end_of(process), 0);
    }
    EXPECT_EQ(listed("w").size(), std::size_t{writers * rounds});
    std::vector<MarkedKey> marked;
    ASSERT_EQ(store_marked_keys(marked), "");
    std::vector<std::uint64_t> serials;
    for (const MarkedKey &key : marked) {
        serials.push_back(key.serial);
    }
    std::sort(serials.begin(), serials.end());
    EXPECT_EQ(std::unique(serials.begin(), serials.end()), serials.end());
    EXPECT_EQ(marked.size(), std::size_t{writers * rounds + 1});
}

TEST_F(StoreTest, AKilledWriterLeavesWholeTransactionsAndHoldsUpNobody)
{
    constexpr std::size_t size = 50;
    for (int round = 1; round <= 15; ++round) {
        const std::string mark = std::to_string(round);
        const pid_t writer = start_process([&mark]() -> int {
            for (char c = 'a';; c = c == 'z' ? 'a' : static_cast<char>(c + 1)) {
                std::vector<StoreWrite> writes;
                for (std::size_t i = 0; i < size; ++i) {
                    writes.push_back({numbered("v", i), mark + std::string(4000, c)});
                }
                if (!store_write(writes, Marking::mark).empty()) {
                    return 1;
                }
            }
        });
        const bool wrote =
            eventually([&] { return config_value("v0").substr(0, mark.size() + 1) == mark + "b"; });
        ::kill(writer, SIGKILL);
        EXPECT_EQ(end_of(writer), 128 + SIGKILL);
        ASSERT_TRUE(wrote);
        const std::string first = config_value("v0");
        for (std::size_t i = 1; i < size; ++i) {
            ASSERT_EQ(config_value(numbered("v", i)), first);
        }
        ASSERT_EQ(config_set("still", mark.c_str()), 0);
        ASSERT_STREQ(config_get("still"), mark.c_str());
    }
}

TEST_F(StoreTest, AForkedProcessUsesAnEnvironmentOfItsOwn)
{
    ASSERT_EQ(set("key", "parent"), "");
    EXPECT_EQ(end_of(start_process([] {
                  const bool read = config_match("key", "parent") == 1;
                  return read && config_set("key", "child") == 0 ? 0 : 1;
              })),
              0);
    EXPECT_STREQ(config_get("key"), "child");
    EXPECT_EQ(config_set("key", "parent again"), 0);
    EXPECT_STREQ(config_get("key"), "parent again");
}

TEST_F(StoreTest, ReadersInManyThreadsSeeWholeValuesWhileOneWrites)
{
    constexpr int readers = 4;
    ASSERT_EQ(set("key", std::string(3000, 'a')), "");
    std::atomic<bool> stop{false};
    std::atomic<int> torn{0};
    std::atomic<int> reads{0};
    std::vector<std::thread> threads;
    for (int reader = 0; reader < readers; ++reader) {
        threads.emplace_back([&] {
            while (!stop) {
                const std::string text = config_get("key");
                torn += text == std::string(3000, text.empty() ? '?' : text[0]) ? 0 : 1;
                ++reads;
            }
        });
    }
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(config_set("key", std::string(3000, static_cast<char>('a' + i % 26)).c_str()), 0);
    }
    EXPECT_TRUE(eventually([&] { return reads > 1000; }));
    stop = true;
    for (auto &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(torn, 0);
}

TEST_F(StoreTest, ThreadsThatComeAndGoDoNotUseUpTheReaderSlots)
{
    ASSERT_EQ(set("key", "x"), "");
    for (int i = 0; i < 600; ++i) {
        int match = 0;
        std::thread([&match] { match = config_match("key", "x"); }).join();
        ASSERT_EQ(match, 1) << "thread " << i;
    }
}

/// Threads that begin while it lives have small stacks: many of them fit into 32 bits of addresses.
class SmallStacks {
public:
    SmallStacks()
    {
        constexpr std::size_t small = 1024 * 1024;
        pthread_getattr_default_np(&usual_);
        pthread_attr_t attributes{};
        pthread_getattr_default_np(&attributes);
        pthread_attr_setstacksize(&attributes, small);
        pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    }
    ~SmallStacks()
    {
        pthread_setattr_default_np(&usual_);
        pthread_attr_destroy(&usual_);
    }
    SmallStacks(const SmallStacks &) = delete;
    SmallStacks &operator=(const SmallStacks &) = delete;

private:
    pthread_attr_t usual_{};
};

TEST_F(StoreTest, ThreadsThatHaveReadHoldNoReaderSlot)
{
    const SmallStacks small_stacks;
    ASSERT_EQ(set("key", "x"), "");
    std::promise<void> end;
    const std::shared_future<void> all_have_read = end.get_future().share();
    std::vector<std::thread> threads;
    for (int i = 0; i < 600; ++i) {
        std::promise<int> match;
        std::future<int> matched = match.get_future();
        threads.emplace_back([all_have_read, match = std::move(match)]() mutable {
            match.set_value(config_match("key", "x"));
            all_have_read.wait();
        });
        EXPECT_EQ(matched.get(), 1) << "thread " << i;
    }
    end.set_value();
    for (auto &thread : threads) {
        thread.join();
    }
}

TEST_F(StoreTest, TheStoreMayBeClosedWhileThreadsRead)
{
    ASSERT_EQ(set("key", "x"), "");
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int reader = 0; reader < 3; ++reader) {
        threads.emplace_back([&] {
            while (!stop) {
                wrong += config_match("key", "x") == 1 ? 0 : 1;
                std::this_thread::yield();
            }
        });
    }
    for (int i = 0; i < 50; ++i) {
        store_close();
    }
    stop = true;
    for (auto &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace qorcfg
