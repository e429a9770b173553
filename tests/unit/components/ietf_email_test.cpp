#include "components/components.h"

#include "support/device_root.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfEmailTest, KeysAreSubscribedInOrder)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_email),
              (Lines{"email_notify", "email_addr", "email_smtp", "email_port", "email_endis_auth",
                     "email_username", "email_password", "email_send_alert", "email_cfAlert_Select",
                     "email_cfAlert_Day", "email_schedule_hour"}));
    EXPECT_EQ(device.log()[0], "init() - Initializing email");
}

TEST(IetfEmailTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_email.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  email"});
}

TEST(IetfEmailTest, AccountAlertsAndMailingTimesHaveASectionEach)
{
    const DeviceRoot device;
    device.set({{"email_notify", "1"},
                {"email_addr", "you@example.com"},
                {"email_smtp", "smtp.example.com"},
                {"email_port", "25"},
                {"email_endis_auth", "1"},
                {"email_username", "me"},
                {"email_password", "secret"},
                {"email_send_alert", "0"},
                {"email_cfAlert_Select", "2"},
                {"email_cfAlert_Day", "3"},
                {"email_schedule_hour", "17"}});
    device.start_up(ietf_email);
    EXPECT_EQ(device.document("email", "email"),
              R"({"email":{"status":{"enable":"1"},)"
              R"("email_settings":{"to_email_address":"you@example.com",)"
              R"("smtp_server":"smtp.example.com","smtp_port":"25","smtp_auth":"1",)"
              R"("username":"me","password":"secret"},)"
              R"("visit_blocked_site":{"notify":"0"},)"
              R"("log":{"notify":1,"type":"2","day":"wed","time":"17:00"}}})");
}

TEST(IetfEmailTest, NothingSetLeavesTheMailingDefaults)
{
    const DeviceRoot device;
    device.start_up(ietf_email);
    EXPECT_EQ(device.document("email", "email"),
              R"({"email":{"status":{},"email_settings":{},"visit_blocked_site":{},)"
              R"("log":{"notify":1,"day":"sun","time":"00:00"}}})");
}

std::string mailing(const DeviceRoot &device)
{
    device.start_up(ietf_email);
    const std::string document = device.document("email", "email");
    return document.substr(document.find(R"("log":)"));
}

TEST(IetfEmailTest, DaysAreCountedFromSundayAndAnyOtherNumberIsSunday)
{
    const DeviceRoot device;
    const std::vector<std::pair<std::string, std::string>> days{
        {"0", "sun"}, {"1", "mon"},  {"2", "tue"},  {"3", "wed"},          {"4", "thu"},
        {"5", "fri"}, {"6", "sat"},  {"7", "sun"},  {"-1", "sun"},         {"", "sun"},
        {"x", "sun"}, {"2x", "tue"}, {"03", "wed"}, {"99999999999", "sun"}};
    for (const auto &[number, name] : days) {
        device.set({{"email_cfAlert_Day", number}});
        EXPECT_EQ(mailing(device), R"("log":{"notify":1,"day":")" + name + R"(","time":"00:00"}}})")
            << number;
    }
}

TEST(IetfEmailTest, HoursHaveTwoDigitsAndAnyOtherNumberIsMidnight)
{
    const DeviceRoot device;
    const std::vector<std::pair<std::string, std::string>> hours{
        {"0", "00:00"},  {"1", "01:00"},  {"9", "09:00"},    {"10", "10:00"}, {"23", "23:00"},
        {"24", "00:00"}, {"-1", "00:00"}, {"noon", "00:00"}, {"08", "08:00"}};
    for (const auto &[number, time] : hours) {
        device.set({{"email_schedule_hour", number}});
        EXPECT_EQ(mailing(device), R"("log":{"notify":1,"day":"sun","time":")" + time + R"("}}})")
            << number;
    }
}

TEST(IetfEmailTest, AnyFourInTheChoiceTurnsTheMailingOff)
{
    const DeviceRoot device;
    const std::vector<std::pair<std::string, std::string>> choices{
        {"4", "0"}, {"14", "0"}, {"40", "0"}, {"0", "1"}, {"3", "1"}};
    for (const auto &[choice, notify] : choices) {
        device.set({{"email_cfAlert_Select", choice}});
        EXPECT_EQ(mailing(device), R"("log":{"notify":)" + notify + R"(,"type":")" + choice +
                                       R"(","day":"sun","time":"00:00"}}})");
    }
}

TEST(IetfEmailTest, AChangedServerTravelsWithItsSectionAndNoOther)
{
    const DeviceRoot device;
    device.set({{"email_addr", "you@example.com"}, {"email_smtp", "smtp.example.com"}});
    device.start_up(ietf_email);
    device.set({{"email_smtp", "mail.example.com"}});
    device.apply({"email_smtp"}, 2);
    EXPECT_EQ(device.lines(2, "email", "email"),
              (Lines{"delete email.email_settings", "set email.email_settings=email",
                     "set email.email_settings.to_email_address=you@example.com",
                     "set email.email_settings.smtp_server=mail.example.com"}));
}

TEST(IetfEmailTest, ASatelliteWritesTooAndTheLogNamesNoValue)
{
    const DeviceRoot device;
    device.be_base(false);
    device.set({{"email_password", "secret"}});
    EXPECT_EQ(device.run_update(ietf_email, 1), 0);
    EXPECT_NE(device.document("email", "email").find("secret"), std::string::npos);
    EXPECT_EQ(device.log().back(), " update email");
    EXPECT_EQ(device.read("/dev/console").find("secret"), std::string::npos);
}

} // namespace
} // namespace qorcfg
