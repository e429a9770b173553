#include "engine/diff.h"
#include "engine/uci_lines.h"
#include "table.h"

#include <algorithm>
#include <string>

// Difference and lines of a document that changed in one section, and in all. Floor: json-c parses
// and prints the same document.
namespace qorcfg::bench {
namespace {

/// A document of named sections with six options each; those before `changed` hold another value.
std::string document_text(int sections, int changed)
{
    std::string text = "{\"interface\":{";
    for (int i = 0; i < sections; ++i) {
        const std::string number = std::to_string(i);
        text += i == 0 ? "" : ",";
        text += "\"section" + number + "\":{\"ifname\":\"eth" + number +
                "\",\"proto\":\"static\",\"ipaddr\":\"192.0.2.1\",\"netmask\":\"255.255.255.0\","
                "\"mtu\":1500,\"macaddr\":\"" +
                (i < changed ? "00:53:00:00:00:02" : "00:53:00:00:00:01") + "\"}";
    }
    return text + "}}";
}

void measure(benchmark::State &state, int sections, int changed)
{
    const Json old = parse_json(document_text(sections, 0), JsonSyntax::strict);
    const Json now = parse_json(document_text(sections, changed), JsonSyntax::strict);
    for (auto _ : state) {
        const Json removed = diff_sections(now.get(), old.get());
        const Json added = diff_sections(old.get(), now.get());
        std::string lines;
        append_deletion_lines(lines, "network", removed.get(), Granularity::sections);
        append_setting_lines(lines, "network", added.get());
        benchmark::DoNotOptimize(lines.data());
    }
    set_goal(state, 1.5);
}

void measure_floor(benchmark::State &state, int sections)
{
    const std::string text = document_text(sections, 0);
    for (auto _ : state) {
        const Json document = parse_json(text, JsonSyntax::strict);
        benchmark::DoNotOptimize(json_object_to_json_string(document.get()));
    }
}

constexpr int smallest = 10;
constexpr int largest = 100'000;

void OneSection(benchmark::State &state)
{
    measure(state, static_cast<int>(state.range(0)), 1);
}
void OneSectionFloor(benchmark::State &state)
{
    measure_floor(state, static_cast<int>(state.range(0)));
}
void AllSections(benchmark::State &state)
{
    const int sections = static_cast<int>(state.range(0));
    measure(state, sections, sections);
}
void AllSectionsFloor(benchmark::State &state)
{
    measure_floor(state, static_cast<int>(state.range(0)));
}
BENCHMARK(OneSection)->RangeMultiplier(10)->Range(smallest, largest);
BENCHMARK(OneSectionFloor)->RangeMultiplier(10)->Range(smallest, largest);
BENCHMARK(AllSections)->RangeMultiplier(10)->Range(smallest, largest);
BENCHMARK(AllSectionsFloor)->RangeMultiplier(10)->Range(smallest, largest);

} // namespace
} // namespace qorcfg::bench
