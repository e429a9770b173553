#pragma once

#include "apply/apply_report.h"
#include "apply/batch_file.h"
#include "apply/package_file.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qorcfg {

/// Applies batch files in memory and tells how the packages would differ then.
class PackagePreview {
public:
    explicit PackagePreview(ApplyReport &report) : report_(report) {}

    void add(const BatchFile &file);
    /// A line for each setting that would go ("- ") or come ("+ "), package by package, then the
    /// lines of NVRAM-side files.
    void print(std::ostream &out) const;

private:
    struct Package {
        Package(std::string package, std::unique_ptr<PackageFile> its_file)
            : name(std::move(package)), file(std::move(its_file))
        {
        }
        std::string name;
        std::unique_ptr<PackageFile> file; ///< none when it cannot be read
        std::vector<std::string> before;
    };

    Package &package(const BatchFile &file);
    void add_nvram_lines(const std::string &document, std::string_view text);
    void fault(const BatchFile &file, const std::string &reason);

    ApplyReport &report_;
    std::vector<Package> packages_;
    std::vector<std::string> nvram_lines_;
};

} // namespace qorcfg
