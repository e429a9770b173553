#include "components/components.h"

#include "core/base/hooks.h"
#include "engine/json.h"
#include "platform/key_id.h"
#include "platform/qor_platform.h"
#include "support/device_root.h"

#include <atomic>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using testing::HasSubstr;
using Lines = std::vector<std::string>;

constexpr const char *type_file = "/tmp/cache/netscan/kova_dev_type_zltx";
const std::string soap_folder = "/tmp/cache/soapclient/sr/defaultname/";
const std::string mac = "00:11:22:33:44:55";

class IetfAttachedDevicesTest : public testing::Test {
protected:
    std::string devices() const
    {
        device_.start_up(ietf_attached_devices);
        return device_.document("conndev", "dev_custom");
    }
    /// The document that holds these devices and nothing else.
    static std::string listing(const std::string &elements)
    {
        return R"({"dev_custom":[{"alias-name":"true"})" +
               std::string(elements.empty() ? "" : ",") + elements + "]}";
    }
    UpdateCallback callback_of(const char *key) const
    {
        return registry().find(config_key_id(key))->normal.at(0);
    }

    DeviceRoot device_;
};

TEST_F(IetfAttachedDevicesTest, KeysAreSubscribedInOrder)
{
    EXPECT_EQ(device_.subscribed_keys(ietf_attached_devices),
              (Lines{"kova_dev_name", "kova_dev_name_zltx", "kova_dev_type_zltx",
                     "kova_dev_name_v2_zltx", "set_zltx_dev_name", "kova_hid_mac", "kova_hid_name",
                     "kova_hid_model", "kova_hid_devtype"}));
    EXPECT_EQ(device_.log().front(), "init() - Initializing attached_devices");
    EXPECT_EQ(device_.log().back(), "init() - Soap Initializing attached_devices");
    Lines with_soap;
    for (const char *key : {"kova_dev_name", "kova_dev_name_zltx", "set_zltx_dev_name"}) {
        if (!registry().find(config_key_id(key))->soap.empty()) {
            with_soap.emplace_back(key);
        }
    }
    EXPECT_EQ(with_soap, (Lines{"kova_dev_name", "set_zltx_dev_name"}));
}

TEST_F(IetfAttachedDevicesTest, EachKeyTriggersItsDocumentAndItsLine)
{
    const struct {
        const char *key;
        const char *snapshot;
        const char *log;
    } rows[] = {{"kova_dev_name", "dev_custom", " update attached_devices"},
                {"kova_dev_name_zltx", "dev_custom", " update attached_devices"},
                {"kova_dev_type_zltx", "dev_custom", " update attached_devices"},
                {"kova_dev_name_v2_zltx", "dev_custom", " update attached_devices"},
                {"set_zltx_dev_name", "zltx_name", " update set zltx device name"},
                {"kova_hid_mac", "custom", " update device custom"},
                {"kova_hid_name", "custom", " update device custom"},
                {"kova_hid_model", "custom", " update device custom"},
                {"kova_hid_devtype", "custom", " update device custom"}};
    device_.enable(ietf_attached_devices);
    int job = 0;
    for (const auto &row : rows) {
        device_.clear_log();
        EXPECT_EQ(callback_of(row.key)(++job), 0) << row.key;
        EXPECT_EQ(device_.log(), Lines{row.log}) << row.key;
        EXPECT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update" + std::to_string(job) +
                                   ".conndev." + row.snapshot))
            << row.key;
    }
    device_.clear_log();
    ietf_attached_devices.register_();
    EXPECT_EQ(device_.log(), Lines{"register() -  attached_devices"});
}

TEST_F(IetfAttachedDevicesTest, AttachPointAndNameSetTravelAsStored)
{
    device_.set({{"kova_hid_mac", mac},
                 {"kova_hid_name", "Kova <base>"},
                 {"kova_hid_model", "K7"},
                 {"kova_hid_devtype", "router"},
                 {"set_zltx_dev_name", "00:11:22:33:44:55 \"TV\""}});
    device_.start_up(ietf_attached_devices);
    EXPECT_EQ(
        device_.startup_lines("conndev", "custom"),
        (Lines{"set conndev.custom=conndev", "set conndev.custom.device_mac=00:11:22:33:44:55",
               "set conndev.custom.device_name=Kova <base>", "set conndev.custom.device_model=K7",
               "set conndev.custom.device_type=router"}));
    EXPECT_EQ(device_.startup_lines("conndev", "zltx_name"),
              (Lines{"set conndev.zltx_name=conndev",
                     "set conndev.zltx_name.device_name_set=00:11:22:33:44:55 \"TV\""}));
}

