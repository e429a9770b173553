#include "tools/explanations.h"

#include "core/explained_jobs.h"
#include "engine/new_json_util.h"
#include "platform/file.h"
#include "platform/path_root.h"

#include <cerrno>
#include <cstring>
#include <limits>

namespace qorcfg {

namespace {

/// Far more than the daemon keeps.
constexpr std::size_t file_bound = std::size_t{16} << 20;

/// Takes the members of the document apart. The first fault is kept, with its place; what is read
/// behind it is of no use.
class Reader {
public:
    const std::string &fault() const { return fault_; }

    std::vector<ExplainedJob> jobs(json_object *document)
    {
        return list<ExplainedJob>(document, "jobs", "", &Reader::job);
    }

private:
    using Place = std::string;

    void fail(const Place &place, const char *name, const char *what)
    {
        if (fault_.empty()) {
            fault_ = place + name + ": " + what;
        }
    }

    std::int64_t number(json_object *object, const char *name, const Place &place,
                        std::int64_t least = 0)
    {
        json_object *value = json_get_member(object, name);
        if (!is_json_integer(value) || json_object_get_int64(value) < least) {
            fail(place, name, least == 0 ? "no number from 0 on" : "no number");
        }
        return json_object_get_int64(value);
    }

    int integer(json_object *object, const char *name, const Place &place)
    {
        constexpr std::int64_t any = std::numeric_limits<std::int64_t>::min();
        return static_cast<int>(number(object, name, place, any));
    }

    std::chrono::microseconds time(json_object *object, const Place &place)
    {
        return std::chrono::microseconds(number(object, "us", place));
    }

    std::string text(json_object *object, const char *name, const Place &place)
    {
        json_object *value = json_get_member(object, name);
        if (json_object_is_type(value, json_type_string) == 0) {
            fail(place, name, "no text");
        }
        return json_value_text(value);
    }

    template <typename Item>
    std::vector<Item> list(json_object *object, const char *name, const Place &place,
                           Item (Reader::*read)(json_object *, const Place &))
    {
        json_object *array = json_get_member(object, name);
        if (!is_json_array(array)) {
            fail(place, name, "no list");
        }
        std::vector<Item> items;
        for (std::size_t i = 0; i < json_size(array) && fault_.empty(); ++i) {
            const Place below = place + name + "[" + std::to_string(i) + "].";
            items.push_back((this->*read)(json_element(array, i), below));
        }
        return items;
    }

    WriteOutcome outcome(json_object *object, const Place &place)
    {
        const std::string name = text(object, "outcome", place);
        for (const WriteOutcome each :
             {WriteOutcome::written, WriteOutcome::overtaken, WriteOutcome::failed}) {
            if (name == outcome_name(each)) {
                return each;
            }
        }
        fail(place, "outcome", "unknown");
        return WriteOutcome::failed;
    }

    ExplainedWrite write(json_object *object, const Place &place)
    {
        return {text(object, "package", place), text(object, "section", place),
                outcome(object, place),
                static_cast<std::size_t>(number(object, "line_count", place)),
                text(object, "lines", place)};
    }

    ExplainedCallback callback(json_object *object, const Place &place)
    {
        return {text(object, "name", place), time(object, place),
                list<ExplainedWrite>(object, "writes", place, &Reader::write)};
    }

    std::string callback_name(json_object *value, const Place &place)
    {
        if (json_object_is_type(value, json_type_string) == 0) {
            fail(place.substr(0, place.size() - 1), "", "no text");
        }
        return json_value_text(value);
    }

    ExplainedKey key(json_object *object, const Place &place)
    {
        return {integer(object, "id", place), integer(object, "action", place),
                list<std::string>(object, "callbacks", place, &Reader::callback_name)};
    }

    ExplainedJob job(json_object *object, const Place &place)
    {
        json_object *hook = json_get_member(object, "hook");
        const Place in_hook = place + "hook.";
        return {integer(object, "job", place),
                time(object, place),
                list<ExplainedKey>(object, "keys", place, &Reader::key),
                list<ExplainedCallback>(object, "callbacks", place, &Reader::callback),
                {integer(hook, "status", in_hook), integer(hook, "error", in_hook)},
                time(hook, in_hook)};
    }

    std::string fault_;
};

} // namespace

Explanations read_explanations()
{
    const std::string path = rooted(explain_file);
    const auto text = read_file(path, file_bound);
    if (!text) {
        return {{}, errno == ENOENT ? "" : "cannot read " + path + ": " + std::strerror(errno)};
    }
    std::string fault = "no object";
    const Json document = parse_json(*text, JsonSyntax::strict, &fault);
    if (!is_json_object(document.get())) {
        return {{}, path + ": " + fault};
    }
    Reader reader;
    Explanations read{reader.jobs(document.get()), ""};
    if (!reader.fault().empty()) {
        return {{}, path + ": " + reader.fault()};
    }
    return read;
}

} // namespace qorcfg
