#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <uci.h>

namespace qorcfg {

/// A scratch folder with a configuration and a save folder of its own, gone with the object.
class UciScratch {
public:
    UciScratch()
    {
        std::string name = "/tmp/qor-uci.XXXXXX";
        root_ = ::mkdtemp(name.data()) != nullptr ? name : std::string();
        std::filesystem::create_directory(confdir());
    }
    UciScratch(const UciScratch &) = delete;
    UciScratch &operator=(const UciScratch &) = delete;
    ~UciScratch()
    {
        if (!root_.empty()) {
            std::filesystem::remove_all(root_);
        }
    }

    std::string root() const { return root_; }
    std::string confdir() const { return root_ + "/config"; }
    std::string savedir() const { return root_ + "/changes"; }
    std::string config(const std::string &package) const { return confdir() + "/" + package; }
    std::string changes(const std::string &package) const { return savedir() + "/" + package; }

    static void write(const std::string &path, const std::string &text)
    {
        std::ofstream(path, std::ios::binary) << text;
    }
    /// Nothing when there is no file.
    static std::optional<std::string> read(const std::string &path)
    {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            return std::nullopt;
        }
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

private:
    std::string root_;
};

struct FreeContext {
    void operator()(uci_context *ctx) const { uci_free_context(ctx); }
};
using UciHandle = std::unique_ptr<uci_context, FreeContext>;

/// A context that sees the scratch folders and nothing else.
inline UciHandle open_uci(const UciScratch &scratch)
{
    UciHandle ctx(uci_alloc_context());
    uci_set_confdir(ctx.get(), scratch.confdir().c_str());
    uci_set_savedir(ctx.get(), scratch.savedir().c_str());
    uci_set_conf2dir(ctx.get(), nullptr);
    return ctx;
}

/// The message of the last failure, without empty lines.
inline std::string uci_message(uci_context *ctx, const char *prefix)
{
    char *text = nullptr;
    uci_get_errorstr(ctx, &text, prefix);
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    std::string message = text != nullptr ? text : "";
    while (message.ends_with('\n')) {
        message.pop_back();
    }
    return message;
}

} // namespace qorcfg