TEST_F(IetfAttachedDevicesTest, WithoutDevicesTheListHoldsItsMarkerAlone)
{
    EXPECT_EQ(devices(), listing(""));
    EXPECT_EQ(device_.startup_lines("conndev", "dev_custom"), Lines{});
}

TEST_F(IetfAttachedDevicesTest, ADeviceGathersItsNamesAndTypes)
{
    device_.set({{"kova_dev_name1", mac + " Anna's TV"},
                 {"kova_dev_name_zltx1", mac + " tv Living room (TV)"},
                 {"kova_dev_name_v2_zltx1", mac + " 47 Screen #2"}});
    device_.start_up(ietf_attached_devices);
    EXPECT_EQ(device_.startup_lines("conndev", "dev_custom"),
              (Lines{"set conndev.dev_custom_0=dev_custom",
                     "set conndev.dev_custom_0.device_mac=00:11:22:33:44:55",
                     "set conndev.dev_custom_0.device_name=Anna&#39;s TV",
                     "set conndev.dev_custom_0.device_model=Screen &#35;2",
                     "set conndev.dev_custom_0.device_type=tv",
                     "set conndev.dev_custom_0.device_type_v2=47"}));
}

TEST_F(IetfAttachedDevicesTest, DevicesComeBucketByBucketTheNewestFirst)
{
    // Buckets 9, 1, 1, 0 and 1, in the order of their first mention.
    device_.set({{"kova_dev_name1", "12:34:56:78:00:01 a"},
                 {"kova_dev_name2", "01:00:00:00:00:02 b"},
                 {"kova_dev_name3", "00:01:00:00:00:03 c"},
                 {"kova_dev_name_zltx1", "00:11:22:33:00:04 t d"},
                 {"kova_dev_name_v2_zltx1", "01:00:00:00:00:05 t e"},
                 {"kova_dev_name_v2_zltx2", "01:00:00:00:00:02 t f"}});
    EXPECT_EQ(
        devices(),
        listing(R"({"device_mac":"00:11:22:33:00:04","device_model":"d","device_type":"t"},)"
                R"({"device_mac":"01:00:00:00:00:05","device_model":"e","device_type_v2":"t"},)"
                R"({"device_mac":"00:01:00:00:00:03","device_name":"c"},)"
                R"({"device_mac":"01:00:00:00:00:02","device_name":"b","device_model":"f",)"
                R"("device_type_v2":"t"},)"
                R"({"device_mac":"12:34:56:78:00:01","device_name":"a"})"));
}

TEST_F(IetfAttachedDevicesTest, NothingOfAnEarlierRunShows)
{
    device_.set({{"kova_dev_name1", "01:00:00:00:00:01 a"},
                 {"kova_dev_name2", "01:00:00:00:00:02 b"},
                 {"kova_dev_type_zltx1", mac + " 0 0"}});
    devices();
    device_.set({{"kova_dev_name1", "01:00:00:00:00:02 b"},
                 {"kova_dev_name2", ""},
                 {"kova_dev_type_zltx1", ""},
                 {"kova_dev_name_zltx1", mac + " tv TV"}});
    EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55","device_model":"TV",)"
                                 R"("device_type":"tv"},{"device_mac":"01:00:00:00:00:02",)"
                                 R"("device_name":"b"})"));
    EXPECT_EQ(device_.read(type_file), "");
}

TEST_F(IetfAttachedDevicesTest, CustomNamesThatNameNobodyAreSkippedButDoNotEndTheList)
{
    device_.set({{"kova_dev_name1", "001122334455 no colon"},
                 {"kova_dev_name2", mac},
                 {"kova_dev_name3", mac + " "},
                 {"kova_dev_name4", ": unparsable"},
                 {"kova_dev_name5", "00:11:22:33:44 short"},
                 {"kova_dev_name6", "00:11:22:33:44:55/../../x slash"},
                 {"kova_dev_name7", "\n" + mac + " behind the line"},
                 {"kova_dev_name8", "  02:00:00:00:00:01  two words\nlost"},
                 {"kova_dev_name10", "02:00:00:00:00:02 behind the end"}});
    EXPECT_EQ(devices(),
              listing(R"({"device_mac":"02:00:00:00:00:01","device_name":" two words"})"));
}

