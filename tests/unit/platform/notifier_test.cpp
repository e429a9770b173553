#include "platform/reference/notifier.h"

#include "platform/fd.h"
#include "platform/key_id.h"
#include "support/forked_process.h"
#include "support/scratch_root.h"
#include "support/text.h"

#include <cerrno>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace qorcfg {
namespace {

using std::chrono::milliseconds;
using Names = std::vector<std::string>;

/// A listening socket at the daemon's place.
class Listener {
public:
    explicit Listener(const std::string &path, int backlog = 8)
        : fd_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        if (::bind(fd_.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
            ::listen(fd_.get(), backlog) != 0) {
            fd_.reset();
        }
    }
    explicit operator bool() const { return static_cast<bool>(fd_); }
    Fd accept() const { return Fd(::accept4(fd_.get(), nullptr, nullptr, SOCK_CLOEXEC)); }
    void close() { fd_.reset(); }

private:
    Fd fd_;
};

/// Everything up to the end of the stream.
std::string read_all(const Fd &fd)
{
    std::string text;
    char block[64];
    for (;;) {
        const ssize_t got = ::read(fd.get(), block, sizeof block);
        if (got <= 0) {
            return text;
        }
        text.append(block, static_cast<std::size_t>(got));
    }
}

std::vector<MarkedKey> changed(const std::vector<std::string> &names)
{
    std::vector<MarkedKey> keys;
    for (const std::string &name : names) {
        keys.push_back({name, KeyChange::changed, keys.size() + 1});
    }
    return keys;
}

/// "action:id" of each announcement.
Names announced(const AnnouncementGroup &group)
{
    Names lines;
    for (const Announcement &announcement : group.announcements) {
        lines.push_back(std::to_string(announcement.action) + ":" +
                        std::to_string(announcement.id));
    }
    return lines;
}

Names completed(const AnnouncementGroup &group)
{
    Names names;
    for (const MarkedKey &key : group.completed) {
        names.push_back(key.key);
    }
    return names;
}

std::string line(int action, const char *key)
{
    return std::to_string(action) + ":" + std::to_string(config_key_id(key));
}

TEST(NotifierTest, AKeyOfAListIsAnnouncedWithTheNameOfTheList)
{
    EXPECT_EQ(announced_names("reservation3"), (Names{"reservation3", "reservation"}));
    EXPECT_EQ(announced_names("sysDNSUser_5"), (Names{"sysDNSUser_5", "sysDNSUser_"}));
    EXPECT_EQ(announced_names("wan_ether_dns1"), (Names{"wan_ether_dns1", "wan_ether_dns"}));
    EXPECT_EQ(announced_names("filter128"), (Names{"filter128", "filter"}));
}

TEST(NotifierTest, AKeyWithoutDigitsAtItsEndAndOneOfDigitsAloneStandForThemselves)
{
    EXPECT_EQ(announced_names("endis_ddns"), Names{"endis_ddns"});
    EXPECT_EQ(announced_names("wl2g_ssid"), Names{"wl2g_ssid"});
    EXPECT_EQ(announced_names("12345"), Names{"12345"});
}

TEST(NotifierTest, AScheduleOfASatelliteIsAnnouncedWithTheNameOfAllSchedules)
{
    EXPECT_EQ(announced_names("led_time_schedule_A1B2C3D4E5F6_1"),
              (Names{"led_time_schedule_A1B2C3D4E5F6_1", "led_time_schedule"}));
    EXPECT_EQ(announced_names("led_time_schedule_A1B2C3D4E5F6"),
              (Names{"led_time_schedule_A1B2C3D4E5F6", "led_time_schedule"}));
    EXPECT_EQ(announced_names("led_time_schedule"), Names{"led_time_schedule"});
    EXPECT_EQ(announced_names("led_time_schedules1"),
              (Names{"led_time_schedules1", "led_time_schedules"}));
}

TEST(NotifierTest, NoMarkedKeysNeedNoCommit)
{
    EXPECT_TRUE(plan_announcements({}).empty());
}

TEST(NotifierTest, TheOwnNumberComesFirstAndTheListHasTheActionOfTheKey)
{
    const auto groups = plan_announcements({{"endis_ddns", KeyChange::changed, 1},
                                            {"reservation2", KeyChange::removed, 2},
                                            {"upnp_enable", KeyChange::created, 3}});
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_EQ(announced(groups[0]), (Names{line(2, "endis_ddns"), line(1, "reservation2"),
                                           line(1, "reservation"), line(0, "upnp_enable")}));
    EXPECT_EQ(completed(groups[0]), (Names{"endis_ddns", "reservation2", "upnp_enable"}));
}

TEST(NotifierTest, ANumberIsAnnouncedOnceWithTheActionOfItsFirstKey)
{
    const auto groups = plan_announcements({{"reservation1", KeyChange::created, 1},
                                            {"reservation", KeyChange::changed, 2},
                                            {"reservation2", KeyChange::removed, 3}});
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_EQ(announced(groups[0]),
              (Names{line(0, "reservation1"), line(0, "reservation"), line(1, "reservation2")}));
    EXPECT_EQ(completed(groups[0]).size(), 3U);
}

TEST(NotifierTest, MoreThanSixtyFourNumbersMakeSeveralCommits)
{
    Names names;
    for (int i = 1; i <= 100; ++i) {
        names.push_back(numbered("reservation", i));
    }
    const auto groups = plan_announcements(changed(names));
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].announcements.size(), 64U);
    EXPECT_EQ(groups[0].completed.size(), 63U) << "the list took one place";
    EXPECT_EQ(groups[1].announcements.size(), 37U);
    EXPECT_EQ(groups[1].completed.size(), 37U);
    EXPECT_EQ(groups[1].completed[0].key, "reservation64");
    EXPECT_EQ(groups[1].completed[0].serial, 64U);
}

