#include "tools/verbs.h"

#include "engine/json.h"
#include "platform/reference/store.h"
#include "tools/command_line.h"

#include <memory>
#include <optional>

namespace qorcfg {

namespace {

struct GetOptions {
    std::string key;
    bool json = false;
};

int get(Session &session, const GetOptions &options)
{
    // The key itself is the first of those that begin with it.
    std::vector<Setting> settings;
    if (const std::string error = store_settings(options.key, settings); !error.empty()) {
        return session.fail(error);
    }
    if (settings.empty() || settings.front().key != options.key) {
        return session.fail("not set: " + shown_name(options.key));
    }
    const std::string &value = settings.front().value;
    if (options.json) {
        const Json object = Json::object();
        json_set(object.get(), "key", Json::string(options.key));
        json_set(object.get(), "value", Json::string(value));
        session.out << json_compact_text(object.get()) << '\n';
    } else {
        session.out << value << '\n';
    }
    return exit_done;
}

struct WriteOptions {
    std::vector<std::string> arguments;
    bool no_announce = false;

    Marking marking() const { return no_announce ? Marking::leave : Marking::mark; }
};

int write(Session &session, const std::vector<StoreWrite> &writes, Marking marking)
{
    const std::string error = store_write(writes, marking);
    return error.empty() ? exit_done : session.fail(error);
}

int set(Session &session, const WriteOptions &options)
{
    std::vector<StoreWrite> writes;
    for (const std::string &argument : options.arguments) {
        const std::size_t sign = argument.find('=');
        if (sign == std::string::npos) {
            return session.misuse("no \"=\" in the argument: " + shown_name(argument));
        }
        if (sign == 0) {
            return session.misuse("no key before \"=\" in the argument: " + shown_name(argument));
        }
        writes.push_back({argument.substr(0, sign), argument.substr(sign + 1)});
    }
    return write(session, writes, options.marking());
}

int unset(Session &session, const WriteOptions &options)
{
    std::vector<StoreWrite> writes;
    for (const std::string &key : options.arguments) {
        if (key.empty()) {
            return session.misuse("an empty argument is no key");
        }
        writes.push_back({key, std::nullopt});
    }
    return write(session, writes, options.marking());
}

} // namespace

void add_value_verbs(CLI::App &app, Session &session)
{
    const auto get_options = std::make_shared<GetOptions>();
    CLI::App *verb = add_verb(app, "get", "Print the value of a key", "  qorctl get endis_ddns");
    add_argument(*verb, "KEY", get_options->key, "Name of the key");
    add_json_flag(*verb, get_options->json);
    choose(*verb, session, [=](Session &each) { return get(each, *get_options); });

    const auto set_options = std::make_shared<WriteOptions>();
    verb = add_verb(app, "set", "Set keys, all of them or none",
                    "  qorctl set endis_ddns=1 sysDNSUser_5=me\n"
                    "  qorctl set -- -odd-key=1      (an argument that begins with \"-\")");
    add_arguments(*verb, "KEY=VALUE", set_options->arguments, "Key and new value");
    add_no_announce_flag(*verb, set_options->no_announce);
    choose(*verb, session, [=](Session &each) { return set(each, *set_options); });

    const auto unset_options = std::make_shared<WriteOptions>();
    verb = add_verb(app, "unset", "Remove keys, all of them or none",
                    "  qorctl unset forwarding7 forwarding8");
    add_arguments(*verb, "KEY", unset_options->arguments, "Name of a key");
    add_no_announce_flag(*verb, unset_options->no_announce);
    choose(*verb, session, [=](Session &each) { return unset(each, *unset_options); });
}

} // namespace qorcfg
