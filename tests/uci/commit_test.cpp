#include "uci/uci_scratch.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace qorcfg {
namespace {

class UciCommitTest : public testing::Test {
protected:
    UciCommitTest() { UciScratch::write(scratch_.config("p"), old_text); }

    static int set(uci_context *ctx, std::string text)
    {
        uci_ptr ptr{};
        uci_lookup_ptr(ctx, &ptr, text.data(), true);
        return uci_set(ctx, &ptr);
    }
    uci_package *load()
    {
        uci_package *package = nullptr;
        EXPECT_EQ(uci_load(ctx_.get(), "p", &package), UCI_OK);
        return package;
    }
    std::size_t files_in_confdir() const
    {
        const std::filesystem::directory_iterator files(scratch_.confdir());
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }
    static std::string exported(uci_context *ctx, uci_package *package)
    {
        const std::unique_ptr<FILE, int (*)(FILE *)> file(std::tmpfile(), &std::fclose);
        EXPECT_EQ(uci_export(ctx, file.get(), package, true), UCI_OK);
        std::rewind(file.get());
        std::string text;
        for (int c = std::getc(file.get()); c != EOF; c = std::getc(file.get())) {
            text += static_cast<char>(c);
        }
        return text;
    }
    static mode_t mode(const std::string &path)
    {
        struct stat info {};
        return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
    }

    static constexpr const char *old_text = "# comment\nconfig t 'a'\n\toption x '1'\n";
    UciScratch scratch_;
    UciHandle ctx_ = open_uci(scratch_);
};

/// Runs `body` in a child process whose files cannot grow past `bytes`; gives its result.
int with_full_disk(rlim_t bytes, const std::function<int()> &body)
{
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, bytes};
        ::_exit(::setrlimit(RLIMIT_FSIZE, &limit) == 0 ? body() : 99);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(UciCommitTest, AFullDiskFailsTheCommitAndKeepsFileAndChanges)
{
    const std::string big = "config t 'a'\n\toption x '" + std::string(20000, 'x') + "'\n";
    UciScratch::write(scratch_.config("p"), big);
    uci_package *package = load();
    ASSERT_EQ(set(ctx_.get(), "p.a.y=2"), UCI_OK);
    const int result = with_full_disk(8192, [&] {
        uci_package *mine = package;
        const int failed = uci_commit(ctx_.get(), &mine, false);
        // What was handed in must still be the package, with its values.
        const bool usable = mine == package && set(ctx_.get(), "p.a.z=3") == UCI_OK;
        return usable ? failed : 98;
    });
    EXPECT_EQ(result, UCI_ERR_IO);
    EXPECT_EQ(UciScratch::read(scratch_.config("p")), big);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "p.a.y='2'\n");
    EXPECT_EQ(files_in_confdir(), 1U) << "a temporary file stayed";

    // With room again the same changes arrive.
    const UciHandle later = open_uci(scratch_);
    ASSERT_EQ(uci_load(later.get(), "p", &package), UCI_OK);
    EXPECT_EQ(uci_commit(later.get(), &package, false), UCI_OK);
    EXPECT_NE(UciScratch::read(scratch_.config("p"))->find("\toption y '2'\n"), std::string::npos);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "");
}

TEST_F(UciCommitTest, AFullDiskLeavesNoEmptyFileOfANewPackage)
{
    const std::unique_ptr<FILE, int (*)(FILE *)> file(std::tmpfile(), &std::fclose);
    std::fputs(("config t\n\toption x '" + std::string(20000, 'x') + "'\n").c_str(), file.get());
    std::rewind(file.get());
    uci_package *package = nullptr;
    ASSERT_EQ(uci_import(ctx_.get(), file.get(), "new", &package, true), UCI_OK);
    EXPECT_EQ(with_full_disk(8192, [&] { return uci_commit(ctx_.get(), &package, true); }),
              UCI_ERR_IO);
    EXPECT_EQ(UciScratch::read(scratch_.config("new")), std::nullopt);
}

