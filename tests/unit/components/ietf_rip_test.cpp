#include "components/components.h"

#include "engine/systeminfo.h"
#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

class IetfRipTest : public testing::Test {
protected:
    /// The options of the section, for these settings on top of the earlier ones.
    std::string options(std::initializer_list<std::pair<const char *, std::string>> settings)
    {
        device_.set(settings);
        device_.start_up(ietf_rip);
        const std::string begin = R"({"rip":{"lan":{)";
        const std::string text = device_.document("rip", "lan");
        return text.rfind(begin, 0) == 0 ? text.substr(begin.size(), text.size() - begin.size() - 3)
                                         : text;
    }

    const DeviceRoot device_;
};

TEST_F(IetfRipTest, KeysAreSubscribedInOrder)
{
    EXPECT_EQ(device_.subscribed_keys(ietf_rip),
              (Lines{"ap_mode", "rip_direction", "rip_version", "ripd_enable", "wan_proto",
                     "rip_key_string", "rip_password"}));
    EXPECT_EQ(device_.log()[0], "init() - Initializing rip");
    device_.start_up();
    EXPECT_EQ(device_.log().back(), " update rip");
    ietf_rip.register_();
    EXPECT_EQ(device_.log().back(), "register() -  rip");
}

TEST_F(IetfRipTest, AccessPointModeSwitchesItOff)
{
    EXPECT_EQ(options({{"ap_mode", "1"},
                       {"rip_version", "1"},
                       {"rip_direction", "2"},
                       {"rip_password", "secret"}}),
              R"("enable":"0","version":"0","direction":"0")");
}

TEST_F(IetfRipTest, VersionZeroSwitchesItOffAndKeepsTheDirection)
{
    EXPECT_EQ(options({{"rip_version", "0"},
                       {"rip_direction", "1"},
                       {"ripd_enable", "1"},
                       {"rip_password", "secret"}}),
              R"("enable":"0","version":"0","direction":"1")");
}

TEST_F(IetfRipTest, EachVersionHasItsName)
{
    const auto with = [](const std::string &version) {
        return R"("enable":"1","version":")" + version + R"(","direction":"0")";
    };
    EXPECT_EQ(options({{"rip_version", "1"}, {"rip_direction", "0"}}), with("rip1"));
    EXPECT_EQ(options({{"rip_version", "2"}}), with("rip2b"));
    EXPECT_EQ(options({{"rip_version", "3"}}), with("rip2m"));
    EXPECT_EQ(options({{"rip_version", "00"}}), with("rip2m"));
    EXPECT_EQ(options({{"rip_version", ""}}), with("rip2m"));
}

TEST_F(IetfRipTest, AnyOtherDirectionIsTwo)
{
    const auto direction = [&](const char *value) {
        const std::string text = options({{"rip_version", "0"}, {"rip_direction", value}});
        return text.substr(text.rfind(':') + 1);
    };
    EXPECT_EQ(direction("0"), R"("0")");
    EXPECT_EQ(direction("1"), R"("1")");
    EXPECT_EQ(direction("2"), R"("2")");
    EXPECT_EQ(direction("both"), R"("2")");
    EXPECT_EQ(direction(""), R"("2")");
}

TEST_F(IetfRipTest, TheKeyStringLosesItsLastCharacterAndThePasswordNone)
{
    EXPECT_EQ(options({{"rip_version", "2"},
                       {"rip_direction", "1"},
                       {"rip_key_string", "abc"},
                       {"rip_password", "pass"}}),
              R"("enable":"1","version":"rip2b","md5":"ab","text":"pass","direction":"1")");
}

TEST_F(IetfRipTest, AKeyStringOfOneCharacterOrNoneGivesNoOption)
{
    for (const char *key : {"", "a"}) {
        EXPECT_EQ(options({{"rip_version", "1"}, {"rip_direction", "1"}, {"rip_key_string", key}}),
                  R"("enable":"1","version":"rip1","direction":"1")");
    }
}

TEST_F(IetfRipTest, SecretsAreCutAt32CharactersFirst)
{
    EXPECT_EQ(options({{"rip_version", "1"},
                       {"rip_direction", "1"},
                       {"rip_key_string", std::string(300, 'k')},
                       {"rip_password", std::string(300, 'p')}}),
              R"("enable":"1","version":"rip1","md5":")" + std::string(31, 'k') + R"(","text":")" +
                  std::string(32, 'p') + R"(","direction":"1")");
}

TEST_F(IetfRipTest, TheSectionBearsTheDevicesNameAndTheFilesAreLans)
{
    const std::string section = systeminfo[lan_net_section].value;
    systeminfo[lan_net_section].value = "home";
    options({{"rip_version", "0"}});
    systeminfo[lan_net_section].value = section;
    EXPECT_EQ(device_.startup_lines("rip", "lan")[0], "set rip.home=rip");
}

TEST_F(IetfRipTest, ASatelliteWritesToo)
{
    device_.be_base(false);
    EXPECT_EQ(device_.run_update(ietf_rip, 1), 0);
    EXPECT_EQ(device_.lines(1, "rip", "lan"),
              (Lines{"set rip.lan=rip", "set rip.lan.enable=1", "set rip.lan.version=rip2m",
                     "set rip.lan.direction=2"}));
}

} // namespace
} // namespace qorcfg
