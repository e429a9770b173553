#include "engine/document.h"
#include "engine/uci_commit.h"
#include "fuzz/fuzz.h"
#include "platform/file.h"

using namespace qorcfg;

namespace {

constexpr const char *folder = "/tmp/cache/qorcfg/ucicfg.d";
constexpr const char *snapshot = "/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json";
constexpr const char *wanted = R"({
    "global": {"main": {"on": "1", "list": ["a", "b"]}},
    "rule": [{"alias-name": false}, {"from": "a"}, {"from": "b"}],
    "tag": [{"alias-name": true}, {"id": "10"}]
})";

} // namespace

// The snapshot that an earlier run left, and one whose transaction was cut off beside it.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const test::DeviceRoot &device = test::fuzz_device();
    const auto parts = test::input_parts(test::input_text(data, size), 2);
    const Document doc = Document::parse(wanted);
    const std::string text = json_compact_text(doc.get());
    for (const int trigger : {0, 1}) {
        for (const auto commit : {commit_uci_section, commit_uci_options}) {
            test::empty_folder(folder);
            device.write(snapshot, parts[0]);
            if (!parts[1].empty()) {
                device.write(std::string(snapshot) + ".new", parts[1]);
            }
            commit(doc, "net", "part", trigger, 1);
            test::require(device.document("net", "part") == text,
                          "the new document stands, whatever stood there");
            const std::string batch = trigger == 1 ? "uci_update.net.part" : "uci_update1.net.part";
            test::require(device.names_in(folder) ==
                              std::vector<std::string>{"uci-net-part.json", batch},
                          "there are the snapshot, the batch file and nothing else");
            const std::string lines = device.read(std::string(folder) + "/" + batch);
            commit(doc, "net", "part", 0, 1);
            const std::string again = device.read(std::string(folder) + "/uci_update1.net.part");
            test::require(again == (trigger == 1 ? "" : lines),
                          "the same document once more writes no line", again);
        }
    }
    return 0;
}
