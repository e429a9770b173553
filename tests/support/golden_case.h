#pragma once

#include "support/device_root.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace qorcfg::test {

/// Contents by file name.
using Files = std::map<std::string, std::string>;

/// A folder tests/golden/<component>/<case>; README.md there tells its files.
class GoldenCase {
public:
    /// `name` is "<component>/<case>".
    explicit GoldenCase(const std::string &name);

    /// Every case, or those of them that change something.
    static std::vector<std::string> all();
    static std::vector<std::string> all_with_change();
    /// The name as a test's name can hold it.
    static std::string test_name(std::string name);

    std::vector<std::string> components() const;
    bool has_change() const;
    /// Lays the device files over the root.
    void lay(const DeviceRoot &device) const;

    std::filesystem::path settings() const { return folder_ / "settings"; }
    std::filesystem::path change() const { return folder_ / "change"; }
    std::filesystem::path start() const { return folder_ / "start"; }
    std::filesystem::path changed() const { return folder_ / "changed"; }

private:
    std::filesystem::path folder_;
};

/// The files of a folder; none when it does not exist.
Files files_in(const std::filesystem::path &folder);

/// Compares the packages in the device's configuration folder with the documents among `files`
/// (uci-PACKAGE-SECTION.json): each section of theirs is there as they say, and no other section
/// but those of the types in `foreign`, which others keep there.
void expect_applied(const DeviceRoot &device, const Files &files,
                    const std::set<std::string> &foreign = {});

} // namespace qorcfg::test
