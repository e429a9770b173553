#include "support/control_listener.h"
#include "support/qorctl_test.h"

#include "platform/key_id.h"

namespace qorcfg {

namespace {

class QorctlAnnounce : public QorctlTest {};

std::string number(const char *key)
{
    return std::to_string(config_key_id(key));
}

TEST_F(QorctlAnnounce, KeysAreAnnouncedAtOnceByTheirOwnNumbersWithoutCommit)
{
    ControlListener daemon;
    EXPECT_EQ(run({"announce", "endis_ddns", "sysDNSUser_5"}).status, 0);
    EXPECT_EQ(run({"announce", "--action", "0", "a"}).status, 0);
    // The last one shows that nothing came between.
    EXPECT_EQ(run({"announce", "a", "--action=-7"}).status, 0);
    EXPECT_EQ(daemon.messages(4),
              (std::vector<std::string>{"2:" + number("endis_ddns"), "2:" + number("sysDNSUser_5"),
                                        "0:" + number("a"), "-7:" + number("a")}));
}

TEST_F(QorctlAnnounce, TheActionThatCommitsIsRefused)
{
    EXPECT_TRUE(run({"announce", "a", "--action", "3"}).refused(2, "--action 3"));
    EXPECT_TRUE(run({"announce", "a", "--action", "x"}).refused(2, "--action"));
    EXPECT_TRUE(run({"announce", "a", "--action", "4294967296"}).refused(2, "--action"));
    EXPECT_TRUE(run({"announce", "a", ""}).refused(2, "empty"));
}

TEST_F(QorctlAnnounce, WithoutDaemonTheKeyAndTheSocketAreNamed)
{
    const std::string socket = path("/tmp/cache/qorcfg/server.socket");
    const Outcome refused = run({"announce", "endis_ddns"});
    EXPECT_TRUE(refused.refused(1, "endis_ddns"));
    EXPECT_TRUE(refused.refused(1, socket));
}

TEST_F(QorctlAnnounce, IdPrintsKeyAndNumberOfEach)
{
    EXPECT_EQ(run({"id", "a", "endis_ddns"}).out,
              "a 6357089\nendis_ddns " + number("endis_ddns") + "\n");
    EXPECT_EQ(json_of(run({"id", "a", "b", "--json"})), R"({"a":6357089,"b":6422626})");
}

} // namespace

} // namespace qorcfg
