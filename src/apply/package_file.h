#pragma once

#include "apply/uci_package.h"
#include "platform/fd.h"
#include "platform/file.h"

#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace qorcfg {

/// Whether `name` can be the name of a package, and so of a file in the configuration folder.
bool is_package_name(std::string_view name);

/// Where a package's file really lies, absolute and without symbolic links.
std::string package_path(const std::string &name);

/// Whether a new version of a package lies beside its file, prepared but not yet in its place.
bool has_prepared_version(const std::string &name);

/// A package file that is being replaced: read, changed in memory, written beside the old one, and
/// renamed over it under the lock that libuci's own commit takes. Whatever fails or ends in between
/// leaves the old file whole. For "wireless" the changes that the wireless layer has staged are
/// merged in when the package is read.
class PackageFile {
public:
    explicit PackageFile(std::string name);
    ~PackageFile();
    PackageFile(const PackageFile &) = delete;
    PackageFile &operator=(const PackageFile &) = delete;

    /// Reads the package; a missing file is an empty package.
    enum class Opened { done, damaged, failed };
    Opened open();
    UciPackage &package() { return *package_; }
    /// Whether changes of the wireless layer wait to be merged.
    static bool has_staged_changes(const std::string &name);

    /// Writes the package beside its file and makes that durable.
    bool prepare();
    /// Takes the lock of writers. `changed`: somebody has replaced the file since it was read.
    enum class Held { done, changed, failed };
    Held hold();
    /// Puts the new version into place; only after `prepare` and `hold`.
    bool replace();
    /// Removes the merged changes from the wireless layer's file. Once the new package stands.
    void drop_staged_changes();

    /// The last failure, with the path that it is about.
    const std::string &error() const { return error_; }

private:
    bool fail(const std::string &path, int error);
    bool lock_file();
    UciPackage::Read read();
    UciPackage::Read read_staged();

    std::string name_;
    std::string path_;
    std::optional<UciPackage> package_;
    std::optional<AtomicFile> new_version_;
    Fd lock_;
    struct stat seen_ {};
    std::string staged_; ///< the changes that were merged, as they lay in their file
    std::string error_;
};

} // namespace qorcfg
