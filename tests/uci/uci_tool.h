#pragma once

#include "uci/uci_scratch.h"

#include <string>
#include <vector>

namespace qorcfg {

/// The commands of the `uci` program that recorded cases use, on the library's public interface
/// alone. Each call is what a process of its own would be.
class UciTool {
public:
    struct Run {
        int status = 0;
        std::string out;
        std::string err;
    };

    explicit UciTool(const UciScratch &scratch) : ctx_(open_uci(scratch)) {}

    Run batch(const std::string &text);
    /// `names`: anonymous sections under their generated names.
    Run show(const std::string &package, bool names);
    Run export_package(const std::string &package);
    Run commit(const std::string &package);

private:
    using Words = std::vector<std::string>;

    /// One line of a batch; false when the batch is over.
    bool batch_line(FILE *input);
    int command(const Words &words);
    int package_command(const std::string &verb, const Words &words);
    int section_command(const std::string &verb, const std::string &path);
    int add(const std::string &package, const std::string &type);
    int apply(const std::string &verb, uci_ptr &ptr);
    int export_to_output(uci_package *package);
    int print_value(const uci_ptr &ptr);
    void print_changes(const uci_package &package);
    void print_package(const uci_package &package);
    void print_section(const uci_section &section, const std::string &name);
    void print_option(const uci_option &option, const std::string &path);
    int complain();

    UciHandle ctx_;
    bool names_ = false;
    Run run_;
};

} // namespace qorcfg
