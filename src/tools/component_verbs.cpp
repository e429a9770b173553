#include "tools/verbs.h"

#include "core/component_table.h"
#include "engine/json.h"
#include "platform/path_root.h"
#include "tools/command_line.h"
#ifndef QORCFG_PLATFORM_EXTERNAL
#include "tools/component_page.h"
#endif
#include "tools/subscribers.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iomanip>
#include <memory>
#include <set>

namespace qorcfg {

namespace {

struct ComponentsOptions {
    std::optional<std::string> list;
    bool json = false;
    bool markdown = false;
};

using Names = std::set<std::string, std::less<>>;

/// Names of the list that no row of the table has.
std::vector<std::string> unknown_of(const Names &listed)
{
    std::vector<std::string> unknown;
    std::copy_if(listed.begin(), listed.end(), std::back_inserter(unknown),
                 [](const std::string &name) {
                     return std::none_of(components.begin(), components.end(),
                                         [&](const auto &row) { return name == row.name; });
                 });
    return unknown;
}

void print_components(std::ostream &out, const Names &listed)
{
    const auto line = [&](std::string_view name, const char *build, bool enabled) {
        out << std::left << std::setw(24) << name << ' ' << std::setw(8) << build << ' '
            << (enabled ? "enabled" : "-") << '\n';
    };
    for (const ComponentRow &row : components) {
        line(row.name, row.ops == nullptr ? "absent" : "built", listed.count(row.name) != 0);
    }
    for (const std::string &name : unknown_of(listed)) {
        line(name, "unknown", true);
    }
}

void print_components_json(std::ostream &out, const Names &listed)
{
    Json rows = Json::array();
    for (const ComponentRow &row : components) {
        Json object = Json::object();
        json_set(object.get(), "name", Json::string(row.name));
        json_set(object.get(), "built", Json::boolean(row.ops != nullptr));
        json_set(object.get(), "enabled", Json::boolean(listed.count(row.name) != 0));
        json_append(rows.get(), std::move(object));
    }
    Json unknown = Json::array();
    for (const std::string &name : unknown_of(listed)) {
        json_append(unknown.get(), Json::string(name));
    }
    const Json document = Json::object();
    json_set(document.get(), "components", std::move(rows));
    json_set(document.get(), "unknown", std::move(unknown));
    out << json_compact_text(document.get()) << '\n';
}

int list_components(Session &session, const ComponentsOptions &options)
{
#ifndef QORCFG_PLATFORM_EXTERNAL
    if (options.markdown) {
        session.out << component_page();
        return exit_done;
    }
#endif
    const std::string path = options.list.value_or(rooted(default_component_list));
    Names listed;
    if (!for_each_listed_component(path, [&](const char *name) { listed.insert(name); })) {
        // The daemon goes on without its list as well.
        const std::string fault = "cannot read component list " + path + ": ";
        if (options.list || errno != ENOENT) {
            return session.fail(fault + std::strerror(errno));
        }
        session.say(fault + std::strerror(errno) + "; none is enabled");
    }
    if (options.json) {
        print_components_json(session.out, listed);
    } else {
        print_components(session.out, listed);
    }
    return exit_done;
}

struct SubscribersOptions {
    std::vector<std::string> keys;
    bool json = false;
};

const char *kind_name(const Subscriber &subscriber)
{
    return subscriber.kind == Subscriber::Kind::update ? "update" : "soap";
}

void print_subscribers(std::ostream &out, const std::vector<Subscribers> &entries)
{
    for (const Subscribers &entry : entries) {
        for (const Subscriber &each : entry.callbacks) {
            out << entry.name << ": " << each.owner.component << ' ' << kind_name(each) << " #"
                << each.owner.number << '\n';
        }
        if (entry.callbacks.empty()) {
            out << entry.name << ": nobody\n";
        }
    }
}

void print_subscribers_json(std::ostream &out, const std::vector<Subscribers> &entries)
{
    const Json names = Json::array();
    for (const Subscribers &entry : entries) {
        Json callbacks = Json::array();
        for (const Subscriber &each : entry.callbacks) {
            Json callback = Json::object();
            json_set(callback.get(), "component", Json::string(each.owner.component));
            json_set(callback.get(), "kind", Json::string(kind_name(each)));
            json_set(callback.get(), "number", Json::integer(each.owner.number));
            json_append(callbacks.get(), std::move(callback));
        }
        Json object = Json::object();
        json_set(object.get(), "key", Json::string(entry.name));
        json_set(object.get(), "id", Json::integer(entry.id));
        json_set(object.get(), "subscribers", std::move(callbacks));
        json_append(names.get(), std::move(object));
    }
    out << json_compact_text(names.get()) << '\n';
}

int list_subscribers(Session &session, const SubscribersOptions &options)
{
    const std::vector<Subscribers> entries = subscribers_of(options.keys);
    if (options.json) {
        print_subscribers_json(session.out, entries);
    } else {
        print_subscribers(session.out, entries);
    }
    return exit_done;
}

} // namespace

void add_component_verbs(CLI::App &app, Session &session)
{
    const auto list_options = std::make_shared<ComponentsOptions>();
    CLI::App *verb = add_verb(app, "components", "Print the component table and what is enabled",
                              "  qorctl components\n"
                              "  qorctl components /etc/qorcfg/qorcfg.conf");
    add_optional_argument(*verb, "LIST-FILE", list_options->list,
                          "Component list (that of the device)");
    add_json_flag(*verb, list_options->json);
#ifndef QORCFG_PLATFORM_EXTERNAL
    // It asks the components below a scratch root, where the maker's store does not lie.
    add_flag(*verb, "--markdown", list_options->markdown,
             "Print the page of all components, their keys and documents", {"LIST-FILE", "--json"});
#endif
    choose(*verb, session, [=](Session &each) { return list_components(each, *list_options); });

    const auto key_options = std::make_shared<SubscribersOptions>();
    verb = add_verb(app, "subscribers", "Print which callbacks the change of a key triggers",
                    "  qorctl subscribers sysDNSUser_5");
    add_arguments(*verb, "KEY", key_options->keys, "Name of a key");
    add_json_flag(*verb, key_options->json);
    choose(*verb, session, [=](Session &each) { return list_subscribers(each, *key_options); });
}

} // namespace qorcfg