TEST_F(IetfAttachedDevicesTest, ALaterMentionReplacesTheName)
{
    device_.set({{"kova_dev_name1", mac + " first"}, {"kova_dev_name2", mac + " second"}});
    EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55","device_name":"second"})"));
}

TEST_F(IetfAttachedDevicesTest, EveryEscapedCharacterOfANameIsEscapedInBothNames)
{
    const std::string name = R"(\"()#&<>')";
    device_.set(
        {{"kova_dev_name1", mac + " " + name}, {"kova_dev_name_zltx1", mac + " <t&v> " + name}});
    device_.start_up(ietf_attached_devices);
    const std::string escaped = "&#92;&#34;&#40;&#41;&#35;&#38;&lt;&gt;&#39;";
    EXPECT_EQ(device_.startup_lines("conndev", "dev_custom"),
              (Lines{"set conndev.dev_custom_0=dev_custom",
                     "set conndev.dev_custom_0.device_mac=00:11:22:33:44:55",
                     "set conndev.dev_custom_0.device_name=" + escaped,
                     "set conndev.dev_custom_0.device_model=" + escaped,
                     "set conndev.dev_custom_0.device_type=<t&v>"}));
}

TEST_F(IetfAttachedDevicesTest, OverLongTextsAreCutToTheirFields)
{
    const std::string quotes(300, '"');
    std::string escaped;
    for (int i = 0; i < 51; ++i) {
        escaped += "&#34;";
    }
    ASSERT_EQ(escaped.size(), 255U);
    device_.set({{"kova_dev_name1", mac + " " + std::string(300, 'n')},
                 {"kova_dev_name_zltx1", mac + " " + std::string(40, 't') + " " + quotes},
                 {"kova_dev_name_v2_zltx1", mac + " " + std::string(40, 'u') + " " + quotes}});
    // A custom setting is cut as a whole, its address included, before it is taken apart.
    EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55","device_name":")" +
                                 std::string(237, 'n') + R"(","device_model":")" + escaped +
                                 R"(","device_type":")" + std::string(29, 't') +
                                 R"(","device_type_v2":")" + std::string(29, 'u') + "\"}"));
}

TEST_F(IetfAttachedDevicesTest, AnEntityIsCutWhereTheFieldEnds)
{
    // One byte and 63 entities of 4, and what fits of the next.
    device_.set({{"kova_dev_name_zltx1", mac + " t n" + std::string(64, '<')}});
    std::string name = "n";
    for (int i = 0; i < 63; ++i) {
        name += "&lt;";
    }
    EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55","device_model":")" + name +
                                 R"(&l","device_type":"t"})"));
}

TEST_F(IetfAttachedDevicesTest, ReportsGoByTheFlagsOfTheTypeFile)
{
    const struct {
        const char *flags;
        const char *options; ///< what the document has of the device, null for no device at all
    } rows[] = {{"0 1", R"("device_type":"tv")"},
                {"1 0", R"("device_model":"TV")"},
                {"1 1", R"("device_model":"TV","device_type":"tv")"},
                {"0 0", nullptr},
                {"7 -1", R"("device_model":"TV","device_type":"tv")"},
                {"no 1", R"("device_type":"tv")"},
                {"\t0\t 1 surplus", R"("device_type":"tv")"},
                {"0", R"("device_model":"TV","device_type":"tv")"}};
    for (const auto &row : rows) {
        device_.set({{"kova_dev_type_zltx1", "aa:bb:cc:dd:ee:ff 1 1"},
                     {"kova_dev_type_zltx2", mac + " " + row.flags},
                     {"kova_dev_name_zltx1", mac + " tv TV"}});
        EXPECT_EQ(devices(), row.options == nullptr
                                 ? listing("")
                                 : listing("{\"device_mac\":\"" + mac + "\"," + row.options + "}"))
            << row.flags;
    }
}

TEST_F(IetfAttachedDevicesTest, TheFirstTypeLineOfADeviceCountsAndItsAddressAsText)
{
    device_.set({{"kova_dev_type_zltx1", "AA:00:00:00:00:01 0 0"},
                 {"kova_dev_type_zltx2", "aa:00:00:00:00:01 0 1\naa:00:00:00:00:01 1 0"},
                 {"kova_dev_type_zltx3", "aa:00:00:00:00:01 1 1"},
                 {"kova_dev_name_v2_zltx1", "aa:00:00:00:00:01 tv TV"}});
    EXPECT_EQ(devices(), listing(R"({"device_mac":"aa:00:00:00:00:01","device_type_v2":"tv"})"));
}

