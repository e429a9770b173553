#include "components/components.h"

#include "platform/key_id.h"
#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfDdnsTest, KeysAreSubscribedInOrderTheStemsAsTheyStand)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_ddns),
              (Lines{"endis_ddns", "sysDNSProviderlist", "endis_wildcards", "n_dns_have_account",
                     "sysDNSUser_", "sysDNSHost_", "sysDNSPassword_"}));
    EXPECT_EQ(device.log()[0], "init() - Initializing ddns");
    EXPECT_EQ(registry().find(config_key_id("sysDNSUser_5")), nullptr);
    device.clear_log();
    ietf_ddns.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  ddns"});
}

class IetfDdnsProviderTest : public testing::Test {
protected:
    IetfDdnsProviderTest()
    {
        device_.set({{"endis_ddns", "1"},
                     {"endis_wildcards", "0"},
                     {"n_dns_have_account", "2"},
                     {"sysDNSUser_1", "u1"},
                     {"sysDNSUser_2", "u2"},
                     {"sysDNSUser_3", "u3"},
                     {"sysDNSUser_4", "u4"},
                     {"sysDNSUser_5", "u5"},
                     {"sysDNSHost_1", "h1"},
                     {"sysDNSHost_2", "h2"},
                     {"sysDNSHost_3", "h3"},
                     {"sysDNSHost_4", "h4"},
                     {"sysDNSHost_5", "h5"},
                     {"sysDNSPassword_1", "p1"},
                     {"sysDNSPassword_2", "p2"},
                     {"sysDNSPassword_3", "p3"},
                     {"sysDNSPassword_4", "p4"},
                     {"sysDNSPassword_5", "p5"}});
    }
    std::string document(const char *provider)
    {
        device_.set({{"sysDNSProviderlist", provider}});
        device_.start_up(ietf_ddns);
        return device_.document("ddns", "service");
    }
    static std::string expected(const std::string &section, const std::string &options)
    {
        return R"({"ddns":{"global":{"enabled":"1","upd_privateip":"1","provider":")" + section +
               R"("}},"service":{")" + section + R"(":{"enabled":"1",)" + options + "}}}";
    }

    DeviceRoot device_;
};

TEST_F(IetfDdnsProviderTest, EachProviderHasItsKeysAndExtras)
{
    EXPECT_EQ(document("ZELTRAX"),
              expected("ddns_zeltrax", R"("username":"u5","domain":"h5","have_account":"2")"));
    EXPECT_EQ(document("www.DynDNS.org"),
              expected("ddns_dyn", R"("username":"u1","password":"p1","domain":"h1",)"
                                   R"("service_name":"members.dyndns.org")"));
    EXPECT_EQ(document("oray"),
              expected("ddns_oray", R"("username":"u2","password":"p2","domain":"h2",)"
                                    R"("service_name":"ddns.oray.com")"));
    EXPECT_EQ(document("3322"),
              expected("ddns_ddns3322",
                       R"("username":"u3","password":"p3","domain":"h3","use_wildcards":"0",)"
                       R"("service_name":"members.3322.org")"));
    EXPECT_EQ(document("no-ip"),
              expected("ddns_noip", R"("username":"u4","password":"p4","domain":"h4",)"
                                    R"("service_name":"dynupdate.no-ip.com")"));
}

TEST_F(IetfDdnsProviderTest, TheFirstRowThatMatchesWins)
{
    EXPECT_NE(document("DynDNS ZELTRAX").find("ddns_zeltrax"), std::string::npos);
    EXPECT_NE(document("no-ip 3322").find("ddns_ddns3322"), std::string::npos);
}

TEST_F(IetfDdnsProviderTest, OnlyTheFirst29CharactersNameTheProvider)
{
    EXPECT_NE(document("12345678901234567890123DynDNS").find("ddns_dyn"), std::string::npos);
    EXPECT_NE(document("123456789012345678901234DynDNS").find("N/A"), std::string::npos);
}

TEST_F(IetfDdnsProviderTest, AnUnknownProviderGivesAnEmptyServiceContainer)
{
    EXPECT_EQ(document("other"),
              R"({"ddns":{"global":{"enabled":"1","upd_privateip":"1","provider":"N/A"}},)"
              R"("service":{}})");
}

TEST_F(IetfDdnsProviderTest, SwitchingProvidersDeletesTheOldSection)
{
    document("3322");
    device_.set({{"sysDNSProviderlist", "oray"}});
    device_.apply({"sysDNSProviderlist"}, 4);
    EXPECT_EQ(device_.lines(4, "ddns", "service"),
              (Lines{"delete ddns.global", "delete ddns.ddns_ddns3322", "set ddns.global=ddns",
                     "set ddns.global.enabled=1", "set ddns.global.upd_privateip=1",
                     "set ddns.global.provider=ddns_oray", "set ddns.ddns_oray=service",
                     "set ddns.ddns_oray.enabled=1", "set ddns.ddns_oray.username=u2",
                     "set ddns.ddns_oray.password=p2", "set ddns.ddns_oray.domain=h2",
                     "set ddns.ddns_oray.service_name=ddns.oray.com"}));
}

TEST_F(IetfDdnsProviderTest, UnsetKeysYieldNoOption)
{
    device_.set({{"endis_ddns", ""}, {"sysDNSUser_2", ""}, {"sysDNSPassword_2", ""}});
    EXPECT_EQ(document("oray"),
              R"({"ddns":{"global":{"upd_privateip":"1","provider":"ddns_oray"}},"service":{)"
              R"("ddns_oray":{"domain":"h2","service_name":"ddns.oray.com"}}})");
}

TEST_F(IetfDdnsProviderTest, ASatelliteWritesNothing)
{
    device_.be_base(false);
    device_.clear_log();
    EXPECT_EQ(device_.run_update(ietf_ddns, 1), 1);
    EXPECT_EQ(device_.log().back(), " update package ddns");
    EXPECT_EQ(device_.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
}

} // namespace
} // namespace qorcfg