TEST(NotifierTest, TheNumbersOfOneKeyAreNotTornApart)
{
    Names names;
    for (int i = 0; i < 63; ++i) {
        names.push_back("plain" + std::string(1, static_cast<char>('A' + i % 26)) +
                        std::string(static_cast<std::size_t>(i / 26), 'x'));
    }
    names.emplace_back("reservation1");
    const auto groups = plan_announcements(changed(names));
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].announcements.size(), 63U);
    EXPECT_EQ(announced(groups[1]), (Names{line(2, "reservation1"), line(2, "reservation")}));
}

TEST(NotifierTest, AKeyIsCompleteWithTheLastGroupThatCarriesOneOfItsNumbers)
{
    Names names{"reservation1"};
    for (int i = 0; i < 62; ++i) {
        names.push_back("plain" + std::string(static_cast<std::size_t>(i + 1), 'x'));
    }
    names.emplace_back("zone");
    names.emplace_back("reservation");
    const auto groups = plan_announcements(changed(names));
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].completed.back().key, "reservation") << "announced by the first group";
    EXPECT_EQ(completed(groups[1]), Names{"zone"});
}

class SendTest : public testing::Test {
protected:
    ScratchRoot root;
    std::string path = root / "tmp/cache/qorcfg/server.socket";
};

TEST_F(SendTest, EachMessageHasAConnectionOfItsOwn)
{
    const Listener daemon(path);
    ASSERT_TRUE(daemon);
    EXPECT_TRUE(send_message(2, 853673979).ok());
    EXPECT_TRUE(send_message(commit_action, 0).ok());
    EXPECT_EQ(read_all(daemon.accept()), "2:853673979");
    EXPECT_EQ(read_all(daemon.accept()), "3:0");
}

TEST_F(SendTest, WaitingReturnsOnceTheDaemonHasReadAndClosed)
{
    const Listener daemon(path);
    ASSERT_TRUE(daemon);
    std::string got;
    std::thread server([&] { got = read_all(daemon.accept()); });
    const SendResult result = send_message(0, 7, {milliseconds(20000), true});
    server.join();
    EXPECT_TRUE(result.ok()) << result.text;
    EXPECT_EQ(got, "0:7");
}

TEST_F(SendTest, ADaemonThatKeepsTheConnectionOpenIsGivenUp)
{
    const Listener daemon(path);
    ASSERT_TRUE(daemon);
    const SendResult result = send_message(0, 7, {milliseconds(50), true});
    EXPECT_EQ(result.error, ETIMEDOUT);
    EXPECT_EQ(result.text,
              "the daemon did not take the message on " + path + ": Connection timed out");
    EXPECT_FALSE(result.no_daemon());
}

TEST_F(SendTest, ADaemonThatClosesWithoutReadingIsNoSuccess)
{
    const Listener daemon(path);
    ASSERT_TRUE(daemon);
    std::thread server([&] {
        const Fd connection = daemon.accept();
        char first = 0;
        // Until the message is there; the rest of it stays unread.
        EXPECT_EQ(::read(connection.get(), &first, 1), 1);
    });
    const SendResult result = send_message(0, 7, {milliseconds(20000), true});
    server.join();
    EXPECT_EQ(result.error, ECONNRESET);
}

TEST_F(SendTest, AFullBacklogIsGivenUpAtTheTimeLimit)
{
    const Listener daemon(path, 0);
    ASSERT_TRUE(daemon);
    SendResult result;
    for (int i = 0; i < 10 && result.ok(); ++i) {
        result = send_message(0, i, {milliseconds(50), false});
    }
    EXPECT_EQ(result.error, ETIMEDOUT);
    EXPECT_EQ(result.text, "cannot connect to " + path + ": Connection timed out");
}

TEST_F(SendTest, NoSocketAndASocketThatNobodyListensOnAreToldApart)
{
    const SendResult missing = send_message(0, 7);
    EXPECT_EQ(missing.error, ENOENT);
    EXPECT_TRUE(missing.no_daemon());
    EXPECT_EQ(missing.text, "no daemon has run: there is no socket " + path);
    Listener daemon(path);
    ASSERT_TRUE(daemon);
    daemon.close();
    const SendResult refused = send_message(0, 7);
    EXPECT_EQ(refused.error, ECONNREFUSED);
    EXPECT_TRUE(refused.no_daemon());
    EXPECT_EQ(refused.text, "no daemon listens on " + path);
}

TEST_F(SendTest, ARootTooLongForASocketAddressIsSaid)
{
    set_path_root("/" + std::string(100, 'r'));
    const SendResult result = send_message(0, 7);
    EXPECT_EQ(result.error, ENAMETOOLONG);
    EXPECT_THAT(result.text, testing::StartsWith("socket path longer than 107 bytes: /rrr"));
    EXPECT_FALSE(result.no_daemon());
}

} // namespace
} // namespace qorcfg