TEST_F(IetfAttachedDevicesTest, SeventeenCharactersOfATypeLinesFirstTokenCount)
{
    device_.set(
        {{"kova_dev_type_zltx1", mac + "-old 0 1"}, {"kova_dev_name_zltx1", mac + " tv TV"}});
    EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55","device_type":"tv"})"));
}

TEST_F(IetfAttachedDevicesTest, AReportWithoutNameOrTypeClearsThem)
{
    device_.set({{"kova_dev_name_zltx1", mac + " tv TV"},
                 {"kova_dev_name_zltx2", mac},
                 {"kova_dev_name_v2_zltx1", "02:00:00:00:00:01 v2\nlost"}});
    EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55"},)"
                                 R"({"device_mac":"02:00:00:00:00:01","device_type_v2":"v2"})"));
}

TEST_F(IetfAttachedDevicesTest, ReportsWithoutUsableAddressAreSkipped)
{
    device_.set({{"kova_dev_name_zltx1", "001122334455 tv TV"},
                 {"kova_dev_name_zltx2", "zz:11:22:33:44:55 tv TV"},
                 {"kova_dev_name_zltx3", "00:11:22:33:44:55/x tv TV"},
                 {"kova_dev_name_zltx4", mac + " tv TV"}});
    EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55","device_model":"TV",)"
                                 R"("device_type":"tv"})"));
}

TEST_F(IetfAttachedDevicesTest, TheTypeFileHoldsTheStoresLines)
{
    device_.set({{"kova_dev_type_zltx1", mac + " 1 0"},
                 {"kova_dev_type_zltx2", " anything\tat all"},
                 {"kova_dev_type_zltx4", "behind the end"}});
    const mode_t umask = ::umask(077);
    devices();
    ::umask(umask);
    EXPECT_EQ(device_.read(type_file), mac + " 1 0\n anything\tat all\n");
    struct stat info {};
    ASSERT_EQ(::stat(device_.path("/tmp/cache/netscan").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0755U);
    ASSERT_EQ(::stat(device_.path(type_file).c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0644U);
    device_.set({{"kova_dev_type_zltx1", "shorter"}, {"kova_dev_type_zltx2", ""}});
    devices();
    EXPECT_EQ(device_.read(type_file), "shorter\n");
    EXPECT_EQ(device_.names_in("/tmp/cache/netscan"), Lines{"kova_dev_type_zltx"});
}

TEST_F(IetfAttachedDevicesTest, WithoutATypeFileBothPartsOfAReportAreTaken)
{
    device_.write("/tmp/cache/netscan", "no folder");
    device_.set({{"kova_dev_type_zltx1", mac + " 0 0"}, {"kova_dev_name_zltx1", mac + " tv TV"}});
    EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55","device_model":"TV",)"
                                 R"("device_type":"tv"})"));
    EXPECT_THAT(device_.log(), testing::Contains(HasSubstr(
                                   "cannot write /tmp/cache/netscan/kova_dev_type_zltx: ")));
    EXPECT_EQ(device_.read("/tmp/cache/netscan"), "no folder");
}

