#pragma once

#include <cstddef>
#include <cstdint>
#include <json-c/json.h>
#include <string>
#include <string_view>
#include <utility>

namespace qorcfg {

/// Move-only owner of one reference to a json-c value; empty also stands for JSON null. Values are
/// never shared between threads. What could not be allocated comes back empty.
class Json {
public:
    Json() = default;
    Json(Json &&other) noexcept : value_(other.release()) {}
    Json &operator=(Json &&other) noexcept;
    Json(const Json &) = delete;
    Json &operator=(const Json &) = delete;
    ~Json() { json_object_put(value_); }

    /// Takes over the caller's reference.
    static Json own(json_object *value) { return Json(value); }
    /// Takes a reference of its own to a value that somebody else owns.
    static Json share(json_object *value) { return Json(json_object_get(value)); }
    static Json object() { return Json(json_object_new_object()); }
    static Json array() { return Json(json_object_new_array()); }
    static Json string(std::string_view text);
    static Json integer(std::int64_t number) { return Json(json_object_new_int64(number)); }
    static Json boolean(bool value) { return Json(json_object_new_boolean(value ? 1 : 0)); }

    json_object *get() const { return value_; }
    explicit operator bool() const { return value_ != nullptr; }
    /// Hands the reference to the caller.
    json_object *release() { return std::exchange(value_, nullptr); }

private:
    explicit Json(json_object *value) : value_(value) {}

    json_object *value_ = nullptr;
};

/// Which texts `parse_json` takes.
enum class JsonSyntax {
    lenient, ///< what json-c takes: comments, single quotes, text behind the document
    strict   ///< one document and nothing else
};

/// Parses a text of any content. Empty when it is no JSON (and for the document null); `error`,
/// when given, then has the reason and the byte.
Json parse_json(std::string_view text, JsonSyntax syntax, std::string *error = nullptr);

/// Reads and parses the file at `path`, of at most `bound` bytes; empty when it cannot be read or
/// is no JSON.
Json read_json_file(const std::string &path, std::size_t bound);

bool is_json_object(json_object *value);
bool is_json_array(json_object *value);
bool is_json_integer(json_object *value);

/// Members of an object and elements of an array; 0 for anything else.
std::size_t json_size(json_object *value);

/// Element `index` of an array; null for anything else, for JSON null, and behind the end.
json_object *json_element(json_object *array, std::size_t index);

/// The value as text: a string as it is, numbers and booleans as json-c prints them, containers as
/// json-c's spaced text; "" for null.
std::string json_value_text(json_object *value);
/// The same without a copy; it lasts until `value` is printed, changed or freed.
std::string_view json_value_view(json_object *value);

/// json-c's compact text, by which two values are compared: another order of members is a
/// difference.
std::string json_compact_text(json_object *value);
bool json_equal(json_object *left, json_object *right);

/// Moves `value` into `object` as member `key`; an old value is replaced in its place. False when
/// `object` is no object or memory runs out.
bool json_set(json_object *object, const char *key, Json value);

/// Moves `value` to the end of `array`. False when `array` is no array or memory runs out.
bool json_append(json_object *array, Json value);

/// Calls `visit(name, value)` for each member of an object in its order; nothing for other values.
template <typename Visit> void for_each_member(json_object *object, Visit visit)
{
    if (!is_json_object(object)) {
        return;
    }
    json_object_object_foreach(object, name, value)
    {
        visit(static_cast<const char *>(name), value);
    }
}

} // namespace qorcfg