TEST_F(UciCommitTest, AFullSaveFolderFailsTheSaveAndStoresNoHalfLine)
{
    std::filesystem::create_directory(scratch_.savedir());
    UciScratch::write(scratch_.changes("p"), "p.a.w='0'\n");
    load();
    ASSERT_EQ(set(ctx_.get(), "p.a.y=" + std::string(500, 'y')), UCI_OK);
    uci_package *package = uci_lookup_package(ctx_.get(), "p");
    EXPECT_EQ(with_full_disk(100, [&] { return uci_save(ctx_.get(), package); }), UCI_ERR_IO);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "p.a.w='0'\n");
    EXPECT_EQ(uci_save(ctx_.get(), package), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")),
              "p.a.w='0'\np.a.y='" + std::string(500, 'y') + "'\n");
}

TEST_F(UciCommitTest, AChangeThatWasCutOffDoesNotSwallowTheNextOne)
{
    std::filesystem::create_directory(scratch_.savedir());
    UciScratch::write(scratch_.changes("p"), "p.a.y='2'\np.a.z='cut o");
    load();
    ASSERT_EQ(set(ctx_.get(), "p.a.w=4"), UCI_OK);
    uci_package *package = uci_lookup_package(ctx_.get(), "p");
    ASSERT_EQ(uci_save(ctx_.get(), package), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "p.a.y='2'\np.a.w='4'\n");
}

TEST_F(UciCommitTest, ASaveFolderThatIsAFileKeepsTheChangesInMemory)
{
    uci_package *package = load();
    ASSERT_EQ(set(ctx_.get(), "p.a.y=2"), UCI_OK);
    UciScratch::write(scratch_.savedir(), "");
    EXPECT_EQ(uci_save(ctx_.get(), package), UCI_ERR_IO);
    EXPECT_EQ(uci_message(ctx_.get(), "uci"), "uci: I/O error");
    std::filesystem::remove(scratch_.savedir());
    EXPECT_EQ(uci_save(ctx_.get(), package), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "p.a.y='2'\n");
    EXPECT_EQ(uci_save(ctx_.get(), nullptr), UCI_ERR_INVAL);
}

TEST_F(UciCommitTest, AMissingConfigFolderFailsTheCommitAndKeepsThePackage)
{
    uci_package *package = load();
    ASSERT_EQ(set(ctx_.get(), "p.a.y=2"), UCI_OK);
    std::filesystem::rename(scratch_.confdir(), scratch_.root() + "/away");
    uci_package *const before = package;
    EXPECT_EQ(uci_commit(ctx_.get(), &package, false), UCI_ERR_IO);
    EXPECT_EQ(package, before);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "p.a.y='2'\n");
    std::filesystem::rename(scratch_.root() + "/away", scratch_.confdir());
    EXPECT_EQ(uci_commit(ctx_.get(), &package, false), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.config("p")),
              "\nconfig t 'a'\n\toption x '1'\n\toption y '2'\n\n");
}

TEST_F(UciCommitTest, WithoutChangesTheFileIsNotTouched)
{
    uci_package *package = load();
    EXPECT_EQ(uci_commit(ctx_.get(), &package, false), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.config("p")), old_text);
}

TEST_F(UciCommitTest, ACommitTakesInWhatOthersWroteMeanwhile)
{
    uci_package *package = load();
    ASSERT_EQ(set(ctx_.get(), "p.a.y=2"), UCI_OK);
    UciScratch::write(scratch_.config("p"), "config t 'a'\n\toption w '7'\n");
    const UciHandle other = open_uci(scratch_);
    ASSERT_EQ(set(other.get(), "p.b=u"), UCI_OK);
    ASSERT_EQ(uci_save(other.get(), uci_lookup_package(other.get(), "p")), UCI_OK);
    EXPECT_EQ(uci_commit(ctx_.get(), &package, false), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.config("p")),
              "\nconfig t 'a'\n\toption w '7'\n\toption y '2'\n\nconfig u 'b'\n\n");
    EXPECT_NE(uci_lookup_section(ctx_.get(), package, "b"), nullptr);
    EXPECT_EQ(uci_lookup_package(ctx_.get(), "p"), package);
}

