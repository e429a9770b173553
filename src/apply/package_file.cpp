#include "apply/package_file.h"

#include "apply/locked_file.h"
#include "apply/merge_sections.h"
#include "platform/file_calls.h"
#include "platform/path_root.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/file.h>
#include <utility>

namespace qorcfg {

namespace {

// A name with a dot is none that UCI tools take for a package.
constexpr std::string_view new_version_suffix = ".qorcfg-new";
constexpr mode_t private_mode = 0600; // packages hold passwords
constexpr std::size_t changes_bound = std::size_t{64} << 20;

/// The one package in which the daemon itself makes sections, by UCI's own means.
bool takes_staged_changes(std::string_view name)
{
    return name == "wireless";
}

std::string staged_path(const std::string &name)
{
    return rooted("/tmp/.uci") + "/" + name;
}

std::string real_path(const std::string &path)
{
    std::error_code error;
    return std::filesystem::canonical(path, error);
}

} // namespace

bool is_package_name(std::string_view name)
{
    return !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char c) {
        return c > ' ' && c < 0x7f && c != '/' && c != '.';
    });
}

std::string package_path(const std::string &name)
{
    const std::string folder = rooted("/etc/config");
    const std::string path = folder + "/" + name;
    std::string real = real_path(path);
    if (real.empty()) {
        real = real_path(folder);
        real = real.empty() ? path : real + "/" + name;
    }
    return real;
}

bool has_prepared_version(const std::string &name)
{
    struct stat info {};
    const std::string path = package_path(name) + std::string(new_version_suffix);
    return ::lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

PackageFile::PackageFile(std::string name) : name_(std::move(name)), path_(package_path(name_)) {}

PackageFile::~PackageFile() = default;

bool PackageFile::fail(const std::string &path, int error)
{
    error_ = path + ": " + std::strerror(error);
    return false;
}

bool PackageFile::has_staged_changes(const std::string &name)
{
    struct stat info {};
    return takes_staged_changes(name) && ::stat(staged_path(name).c_str(), &info) == 0 &&
           info.st_size > 0;
}

bool PackageFile::lock_file()
{
    // Shared while the package is read and changed: libuci takes a shared lock of its own for that.
    lock_ = lock_current_file(path_, O_RDONLY, LOCK_SH);
    if (!lock_) {
        // A link that leads nowhere is no missing file: it cannot be made here.
        const int error = errno;
        struct stat info {};
        const bool link = ::lstat(path_.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
        return (error == ENOENT && !link) || fail(path_, error);
    }
    return ::stat(path_.c_str(), &seen_) == 0 || fail(path_, errno);
}

PackageFile::Opened PackageFile::open()
{
    package_.emplace();
    if (!lock_file()) {
        return Opened::failed;
    }
    switch (lock_ ? read() : UciPackage::Read::missing) {
    case UciPackage::Read::done:
        return Opened::done;
    case UciPackage::Read::missing:
        if (!lock_ && package_->make_empty(name_)) {
            return Opened::done;
        }
        break;
    case UciPackage::Read::damaged:
        error_ = path_ + ": " + package_->error();
        return Opened::damaged;
    case UciPackage::Read::failed:
        break;
    }
    error_ = path_ + ": " + package_->error();
    return Opened::failed;
}

UciPackage::Read PackageFile::read()
{
    return takes_staged_changes(name_) ? read_staged() : package_->read(path_);
}

UciPackage::Read PackageFile::read_staged()
{
    // Nobody can stage further changes between the look at their file and libuci's.
    const Fd changes = lock_current_file(staged_path(name_), O_RDONLY, LOCK_SH);
    if (changes) {
        staged_ = read_descriptor(changes.get(), changes_bound).value_or("");
    }
    const UciPackage::Read result = package_->read_with_changes(name_);
    if (result == UciPackage::Read::done && !merge_equal_names(*package_)) {
        return UciPackage::Read::failed;
    }
    return result;
}

bool PackageFile::prepare()
{
    const auto text = package_->text();
    if (!text) {
        error_ = path_ + ": " + package_->error();
        return false;
    }
    new_version_.emplace(path_, private_mode, new_version_suffix);
    return (new_version_->write(*text) && new_version_->prepare()) ||
           fail(path_, new_version_->error());
}

PackageFile::Held PackageFile::hold()
{
    if (!lock_) {
        // There was no file: an empty one holds the lock from here.
        lock_ = open_file(path_, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, private_mode);
        if (!lock_) {
            return errno == EEXIST || fail(path_, errno) ? Held::changed : Held::failed;
        }
        if (file_calls::fchmod(lock_.get(), private_mode) != 0 ||
            ::fstat(lock_.get(), &seen_) != 0) {
            fail(path_, errno);
            return Held::failed;
        }
    }
    if (!take_lock(lock_, LOCK_EX)) {
        fail(path_, errno);
        return Held::failed;
    }
    struct stat now {};
    return ::stat(path_.c_str(), &now) == 0 && is_same_version(now, seen_) ? Held::done
                                                                           : Held::changed;
}

bool PackageFile::replace()
{
    return new_version_->commit() || fail(path_, new_version_->error());
}

void PackageFile::drop_staged_changes()
{
    if (staged_.empty()) {
        return;
    }
    const Fd changes = lock_current_file(staged_path(name_), O_RDWR, LOCK_EX);
    const auto text = changes ? read_descriptor(changes.get(), changes_bound) : std::nullopt;
    if (!text || text->compare(0, staged_.size(), staged_) != 0) {
        return; // somebody has committed or reverted them
    }
    // What was staged since then stays.
    const std::string rest = text->substr(staged_.size());
    if (::lseek(changes.get(), 0, SEEK_SET) != 0 || !write_all(changes.get(), rest) ||
        file_calls::ftruncate(changes.get(), static_cast<off_t>(rest.size())) != 0) {
        fail(staged_path(name_), errno);
    }
}

} // namespace qorcfg