TEST_F(IetfAttachedDevicesTest, TheSoapClientsFileGetsTheNameUnescaped)
{
    const std::string file = soap_folder + mac;
    device_.write(file, R"({"mac":"x","custom name":"old","n":{"a":[1]}})");
    ASSERT_EQ(::chmod(device_.path(file).c_str(), 0640), 0);
    device_.set({{"kova_dev_name1", mac + R"( Anna "TV" <&>)"}});
    EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55",)"
                                 R"("device_name":"Anna &#34;TV&#34; &lt;&#38;&gt;"})"));
    EXPECT_EQ(device_.read(file), "{\n"
                                  "  \"mac\":\"x\",\n"
                                  "  \"custom name\":\"Anna \\\"TV\\\" <&>\",\n"
                                  "  \"n\":{\n"
                                  "    \"a\":[\n"
                                  "      1\n"
                                  "    ]\n"
                                  "  }\n"
                                  "}");
    EXPECT_EQ(device_.names_in(soap_folder), Lines{mac});
    struct stat info {};
    ASSERT_EQ(::stat(device_.path(file).c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
}

TEST_F(IetfAttachedDevicesTest, TheSoapClientsFileIsExtendedButNeverMade)
{
    device_.write(soap_folder + mac, "{}");
    device_.set({{"kova_dev_name1", mac + " TV"}, {"kova_dev_name2", "02:00:00:00:00:01 Phone"}});
    devices();
    EXPECT_EQ(device_.names_in(soap_folder), Lines{mac});
    const Json file = parse_json(device_.read(soap_folder + mac), JsonSyntax::strict);
    EXPECT_EQ(json_compact_text(file.get()), R"({"custom name":"TV"})");
}

TEST_F(IetfAttachedDevicesTest, TheNameOfASoapClientsFileIsCutAt127Characters)
{
    const std::string longest = mac + std::string(127 - soap_folder.size() - mac.size(), 'x');
    for (const std::string &name : {longest, longest + 'x'}) {
        device_.write(soap_folder + name, "{}");
    }
    device_.set({{"kova_dev_name1", longest + "x TV"}});
    EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55","device_name":"TV"})"));
    EXPECT_THAT(device_.read(soap_folder + longest), HasSubstr("TV"));
    EXPECT_EQ(device_.read(soap_folder + longest + 'x'), "{}");
}

TEST_F(IetfAttachedDevicesTest, ASoapClientsFileThatIsNoObjectIsLeftAlone)
{
    device_.set({{"kova_dev_name1", mac + " TV"}});
    for (const char *content : {"", "{\"custom name\": \"o", "[1]", "\"text\"", "null", "7"}) {
        device_.write(soap_folder + mac, content);
        EXPECT_EQ(devices(), listing(R"({"device_mac":"00:11:22:33:44:55","device_name":"TV"})"));
        EXPECT_EQ(device_.read(soap_folder + mac), content);
    }
}

TEST_F(IetfAttachedDevicesTest, FilesThatCannotBeWrittenStayAsTheyWereAndTheJobGoesOn)
{
    const std::string device_file = R"({"filler":")" + std::string(8000, 'f') + R"("})";
    device_.write(soap_folder + mac, device_file);
    device_.write(type_file, "old\n");
    device_.set({{"kova_dev_name1", mac + " TV"},
                 {"kova_dev_type_zltx1", mac + " 0 1 " + std::string(8000, 'f')}});
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const rlimit small{4096, old.rlim_max};
    const auto old_handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string doc = devices();
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, old_handler);
    EXPECT_EQ(doc, listing(R"({"device_mac":"00:11:22:33:44:55","device_name":"TV"})"));
    EXPECT_EQ(device_.read(soap_folder + mac), device_file);
    EXPECT_EQ(device_.read(type_file), "old\n");
    EXPECT_EQ(device_.names_in(soap_folder), Lines{mac});
    EXPECT_EQ(device_.names_in("/tmp/cache/netscan"), Lines{"kova_dev_type_zltx"});
    EXPECT_THAT(
        device_.log(),
        testing::IsSupersetOf({"cannot write " + soap_folder + mac + ": File too large",
                               std::string("cannot write ") + type_file + ": File too large"}));
}

TEST_F(IetfAttachedDevicesTest, NoSettingReachesAFileOutsideTheSoapClientsFolder)
{
    const std::string outside = "/tmp/cache/soapclient/sr/victim";
    device_.write(outside, "{}");
    device_.write(soap_folder + mac + "/inner", "{}");
    device_.set({{"kova_dev_name1", mac + "/../../victim TV"},
                 {"kova_dev_name2", "../victim: TV"},
                 {"kova_dev_name3", mac + "/inner TV"}});
    EXPECT_EQ(devices(), listing(""));
    EXPECT_EQ(device_.read(outside), "{}");
    EXPECT_EQ(device_.read(soap_folder + mac + "/inner"), "{}");
}

TEST_F(IetfAttachedDevicesTest, EachNameTellsTheSatellitesWithItsOwnWord)
{
    device_.enable(ietf_attached_devices);
    device_.apply({"kova_dev_name"}, 1);
    EXPECT_STREQ(config_get("soap_setting"), "KovaDevName");
    device_.apply({"set_zltx_dev_name"}, 2);
    EXPECT_STREQ(config_get("soap_setting"), "ZeltraxDeviceName");
    EXPECT_EQ(device_.killall_calls(), (Lines{"-SIGUSR1 soap_agent", "-SIGUSR1 soap_agent"}));
    device_.apply({"kova_dev_name_zltx", "kova_dev_type_zltx", "kova_hid_mac"}, 3);
    EXPECT_EQ(device_.killall_calls().size(), 2U);
}