TEST_F(UciCommitTest, AnOverwritingCommitWritesThePackageAsItStands)
{
    uci_package *package = load();
    ASSERT_EQ(set(ctx_.get(), "p.a.y=2"), UCI_OK);
    EXPECT_EQ(uci_commit(ctx_.get(), &package, true), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.config("p")),
              "\nconfig t 'a'\n\toption x '1'\n\toption y '2'\n\n");
}

TEST_F(UciCommitTest, APackageByPathHasNoPendingChangesAndIsWrittenAsItStands)
{
    std::filesystem::create_directory(scratch_.savedir());
    UciScratch::write(scratch_.changes("p"), "p.a.staged='1'\n");
    uci_package *package = nullptr;
    ASSERT_EQ(uci_load(ctx_.get(), scratch_.config("p").c_str(), &package), UCI_OK);
    EXPECT_STREQ(package->e.name, "p");
    EXPECT_FALSE(package->has_delta);
    ASSERT_EQ(set(ctx_.get(), "p.a.y=2"), UCI_OK);
    EXPECT_EQ(uci_save(ctx_.get(), package), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.config("p")),
              "\nconfig t 'a'\n\toption x '1'\n\toption y '2'\n\n");
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "p.a.staged='1'\n");

    ASSERT_EQ(set(ctx_.get(), "p.b=u"), UCI_OK);
    uci_ptr ptr{};
    std::string path = "p.b=no-name";
    ASSERT_EQ(uci_lookup_ptr(ctx_.get(), &ptr, path.data(), true), UCI_OK);
    ASSERT_EQ(uci_rename(ctx_.get(), &ptr), UCI_OK);
    EXPECT_EQ(uci_save(ctx_.get(), package), UCI_ERR_INVAL) << "nobody could load that";
    EXPECT_EQ(UciScratch::read(scratch_.config("p")),
              "\nconfig t 'a'\n\toption x '1'\n\toption y '2'\n\n");
}

TEST_F(UciCommitTest, ModesOfFilesAreKept)
{
    ::chmod(scratch_.config("p").c_str(), 0640);
    const mode_t umask = ::umask(0);
    uci_package *package = load();
    ASSERT_EQ(set(ctx_.get(), "p.a.y=2"), UCI_OK);
    EXPECT_EQ(uci_commit(ctx_.get(), &package, false), UCI_OK);
    ::umask(umask);
    EXPECT_EQ(mode(scratch_.config("p")), 0640U);
    EXPECT_EQ(mode(scratch_.changes("p")), 0640U);
    EXPECT_EQ(mode(scratch_.savedir()), mode(scratch_.confdir()));
}

TEST_F(UciCommitTest, ALinkedConfigStaysALink)
{
    const std::string target = scratch_.root() + "/target";
    std::filesystem::rename(scratch_.config("p"), target);
    std::filesystem::create_symlink("../target", scratch_.config("p"));
    uci_package *package = load();
    ASSERT_EQ(set(ctx_.get(), "p.a.y=2"), UCI_OK);
    EXPECT_EQ(uci_commit(ctx_.get(), &package, false), UCI_OK);
    EXPECT_TRUE(std::filesystem::is_symlink(scratch_.config("p")));
    EXPECT_EQ(UciScratch::read(target), "\nconfig t 'a'\n\toption x '1'\n\toption y '2'\n\n");
}

/// Waits until somebody is blocked on the lock of an open file. False after ten seconds.
bool somebody_waits_for(int fd)
{
    struct stat info {};
    if (::fstat(fd, &info) != 0) {
        return false;
    }
    const auto inode = std::string(":").append(std::to_string(info.st_ino)).append(" ");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < deadline) {
        std::ifstream locks("/proc/locks");
        for (std::string line; std::getline(locks, line);) {
            if (line.find("->") != std::string::npos && line.find(inode) != std::string::npos) {
                return true;
            }
        }
        std::this_thread::yield();
    }
    return false;
}

