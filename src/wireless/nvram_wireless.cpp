#include "wireless/nvram_wireless.h"

#include "core/base/globals.h"
#include "engine/nvram_commit.h"
#include "platform/config_value.h"
#include "platform/path_root.h"
#include "platform/qor_platform.h"
#include "wireless/wireless_keys.h"
#include "wireless/wireless_soap.h"

#include <array>
#include <ctime>
#include <string>
#include <string_view>

namespace qorcfg {

namespace {

constexpr const char *touch_program = "/bin/touch";
constexpr const char *sync_flag = "/tmp/cache/wireless/soap_sync_flag";
constexpr const char *install_event_program = "/usr/sbin/ra_installevent";

constexpr std::array<BoardRead, 4> board_reads{{
    {board_unit_type, "systeminfo.sysinfo.kova_type", 32},
    {board_wps_pin, "systeminfo.boarddata.board_wpspin", 16},
    {board_mesh_role, "repacd.repacd.Role", 10},
    {board_driver_type, "qcacfg80211.config.enable", 8},
}};

constexpr std::array sync_flag_keys{"wl_tpscale",
                                    "wl_country",
                                    "wla_tpscale",
                                    "wla_2nd_tpscale",
                                    "wl_plcphdr",
                                    "wla_plcphdr",
                                    "wlg_ap_bh_wpa2_psk",
                                    "wlg_ap_bh_wpa3_psk",
                                    "wlg_ap_bh_wpas_psk",
                                    "wla_2nd_ap_bh_wpa2_psk",
                                    "wla_2nd_ap_bh_wpa3_psk",
                                    "wla_2nd_ap_bh_wpas_psk"};

constexpr std::array wifi_change_keys{"wl_ssid", "wl_sectype", "wl_wpa2_psk", "wl_wpa3_psk",
                                      "wl_wpas_psk"};

constexpr std::array soap_keys{"wl_tpscale",
                               "wl_country",
                               "wla_country",
                               "wla_tpscale",
                               "wla_2nd_tpscale",
                               "wl_plcphdr",
                               "wla_plcphdr",
                               "wlg_ap_bh_wpa2_psk",
                               "wlg_ap_bh_wpa3_psk",
                               "wlg_ap_bh_wpas_psk",
                               "wla_2nd_ap_bh_wpa2_psk",
                               "wla_2nd_ap_bh_wpa3_psk",
                               "wla_2nd_ap_bh_wpas_psk"};

constexpr std::array fronthaul_wpa3_keys{"wl_wpa3_psk", "wla_wpa3_psk"};
constexpr std::array backhaul_wpa3_keys{"wlg_ap_bh_wpa3_psk", "wla_2nd_ap_bh_wpa3_psk"};

/// Leaves the time of this change in the store, by which satellites tell old settings from new.
void write_config_timestamp()
{
    const std::string now = std::to_string(static_cast<long long>(std::time(nullptr)));
    mappi_set("config_timestamp", now.c_str());
    config_commit();
}

/// The order of tests is the order of rows; guests' WPA3 passphrases are not mirrored.
constexpr std::array<SoapGroup, 11> soap_groups{{
    {advanced_keys, "AdvancedWLAN", write_config_timestamp},
    {region_keys, "AdvancedWLAN", write_config_timestamp},
    {fronthaul_keys, "FronthaulNetwork"},
    {fronthaul_wpa3_keys, "FronthaulNetwork"},
    {guest_keys, "GuestNetwork"},
    {guest_switch_keys, "GuestEnable"},
    {daisy_chain_keys, "DaisyEnable"},
    {backhaul_keys, "BackhaulPassphrase5G", write_config_timestamp},
    {backhaul_wpa3_keys, "BackhaulPassphrase5G", write_config_timestamp},
    {system_wps_keys, "SystemWps"},
    {system_dfs_keys, "SystemDfs"},
}};

bool is_satellite(const WirelessRun &run)
{
    return run.board(board_unit_type) == "Satellite";
}

/// 0, or -1 without writing when the document is not complete.
int commit_nvram(const Document &document, const char *name, int job)
{
    if (!document.complete()) {
        return -1;
    }
    commit_nvram_document(document, name, qorcfg_change_is_trigger, job);
    return 0;
}

int commit_wireless(const Document &document, int job)
{
    return commit_nvram(document, "wireless", job);
}

int nvram_update_wireless_all(int job)
{
    static WirelessModel model(board_reads);
    static constexpr WirelessBackend backend{
        nvram_radio_section,
        nvram_interface_section,
        [](const WirelessRun &run) {
            return config_value("repacd_Daisy_Chain_Enable") != "0" || !is_satellite(run);
        },
        is_satellite,
        add_nvram_radio_options,
        add_nvram_interface_options,
    };
    QORCFG_LOG(" update all wireless");
    return update_wireless_document(model, backend, commit_wireless, job);
}

// Band steering and the mesh link have no settings on this backend: their documents stay empty.

int nvram_update_wireless_daisychain(int job)
{
    QORCFG_LOG(" update repacd nvram wireless");
    return commit_nvram({}, "repacd", job) == 0 ? 1 : 0;
}

int nvram_update_wireless_lbd(int job)
{
    QORCFG_LOG(" update lbd nvram wireless");
    return commit_nvram({}, "lbd", job) == 0 ? 1 : 0;
}

int create_soap_sync_flag(int /*job*/)
{
    return qor_safe_system(0, 0, 0, touch_program, rooted(sync_flag).c_str(),
                           static_cast<char *>(nullptr));
}

int nvram_update_wireless_ra_wifi_change(int /*job*/)
{
    QORCFG_LOG(" update wirelessi RA wifi change");
    if (config_value("dns_hijack") != "1") {
        return 0;
    }
    return qor_safe_system(0, 0, 0, rooted(install_event_program).c_str(), "wifichange",
                           static_cast<char *>(nullptr));
}

int nvram_update_soap_wireless(const ChangedKeys *keys, int /*action*/)
{
    tell_changed_group(keys, soap_groups);
    return 0;
}

/// This backend knows WPA3 too: behind each WPA2 passphrase comes its WPA3 one.
void subscribe_update_keys()
{
    constexpr std::string_view ending = "wpa2_psk";
    for (const std::string_view key : wireless_update_keys) {
        subscribe_config(subscription_priority, nvram_update_wireless_all, key.data());
        if (key.ends_with(ending)) {
            const std::string wpa3_key =
                std::string(key.substr(0, key.size() - ending.size())) + "wpa3_psk";
            subscribe_config(subscription_priority, nvram_update_wireless_all, wpa3_key.c_str());
        }
    }
}

void init()
{
    log_init("wireless");
    subscribe_all(daisy_chain_keys, nvram_update_wireless_daisychain);
    subscribe_update_keys();
    subscribe_all(steering_keys, nvram_update_wireless_lbd);
    subscribe_all(sync_flag_keys, create_soap_sync_flag);
    subscribe_all(wifi_change_keys, nvram_update_wireless_ra_wifi_change);
}

void soap_init()
{
    log_init("soap wireless");
    subscribe_all_soap(soap_keys, nvram_update_soap_wireless);
}

void register_()
{
    log_register("nvram wireless");
}

} // namespace

const Operations nvram_wireless{init, soap_init, register_};

} // namespace qorcfg
