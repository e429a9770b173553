#include "wireless/wireless_run.h"

#include "support/wireless_device.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::WirelessDevice;

class WirelessRunTest : public testing::Test {
protected:
    /// The document of a run that writes "o" into the sections of these names.
    std::string written(const std::vector<std::string> &names)
    {
        WirelessModel model({});
        WirelessRun run(model);
        for (const std::string &name : names) {
            run.set_wifi_option(name, "o", name);
        }
        run.nest_qcawifi();
        for (const Radio &radio : radios) {
            run.nest(radio, radio.name);
        }
        for (const Interface &interface : interfaces) {
            run.nest(interface, interface.name);
        }
        EXPECT_TRUE(run.document().complete());
        std::string text;
        for_each_member(run.document().get(), [&](const char *type, json_object *sections) {
            for_each_member(sections, [&](const char *name, json_object *options) {
                if (json_size(options) != 0) {
                    text += std::string(type) + "." + name + "=" +
                            json_value_text(json_get_member(options, "o")) + " ";
                }
            });
        });
        return text;
    }

    WirelessDevice device_;
};

TEST_F(WirelessRunTest, EachNameSelectsItsOptionObject)
{
    EXPECT_EQ(written({"qcawifi", "wifi0", "wifi1", "wifi2"}),
              "qcawifi.qcawifi=qcawifi wifi-device.2g=wifi0 wifi-device.5g1=wifi1 "
              "wifi-device.5g2=wifi2 ");
    for (const Interface &interface : interfaces) {
        EXPECT_EQ(written({interface.name}),
                  std::string("wifi-iface.") + interface.name + "=" + interface.name + " ");
    }
}

TEST_F(WirelessRunTest, ANameThatSelectsNothingIsIgnored)
{
    EXPECT_EQ(written({"", "2g", "wifi3", "2gfh", "None", "QCAWIFI"}), "");
}

TEST_F(WirelessRunTest, AMissingRadioIsAddressedAsNone)
{
    device_.describe("0", {"wifi0", "wifi1"}, {});
    EXPECT_EQ(written({"wifi2"}), "");
    EXPECT_EQ(written({"None"}), "wifi-device.5g2=None ");
}

TEST_F(WirelessRunTest, GlobalSectionThenRadiosThenInterfacesAreLookedThrough)
{
    device_.describe("0", {"qcawifi", "2gfh_main", "2gfh_main"}, {});
    EXPECT_EQ(written({"qcawifi", "2gfh_main"}),
              "qcawifi.qcawifi=qcawifi wifi-device.5g1=2gfh_main ");
}

TEST_F(WirelessRunTest, AnEmptyValueIsLeftOutAndALaterValueKeepsThePlace)
{
    WirelessModel model({});
    WirelessRun run(model);
    run.set_wifi_option("qcawifi", "a", "1");
    run.set_wifi_option("qcawifi", "b", "");
    run.set_wifi_option("qcawifi", "c", "3");
    run.set_wifi_option("qcawifi", "a", "2");
    run.nest_qcawifi();
    EXPECT_EQ(json_compact_text(run.document().get()),
              R"({"qcawifi":{"qcawifi":{"a":"2","c":"3"}},"wifi-device":{},"wifi-iface":{}})");
}

} // namespace
} // namespace qorcfg