TEST_F(UciCommitTest, ACommitThatWaitedForTheLockWritesOnTopOfTheNewFile)
{
    uci_package *package = load();
    ASSERT_EQ(set(ctx_.get(), "p.a.y=2"), UCI_OK);
    // Another program holds the file, replaces it, and only then lets go.
    const int held = ::open(scratch_.config("p").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(held, 0);
    ASSERT_EQ(::flock(held, LOCK_EX), 0);
    int result = -1;
    std::thread waiting([&] { result = uci_commit(ctx_.get(), &package, false); });
    EXPECT_TRUE(somebody_waits_for(held));
    UciScratch::write(scratch_.config("p") + ".new", "config t 'a'\n\toption other '7'\n");
    std::filesystem::rename(scratch_.config("p") + ".new", scratch_.config("p"));
    ::close(held);
    waiting.join();
    EXPECT_EQ(result, UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.config("p")),
              "\nconfig t 'a'\n\toption other '7'\n\toption y '2'\n\n");
}

TEST_F(UciCommitTest, ManyContextsLoseNoChangeOfEachOther)
{
    constexpr int workers = 4;
    constexpr int rounds = 25;
    std::array<std::string, workers> failures;
    std::vector<std::thread> threads;
    threads.reserve(workers);
    for (int worker = 0; worker < workers; ++worker) {
        threads.emplace_back([&, worker] {
            for (int round = 0; round < rounds; ++round) {
                const UciHandle ctx = open_uci(scratch_);
                const auto option = std::to_string(worker) + "_" + std::to_string(round);
                uci_package *package = nullptr;
                if (uci_load(ctx.get(), "p", &package) != UCI_OK ||
                    set(ctx.get(), "p.a.o" + option + "=1") != UCI_OK ||
                    uci_commit(ctx.get(), &package, false) != UCI_OK) {
                    failures[static_cast<std::size_t>(worker)] =
                        option + ": " + uci_message(ctx.get(), nullptr);
                }
            }
        });
    }
    for (auto &thread : threads) {
        thread.join();
    }
    for (const auto &failure : failures) {
        EXPECT_EQ(failure, "");
    }
    const uci_section *section = uci_lookup_section(ctx_.get(), load(), "a");
    int options = 0;
    uci_element *e = nullptr;
    uci_foreach_element(&section->options, e)
    {
        ++options;
    }
    EXPECT_EQ(options, workers * rounds + 1);
}

TEST_F(UciCommitTest, LoadResultsAreTheDocumentedOnes)
{
    uci_package *package = nullptr;
    EXPECT_EQ(uci_load(ctx_.get(), "nop", &package), UCI_ERR_NOTFOUND);
    EXPECT_EQ(uci_message(ctx_.get(), "uci"), "uci: Entry not found");
    EXPECT_EQ(uci_load(ctx_.get(), "a b", &package), UCI_ERR_INVAL);
    EXPECT_EQ(uci_load(ctx_.get(), "", &package), UCI_ERR_INVAL);
    EXPECT_EQ(uci_load(ctx_.get(), nullptr, &package), UCI_ERR_INVAL);
    EXPECT_EQ(uci_load(ctx_.get(), "../config/p", &package), UCI_ERR_NOTFOUND);
    EXPECT_EQ(package, nullptr);
    EXPECT_EQ(uci_load(ctx_.get(), "p", &package), UCI_OK);
    EXPECT_EQ(uci_load(ctx_.get(), "p", &package), UCI_ERR_DUPLICATE);
    EXPECT_EQ(uci_unload(ctx_.get(), nullptr), UCI_ERR_INVAL);
    EXPECT_EQ(uci_unload(ctx_.get(), package), UCI_OK);
    EXPECT_EQ(uci_set_confdir(ctx_.get(), nullptr), UCI_ERR_INVAL);
    EXPECT_EQ(uci_set_savedir(ctx_.get(), nullptr), UCI_ERR_INVAL);
    EXPECT_EQ(uci_set_confdir(ctx_.get(), "/nonexistent"), UCI_OK);
    EXPECT_EQ(uci_load(ctx_.get(), "p", &package), UCI_ERR_NOTFOUND);
}

