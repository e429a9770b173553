#include "wireless/ietf_wireless.h"

#include "core/base/globals.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"
#include "wireless/wireless_keys.h"
#include "wireless/wireless_soap.h"

#include <array>
#include <span>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array<BoardRead, 6> board_reads{{
    {board_wps_pin, "systeminfo.boarddata.board_wpspin", 16},
    {board_mac_2g, "systeminfo.boarddata.wl2g_mac", 32},
    {board_mac_5g1, "systeminfo.boarddata.wl5g_mac", 32},
    {board_mac_5g2, "systeminfo.boarddata.wl2nd5g_mac", 32},
    {board_mesh_role, "repacd.repacd.Role", 10},
    {board_driver_type, "qcacfg80211.config.enable", 8},
}};

constexpr std::array steering_options{
    FixedOption{"RSSISteeringPoint_DG", "5"},
    FixedOption{"InactCheckInterval", "1"},
    FixedOption{"AuthAllow", "0"},
    FixedOption{"NormalInactTimeout", "5"},
    FixedOption{"OverloadInactTimeout", "5"},
};

constexpr std::array mesh_link_options{
    FixedOption{"EnableSNRBasedPrefer2GBackhaul", "1"},
    FixedOption{"MinAssocCheckAutoMode", "5"},
    FixedOption{"MinAssocCheckPostWPS", "5"},
    FixedOption{"MinAssocCheckPostBSSIDConfig", "5"},
    FixedOption{"WPSTimeout", "180"},
    FixedOption{"AssociationTimeout", "300"},
    FixedOption{"RSSINumMeasurements", "5"},
    FixedOption{"RSSIThresholdFar", "-75"},
    FixedOption{"RSSIThresholdNear", "-60"},
    FixedOption{"RSSIThresholdMin", "-75"},
    FixedOption{"RSSIThresholdPrefer2GBackhaul", "-120"},
    FixedOption{"SNRThresholdPrefer2GBackhaul", "5"},
    FixedOption{"2GBackhaulSwitchDownTime", "10"},
    FixedOption{"MaxMeasuringStateAttempts", "3"},
    FixedOption{"RateNumMeasurements", "30"},
    FixedOption{"RateThresholdMin5GInPercent", "40"},
    FixedOption{"RateThresholdMax5GInPercent", "70"},
    FixedOption{"RateThresholdPrefer2GBackhaulInPercent", "5"},
    FixedOption{"5GBackhaulBadlinkTimeout", "60"},
    FixedOption{"BSSIDAssociationTimeout", "90"},
    FixedOption{"RateScalingFactor", "70"},
    FixedOption{"5GBackhaulEvalTimeShort", "1800"},
    FixedOption{"5GBackhaulEvalTimeLong", "7200"},
    FixedOption{"2GBackhaulEvalTime", "1800"},
    FixedOption{"PreferCAPSNRThreshold5G", "0"},
    FixedOption{"MoveFromCAPSNRHysteresis5G", "2"},
    FixedOption{"2GIndependentChannelSelectionEnable", "0"},
    FixedOption{"2GIndependentChannelSelectionRssiLevel", "-70"},
    FixedOption{"2GIndependentChannelSelectionTotalRssiCounter", "10"},
    FixedOption{"2GIndependentChannelSelectionRssiDebug", "0"},
    FixedOption{"2GIndependentChannelSelectionStartRssiCheckTime", "60"},
    FixedOption{"ManageVAPInd", "0"},
};

constexpr std::array<SoapGroup, 9> soap_groups{{
    {advanced_keys, "AdvancedWLAN"},
    {region_keys, "WLANRegion"},
    {fronthaul_keys, "FronthaulNetwork"},
    {guest_keys, "GuestNetwork"}, // which tells of the guest switches too
    {guest_switch_keys, "GuestEnable"},
    {daisy_chain_keys, "DaisyEnable"},
    {backhaul_keys, "BackhaulPassphrase5G"},
    {system_wps_keys, "SystemWps"},
    {system_dfs_keys, "SystemDfs"},
}};

int commit_wireless(const Document &document, int job)
{
    return commit(document, "wireless", "all", job);
}

int update_wireless_all(int job)
{
    QORCFG_LOG(" update all wireless");
    return update_wireless_document(ietf_wireless_model(), ietf_wireless_backend, commit_wireless,
                                    job);
}

/// Commits a package of one section: fixed options, and behind them one from the store.
int commit_one_section(const char *package, const char *name,
                       std::span<const FixedOption> fixed_options, const Option &last, int job)
{
    Document document;
    Section section = document.section(name, name);
    for (const FixedOption &row : fixed_options) {
        section.add(row.option, row.value);
    }
    section.add(std::span(&last, 1));
    return commit(document, package, name, job) == 0 ? 1 : 0;
}

int update_wireless_lbd(int job)
{
    QORCFG_LOG(" update lbd wireless");
    return commit_one_section("lbd", "IdleSteer", steering_options,
                              {"RSSISteeringPoint_UG", "lbd_RSSISteeringPoint_UG"}, job);
}

int update_wireless_daisychain(int job)
{
    QORCFG_LOG(" update repacd wireless");
    return commit_one_section("repacd", "WiFiLink", mesh_link_options,
                              {"DaisyChain", "repacd_Daisy_Chain_Enable"}, job);
}

int update_soap_wireless(const ChangedKeys *keys, int /*action*/)
{
    if (config_value("dns_hijack") == "1") {
        QORCFG_LOG("soap sync:%s", "hijack in process, don't need do wireless soap sync");
        return 0;
    }
    tell_changed_group(keys, soap_groups);
    return 0;
}

void init()
{
    log_init("wireless");
    subscribe_all(daisy_chain_keys, update_wireless_daisychain);
    subscribe_all(wireless_update_keys, update_wireless_all);
    subscribe_all(steering_keys, update_wireless_lbd);
}

void soap_init()
{
    log_init("soap wireless");
    subscribe_all_soap(wireless_soap_keys, update_soap_wireless);
}

void register_()
{
    log_register("wireless");
}

} // namespace

WirelessModel &ietf_wireless_model()
{
    static WirelessModel model(board_reads);
    return model;
}

const WirelessBackend ietf_wireless_backend{
    [](const WirelessRun &run, const Radio &radio) { return run.hardware().device_of(radio.name); },
    [](const Interface &interface) { return std::string(interface.name); },
    // Where a chain of satellites ends, its access points are there all the same, switched off.
    [](const WirelessRun & /*run*/) { return true; },
    [](const WirelessRun & /*run*/) { return is_base == 0; },
    add_ietf_radio_options,
    add_ietf_interface_options,
};

const Operations ietf_wireless{init, soap_init, register_};

} // namespace qorcfg
