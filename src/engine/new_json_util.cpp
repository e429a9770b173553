#include "engine/new_json_util.h"

#include "platform/path_root.h"

namespace qorcfg {

namespace {

constexpr const char *marker_key = "alias-name";
constexpr std::size_t info_value_limit = 127;

} // namespace

bool json_add_string(json_object *object, const char *key, std::string_view value)
{
    if (value.empty()) {
        return true;
    }
    Json text = Json::string(value);
    return text && json_set(object, key, std::move(text));
}

bool json_add_string(json_object *object, const char *key, const char *value)
{
    return value == nullptr || json_add_string(object, key, std::string_view(value));
}

bool json_add_int(json_object *object, const char *key, int number)
{
    Json value = Json::integer(number);
    return value && json_set(object, key, std::move(value));
}

json_object *json_get_member(json_object *object, const char *key)
{
    json_object *value = nullptr;
    if (!is_json_object(object) || json_object_object_get_ex(object, key, &value) == 0) {
        return nullptr;
    }
    return value;
}

Json new_section_container(int kind)
{
    if (kind == named_sections) {
        return Json::object();
    }
    if (kind != anonymous_sections && kind != numbered_sections) {
        return {};
    }
    Json marker = Json::object();
    Json flag = Json::boolean(kind == numbered_sections);
    Json container = Json::array();
    if (!flag || !json_set(marker.get(), marker_key, std::move(flag)) ||
        !json_append(container.get(), std::move(marker))) {
        return {};
    }
    return container;
}

int section_kind(json_object *container)
{
    if (!is_json_array(container)) {
        return named_sections;
    }
    json_object *marker = json_get_member(json_element(container, 0), marker_key);
    if (marker == nullptr) {
        return numbered_sections;
    }
    return json_object_get_boolean(marker) != 0 ? numbered_sections : anonymous_sections;
}

std::string read_info_value(const char *path, const char *key)
{
    const Json document = read_json_file(rooted(path), info_file_bound);
    return json_value_text(json_get_member(document.get(), key)).substr(0, info_value_limit);
}

} // namespace qorcfg