TEST_F(UciCommitTest, AFifoUnderAPackagesNameStopsNobody)
{
    ASSERT_EQ(::mkfifo(scratch_.config("fifo").c_str(), 0600), 0);
    uci_package *package = nullptr;
    EXPECT_EQ(uci_load(ctx_.get(), "fifo", &package), UCI_ERR_NOTFOUND);
    EXPECT_EQ(uci_load(ctx_.get(), scratch_.confdir().c_str(), &package), UCI_ERR_NOTFOUND);
}

TEST_F(UciCommitTest, AThousandFailuresGiveOneAndTheSameMessage)
{
    UciScratch::write(scratch_.config("bad"), "config t 'a\n");
    uci_package *package = nullptr;
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(uci_load(ctx_.get(), "bad", &package), UCI_ERR_PARSE);
        char *text = nullptr;
        uci_get_errorstr(ctx_.get(), &text, "uci");
        const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
        ASSERT_STREQ(text, "uci: Parse error (EOF with unterminated ') at line 1, byte 12");
    }
    ASSERT_EQ(uci_load(ctx_.get(), "nop", &package), UCI_ERR_NOTFOUND);
    EXPECT_EQ(uci_message(ctx_.get(), nullptr), "Entry not found") << "detail of an older failure";
}

TEST_F(UciCommitTest, AnOverridingFolderWinsUntilItIsTurnedOff)
{
    const std::string override_dir = scratch_.root() + "/override";
    std::filesystem::create_directory(override_dir);
    UciScratch::write(override_dir + "/p", "config t 'other'\n");
    EXPECT_EQ(uci_set_conf2dir(ctx_.get(), override_dir.c_str()), UCI_OK);
    uci_package *package = load();
    EXPECT_NE(uci_lookup_section(ctx_.get(), package, "other"), nullptr);
    ASSERT_EQ(uci_unload(ctx_.get(), package), UCI_OK);
    EXPECT_EQ(uci_set_conf2dir(ctx_.get(), nullptr), UCI_OK);
    EXPECT_EQ(uci_lookup_section(ctx_.get(), load(), "other"), nullptr);
}

TEST_F(UciCommitTest, ChangesOfFurtherFoldersAreSeenAndCommitted)
{
    const std::string further = scratch_.root() + "/further";
    std::filesystem::create_directory(further);
    UciScratch::write(further + "/p", "p.a.y='2'\nq.a.z='3'\np.nos.z='4'\n");
    EXPECT_EQ(uci_add_delta_path(ctx_.get(), further.c_str()), UCI_OK);
    EXPECT_EQ(uci_add_delta_path(ctx_.get(), further.c_str()), UCI_ERR_DUPLICATE);
    uci_package *package = load();
    EXPECT_EQ(uci_commit(ctx_.get(), &package, false), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.config("p")),
              "\nconfig t 'a'\n\toption x '1'\n\toption y '2'\n\n");
}

TEST_F(UciCommitTest, RevertDropsTheChangesOfASectionOrAnOption)
{
    load();
    for (const char *text : {"p.a.y=2", "p.a.z=3", "p.b=t", "p.b.y=4"}) {
        ASSERT_EQ(set(ctx_.get(), text), UCI_OK);
    }
    uci_ptr ptr{};
    std::string option = "p.a.y";
    ASSERT_EQ(uci_lookup_ptr(ctx_.get(), &ptr, option.data(), true), UCI_OK);
    EXPECT_EQ(uci_revert(ctx_.get(), &ptr), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "p.a.z='3'\np.b='t'\np.b.y='4'\n");
    ptr = {};
    std::string section = "p.b";
    ASSERT_EQ(uci_lookup_ptr(ctx_.get(), &ptr, section.data(), true), UCI_OK);
    EXPECT_EQ(uci_revert(ctx_.get(), &ptr), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "p.a.z='3'\n");
    EXPECT_EQ(uci_lookup_section(ctx_.get(), ptr.p, "b"), nullptr);
}

