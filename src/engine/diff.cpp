#include "engine/diff.h"

#include "core/base/log.h"
#include "engine/new_json_util.h"

#include <algorithm>

namespace qorcfg {

namespace {

/// Member `name` of `object`, made an empty object on first use.
json_object *object_member(json_object *object, const char *name)
{
    json_object *member = json_get_member(object, name);
    if (member == nullptr) {
        Json made = Json::object();
        member = made.get();
        json_set(object, name, std::move(made));
    }
    return member;
}

/// Positions stay, so that the lines of a changed section carry its place in the document.
Json diff_array(json_object *base, json_object *doc)
{
    Json result = new_section_container(section_kind(doc));
    const std::size_t base_size = is_json_array(base) ? json_size(base) : 0;
    for (std::size_t i = 1; i < json_size(doc); ++i) {
        json_object *element = json_element(doc, i);
        const bool unchanged = i < base_size && json_equal(element, json_element(base, i));
        json_append(result.get(), unchanged ? Json::integer(0) : Json::share(element));
    }
    return result;
}

void diff_named_section(json_object *result, const char *type, const char *name, json_object *base,
                        json_object *options)
{
    for_each_member(options, [&](const char *option, json_object *value) {
        // Values may be secret; the names tell which options were compared.
        QORCFG_LOG("TEST %s", type);
        QORCFG_LOG("TEST %s", name);
        QORCFG_LOG("TEST %s", option);
        const std::string text = json_value_text(value);
        json_object *old = nullptr;
        const bool known =
            is_json_object(base) && json_object_object_get_ex(base, option, &old) != 0;
        if (!known || json_value_text(old) != text) {
            json_add_string(object_member(object_member(result, type), name), option, text);
        }
    });
}

void diff_named(json_object *result, const char *type, json_object *base, json_object *doc,
                Granularity granularity)
{
    for_each_member(doc, [&](const char *name, json_object *section) {
        json_object *old = nullptr;
        const bool known = is_json_object(base) && json_object_object_get_ex(base, name, &old) != 0;
        if (known && json_equal(old, section)) {
            return;
        }
        if (granularity == Granularity::options) {
            diff_named_section(result, type, name, old, section);
        } else {
            json_set(object_member(result, type), name, Json::share(section));
        }
    });
}

Json diff(json_object *base, json_object *doc, Granularity granularity)
{
    if (doc == nullptr || base == nullptr) {
        return Json::share(doc);
    }
    Json result = Json::object();
    for_each_member(doc, [&](const char *type, json_object *container) {
        json_object *old = nullptr;
        if (!is_json_object(base) || json_object_object_get_ex(base, type, &old) == 0) {
            json_set(result.get(), type, Json::share(container));
        } else if (is_json_array(container)) {
            json_set(result.get(), type, diff_array(old, container));
        } else {
            diff_named(result.get(), type, old, container, granularity);
        }
    });
    return result;
}

} // namespace

Json diff_sections(json_object *base, json_object *doc)
{
    return diff(base, doc, Granularity::sections);
}

Json diff_options(json_object *base, json_object *doc)
{
    return diff(base, doc, Granularity::options);
}

} // namespace qorcfg
