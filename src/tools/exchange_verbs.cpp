#include "tools/verbs.h"

#include "engine/json.h"
#include "platform/file.h"
#include "tools/command_line.h"
#include "tools/setting_lines.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>

namespace qorcfg {

namespace {

/// More than a full store can fill.
constexpr std::size_t import_bound = std::size_t{64} << 20;

struct ImportOptions {
    std::string file;
    bool no_announce = false;
};

std::optional<std::string> read_stream(std::istream &in)
{
    std::string text;
    std::array<char, 16384> block{};
    while (in.read(block.data(), block.size()), in.gcount() > 0) {
        text.append(block.data(), static_cast<std::size_t>(in.gcount()));
        if (text.size() > import_bound) {
            errno = EFBIG;
            return std::nullopt;
        }
    }
    if (in.bad()) {
        errno = EIO;
        return std::nullopt;
    }
    return text;
}

int import(Session &session, const ImportOptions &options)
{
    const auto text =
        options.file == "-" ? read_stream(session.in) : read_file(options.file, import_bound);
    if (!text) {
        return session.fail("cannot read " + options.file + ": " + std::strerror(errno));
    }
    std::vector<StoreWrite> writes;
    if (const auto fault = parse_setting_lines(*text, writes)) {
        return session.fail(options.file + ":" + std::to_string(fault->line) + ": " +
                            fault->reason);
    }
    const Marking marking = options.no_announce ? Marking::leave : Marking::mark;
    const std::string error = store_write(writes, marking);
    return error.empty() ? exit_done : session.fail(error);
}

struct ExportOptions {
    std::optional<std::string> prefix;
    bool json = false;
};

void export_json(Session &session, const std::vector<Setting> &settings)
{
    const Json object = Json::object();
    for (const Setting &setting : settings) {
        json_set(object.get(), setting.key.c_str(), Json::string(setting.value));
    }
    session.out << json_compact_text(object.get()) << '\n';
}

int export_lines(Session &session, const std::vector<Setting> &settings)
{
    int status = exit_done;
    for (const Setting &setting : settings) {
        if (const auto line = setting_line(setting)) {
            session.out << *line << '\n';
        } else {
            status =
                session.fail("left out, no line can carry this key: " + shown_name(setting.key));
        }
    }
    return status;
}

int export_settings(Session &session, const ExportOptions &options)
{
    std::vector<Setting> settings;
    if (const std::string error = store_settings(options.prefix.value_or(""), settings);
        !error.empty()) {
        return session.fail(error);
    }
    if (!options.json) {
        return export_lines(session, settings);
    }
    export_json(session, settings);
    return exit_done;
}

} // namespace

void add_exchange_verbs(CLI::App &app, Session &session)
{
    const auto import_options = std::make_shared<ImportOptions>();
    CLI::App *verb = add_verb(app, "import", "Set keys from KEY=VALUE lines, all of them or none",
                              "  qorctl import settings.txt\n"
                              "  ssh old-router qorctl export | qorctl import -");
    add_argument(*verb, "FILE", import_options->file, "File to read, - for standard input");
    add_no_announce_flag(*verb, import_options->no_announce);
    choose(*verb, session, [=](Session &each) { return import(each, *import_options); });

    const auto export_options = std::make_shared<ExportOptions>();
    verb = add_verb(app, "export", "Print settings as sorted KEY=VALUE lines",
                    "  qorctl export sysDNS > ddns.txt");
    add_optional_argument(*verb, "PREFIX", export_options->prefix, "Only keys that begin with it");
    add_json_flag(*verb, export_options->json);
    choose(*verb, session, [=](Session &each) { return export_settings(each, *export_options); });
}

} // namespace qorcfg
