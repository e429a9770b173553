#pragma once

#include "platform/uci/nodes.h"
#include "platform/uci/words.h"

#include <functional>
#include <string_view>

namespace qorcfg::uci {

/// Where and why a text could not be read; `reason` is a literal.
struct Detail {
    const char *reason = nullptr;
    int line = 0;
    std::size_t byte = 0;
};

/// Detail of a word that was still open at the end of the text.
Detail unterminated(const Words &words);

/// Reads configuration text into packages, merging sections of one name.
class Parser {
public:
    struct Settings {
        /// One bad line is a failure; otherwise it is passed over.
        bool strict = true;
        /// Log what is read as changes of the package, which was there before.
        bool merge = false;
        /// Package lines are only checked; everything goes to one package.
        bool single = true;
        /// The package to make when a section comes before any is there; empty: that is a failure.
        std::string name = {};
        /// Makes a package, or gives null where it cannot be.
        std::function<Package *(const std::string &)> make_package = {};
        /// Told of each line that is passed over.
        std::function<void(const Detail &)> passed_over = {};
    };

    /// `package` may be null where the settings say how to make one.
    Parser(std::string_view text, Package *package, Settings settings);

    /// UCI_OK, UCI_ERR_PARSE with `detail`, or UCI_ERR_DUPLICATE when a package could not be made.
    /// The packages keep what was read until then.
    int run();
    const Detail &detail() const { return detail_; }

private:
    bool commands();
    bool to_package(const std::string &name);
    bool package_line();
    bool config_line();
    bool option_line(bool list);
    bool required(std::string &word);
    bool optional(std::string &word);
    bool end_of_command();
    bool fail(const char *reason);

    std::string_view text_;
    TextSource source_;
    Words words_;
    Package *package_;
    Section *section_ = nullptr;
    Settings settings_;
    Detail detail_;
    int error_ = UCI_ERR_PARSE;
};

} // namespace qorcfg::uci