TEST_F(IetfAttachedDevicesTest, EachWordIsLoggedBeforeItIsSent)
{
    static const DeviceRoot *device;
    static Lines last;
    device = &device_;
    last.clear();
    set_soap_pause([] { last.push_back(device->log().back()); });
    device_.enable(ietf_attached_devices);
    device_.apply({"kova_dev_name"}, 1);
    device_.apply({"set_zltx_dev_name"}, 2);
    EXPECT_EQ(last, (Lines{"Send soap KovaDevName", "Send soap ZeltraxDeviceName"}));
}

TEST_F(IetfAttachedDevicesTest, SatellitesAreToldInTheOrderOfTheChanges)
{
    device_.enable(ietf_attached_devices);
    device_.clear_log();
    device_.apply({"set_zltx_dev_name", "kova_dev_name"}, 1);
    Lines sent;
    for (const std::string &line : device_.log()) {
        if (line.rfind("Send soap ", 0) == 0) {
            sent.push_back(line);
        }
    }
    EXPECT_EQ(sent, (Lines{"Send soap ZeltraxDeviceName", "Send soap KovaDevName"}));
    EXPECT_STREQ(config_get("soap_setting"), "KovaDevName");
}

TEST_F(IetfAttachedDevicesTest, SoapCallbacksCalledForAnotherKeyTellNobody)
{
    device_.enable(ietf_attached_devices);
    const SoapCallback custom = registry().find(config_key_id("kova_dev_name"))->soap.at(0);
    const SoapCallback set = registry().find(config_key_id("set_zltx_dev_name"))->soap.at(0);
    ChangedKeys keys;
    keys.append(config_key_id("kova_dev_name_zltx"));
    EXPECT_EQ(custom(&keys, 2), 0);
    EXPECT_EQ(set(&keys, 2), 0);
    EXPECT_EQ(device_.killall_calls(), Lines{});
    keys.append(config_key_id("set_zltx_dev_name"));
    EXPECT_EQ(custom(&keys, 2), 0);
    EXPECT_EQ(set(&keys, 2), 0);
    EXPECT_EQ(device_.killall_calls().size(), 1U);
}

TEST_F(IetfAttachedDevicesTest, OverlappingJobsSeeNothingOfEachOthersTables)
{
    for (int number = 1; number <= 20; ++number) {
        const std::string address = "02:00:00:" + std::to_string(10 + number) + ":00:01";
        const std::string digits = std::to_string(number);
        device_.set({{("kova_dev_name" + digits).c_str(), address + " name " + digits},
                     {("kova_dev_type_zltx" + digits).c_str(), address + " 1 0"},
                     {("kova_dev_name_zltx" + digits).c_str(), address + " tv TV " + digits}});
        device_.write(soap_folder + address, "{}");
    }
    const std::string alone = devices();
    const std::string types = device_.read(type_file);
    const UpdateCallback update = callback_of("kova_dev_name");
    std::atomic<int> failures{0};
    std::vector<std::thread> workers;
    for (int i = 0; i < 4; ++i) {
        workers.emplace_back([&] {
            for (int run = 0; run < 10; ++run) {
                failures += update(1) == 0 ? 0 : 1;
                failures += device_.read(type_file) == types ? 0 : 1;
            }
        });
    }
    for (std::thread &worker : workers) {
        worker.join();
    }
    EXPECT_EQ(failures, 0);
    // A run that had seen less, or more, would have written a difference.
    EXPECT_EQ(device_.lines(1, "conndev", "dev_custom"), Lines{});
    EXPECT_EQ(device_.document("conndev", "dev_custom"), alone);
    EXPECT_EQ(device_.names_in("/tmp/cache/netscan"), Lines{"kova_dev_type_zltx"});
    EXPECT_EQ(device_.names_in(soap_folder).size(), 20U);
    const Json file =
        parse_json(device_.read(soap_folder + "02:00:00:30:00:01"), JsonSyntax::strict);
    EXPECT_EQ(json_compact_text(file.get()), R"({"custom name":"name 20"})");
}

} // namespace
} // namespace qorcfg
