#include "fuzz/fuzz.h"
#include "platform/file.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace fs = std::filesystem;

// replay FOLDER...: runs every file of the folders through the fuzzer that this is linked with. The
// name that was printed last is the one at fault.
int main(int argc, char **argv)
{
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        for (const auto &entry : fs::directory_iterator(argv[i])) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    for (const std::string &file : files) {
        std::fprintf(stderr, "%s\n", file.c_str());
        constexpr std::size_t bound = std::size_t{1} << 20;
        const auto text = qorcfg::read_file(file, bound);
        if (!text) {
            std::perror("cannot be read");
            return 1;
        }
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(text->data()), text->size());
    }
    std::fprintf(stderr, "%zu inputs\n", files.size());
    return files.empty() ? 1 : 0;
}
