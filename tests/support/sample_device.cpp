#include "support/sample_device.h"

#include "core/base/globals.h"
#include "engine/systeminfo.h"
#include "platform/file.h"
#include "platform/reference/store.h"

#include <filesystem>
#include <stdexcept>

namespace qorcfg::test {

namespace fs = std::filesystem;

void lay_sample_device(const DeviceRoot &device)
{
    const fs::path sample = QORCFG_SAMPLE_DEVICE;
    for (const char *folder : {"tmp", "etc/ath"}) {
        fs::copy(sample / folder, device.root() / fs::path(folder),
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing |
                     fs::copy_options::copy_symlinks);
    }
    for (const auto &entry : fs::directory_iterator(sample / "defaults.d")) {
        std::vector<StoreWrite> writes;
        for (const std::string &line :
             split_lines(read_file(entry.path(), std::size_t{1} << 20).value_or(""))) {
            const std::size_t sign = line.find('=');
            if (!line.empty() && line[0] != '#' && sign != std::string::npos) {
                writes.push_back({line.substr(0, sign), line.substr(sign + 1)});
            }
        }
        if (const std::string error = store_write(writes, Marking::leave); !error.empty()) {
            throw std::runtime_error(error);
        }
    }
    fs::remove(device.path("/tmp/qorcfg_debug"));
    is_base = read_is_base();
}

} // namespace qorcfg::test
