#pragma once

#include <array>
#include <span>
#include <string_view>

namespace qorcfg {

/// A region of the store key "wl_country" and its country.
struct CountryRow {
    const char *region;
    const char *code;
    bool limits_power; ///< stated with the region; nothing reads it yet
};

/// Numeric ISO 3166-1 codes. There is no region 15.
inline constexpr std::array<CountryRow, 21> country_map_table{{
    {"0", "710", true},   {"1", "764", false},  {"2", "36", false},   {"3", "124", false},
    {"4", "276", false},  {"5", "376", true},   {"6", "392", true},   {"7", "410", false},
    {"8", "484", true},   {"9", "76", true},    {"10", "840", false}, {"11", "156", false},
    {"12", "356", false}, {"13", "458", false}, {"14", "12", true},   {"16", "792", true},
    {"17", "682", true},  {"18", "784", true},  {"19", "643", true},  {"20", "702", false},
    {"21", "158", false},
}};

/// Alpha-3 codes, which NVRAM-style settings take, with three regions more. Germany stands as the
/// drivers know it.
inline constexpr std::array<CountryRow, 24> nvram_country_map_table{{
    {"0", "ZAF", true},   {"1", "THA", false},  {"2", "AUS", false},  {"3", "CAN", false},
    {"4", "GER", false},  {"5", "ISR", true},   {"6", "JPN", true},   {"7", "KOR", false},
    {"8", "MEX", true},   {"9", "BRA", true},   {"10", "USA", false}, {"11", "CHN", false},
    {"12", "IND", false}, {"13", "MYS", false}, {"14", "DZA", true},  {"16", "TUR", true},
    {"17", "SAU", true},  {"18", "ARE", true},  {"19", "RUS", true},  {"20", "SGP", false},
    {"21", "TWN", false}, {"22", "HKG", false}, {"23", "VNM", false}, {"24", "NZL", false},
}};

/// Code of the first row of exactly that region; "" when there is none.
constexpr const char *country_code(std::span<const CountryRow> table, std::string_view region)
{
    for (const CountryRow &row : table) {
        if (region == row.region) {
            return row.code;
        }
    }
    return "";
}

} // namespace qorcfg
