#include "tools/verbs.h"

#include "engine/json.h"
#include "platform/key_id.h"
#include "tools/command_line.h"

#include <memory>

namespace qorcfg {

namespace {

struct IdOptions {
    std::vector<std::string> keys;
    bool json = false;
};

int print_ids(Session &session, const IdOptions &options)
{
    const Json object = Json::object();
    for (const std::string &key : options.keys) {
        const std::int32_t id = config_key_id(key.c_str());
        if (options.json) {
            json_set(object.get(), key.c_str(), Json::integer(id));
        } else {
            session.out << key << ' ' << id << '\n';
        }
    }
    if (options.json) {
        session.out << json_compact_text(object.get()) << '\n';
    }
    return exit_done;
}

} // namespace

void add_id_verb(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<IdOptions>();
    CLI::App *verb = add_verb(app, "id", "Print the number of a key on the control socket",
                              "  qorctl id endis_ddns sysDNSUser_");
    add_arguments(*verb, "KEY", options->keys, "Name of a key");
    add_json_flag(*verb, options->json);
    choose(*verb, session, [=](Session &each) { return print_ids(each, *options); });
}

} // namespace qorcfg