TEST_F(UciCommitTest, TextsAreImportedAsPackagesOrMergedIntoOne)
{
    const std::unique_ptr<FILE, int (*)(FILE *)> file(std::tmpfile(), &std::fclose);
    std::fputs("package one\nconfig t 'a'\n\toption x '1'\npackage two\nconfig u\n", file.get());
    std::rewind(file.get());
    uci_package *package = nullptr;
    EXPECT_EQ(uci_import(ctx_.get(), file.get(), nullptr, &package, false), UCI_OK);
    ASSERT_NE(package, nullptr);
    EXPECT_EQ(exported(ctx_.get(), package), "package two\n\nconfig u\n\n");
    EXPECT_EQ(uci_commit(ctx_.get(), &package, false), UCI_ERR_INVAL) << "it has no file yet";
    EXPECT_EQ(uci_commit(ctx_.get(), &package, true), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.config("two")), "\nconfig u\n\n");
    EXPECT_EQ(mode(scratch_.config("two")), 0600U);
    EXPECT_EQ(exported(ctx_.get(), uci_lookup_package(ctx_.get(), "one")),
              "package one\n\nconfig t 'a'\n\toption x '1'\n\n");

    std::rewind(file.get());
    package = nullptr;
    EXPECT_EQ(uci_import(ctx_.get(), file.get(), nullptr, &package, false), UCI_ERR_DUPLICATE);
    package = load();
    std::rewind(file.get());
    EXPECT_EQ(uci_import(ctx_.get(), file.get(), nullptr, &package, true), UCI_OK);
    EXPECT_EQ(uci_save(ctx_.get(), package), UCI_OK);
    EXPECT_EQ(UciScratch::read(scratch_.changes("p")), "+p.cfg02b61a='u'\n");

    std::rewind(file.get());
    package = nullptr;
    EXPECT_EQ(uci_import(ctx_.get(), file.get(), nullptr, &package, true), UCI_ERR_PARSE);
    EXPECT_EQ(uci_import(ctx_.get(), file.get(), "empty", &package, true), UCI_OK);
    EXPECT_EQ(exported(ctx_.get(), package), "package empty\n\n");
}

TEST_F(UciCommitTest, AllPackagesAreListedInOrderWithoutTemporaryFiles)
{
    UciScratch::write(scratch_.config("b"), "");
    UciScratch::write(scratch_.config("a"), "");
    UciScratch::write(scratch_.config("p.tmp"), "");
    UciScratch::write(scratch_.config(".p.uci-x"), "");
    std::filesystem::create_directory(scratch_.config("folder"));
    char **names = nullptr;
    ASSERT_EQ(uci_list_configs(ctx_.get(), &names), UCI_OK);
    const std::unique_ptr<char *, decltype(&std::free)> owner(names, &std::free);
    std::vector<std::string> found;
    for (char **name = names; *name != nullptr; ++name) {
        found.emplace_back(*name);
    }
    EXPECT_EQ(found, (std::vector<std::string>{"a", "b", "p"}));
}

TEST_F(UciCommitTest, AHundredThousandSectionsAreHandledInLinearTime)
{
    constexpr int count = 100000;
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += "config t 's" + std::to_string(i) + "'\n\toption x '1'\n";
    }
    UciScratch::write(scratch_.config("p"), text);
    uci_package *package = load();
    // Walking the list for each of these would take 10^10 steps.
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(set(ctx_.get(), "p.s" + std::to_string(i) + ".x=2"), UCI_OK);
    }
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(set(ctx_.get(), "p.s0.o" + std::to_string(i) + "=v"), UCI_OK);
    }
    for (int i = 1; i < count; ++i) {
        ASSERT_EQ(set(ctx_.get(), "p.s" + std::to_string(i) + "="), UCI_OK);
    }
    ASSERT_EQ(uci_commit(ctx_.get(), &package, false), UCI_OK);
    const auto written = UciScratch::read(scratch_.config("p"));
    EXPECT_EQ(std::count(written->begin(), written->end(), '\n'), count + 4);
}

} // namespace
} // namespace qorcfg
