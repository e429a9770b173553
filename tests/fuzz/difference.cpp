#include "engine/diff.h"

#include "engine/uci_lines.h"
#include "fuzz/fuzz.h"

#include <algorithm>
#include <array>

using namespace qorcfg;

namespace {

using Difference = Json (*)(json_object *base, json_object *doc);

void require_commands(const std::string &lines)
{
    test::require(lines.empty() || lines.back() == '\n', "a line ends", lines);
    constexpr std::array<std::string_view, 5> verbs{"set ", "add ", "add_list ", "delete ", "del "};
    for (const std::string &line : test::split_lines(lines)) {
        test::require(std::any_of(verbs.begin(), verbs.end(),
                                  [&](std::string_view verb) { return line.rfind(verb, 0) == 0; }),
                      "a line is a command", line);
    }
    test::require(lines.find('\r') == std::string::npos, "no carriage return breaks a line", lines);
}

std::string lines_between(json_object *base, json_object *doc, Granularity granularity)
{
    const Difference difference =
        granularity == Granularity::options ? diff_options : diff_sections;
    std::string lines;
    append_deletion_lines(lines, "net", difference(doc, base).get(), granularity);
    append_setting_lines(lines, "net", difference(base, doc).get());
    return lines;
}

} // namespace

// Two documents, as files of earlier runs can hold them.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto parts = test::input_parts(test::input_text(data, size), 2);
    const Json base = parse_json(parts[0], JsonSyntax::strict);
    const Json doc = parse_json(parts[1], JsonSyntax::strict);
    const std::string base_text = json_compact_text(base.get());
    const std::string doc_text = json_compact_text(doc.get());
    for (const Granularity granularity : {Granularity::sections, Granularity::options}) {
        require_commands(lines_between(base.get(), doc.get(), granularity));
        require_commands(lines_between(doc.get(), base.get(), granularity));
        if (doc) {
            const std::string none = lines_between(doc.get(), doc.get(), granularity);
            test::require(none.empty(), "equal documents have no lines between them", none);
        }
    }
    std::string whole;
    append_full_deletion_lines(whole, "net", base.get(), doc.get());
    append_setting_lines(whole, "net", doc.get());
    require_commands(whole);
    test::require(base_text == json_compact_text(base.get()) &&
                      doc_text == json_compact_text(doc.get()),
                  "the documents stay as they were");
    return 0;
}
