#include "engine/json.h"

#include "platform/file.h"

#include <cctype>
#include <cstring>
#include <limits>
#include <memory>

namespace qorcfg {

namespace {

struct FreeTokener {
    void operator()(json_tokener *tokener) const noexcept { json_tokener_free(tokener); }
};

bool only_blanks(std::string_view text)
{
    for (const unsigned char byte : text) {
        if (std::isspace(byte) == 0) {
            return false;
        }
    }
    return true;
}

} // namespace

Json &Json::operator=(Json &&other) noexcept
{
    if (this != &other) {
        json_object_put(value_);
        value_ = other.release();
    }
    return *this;
}

Json Json::string(std::string_view text)
{
    return Json(json_object_new_string_len(text.data(), static_cast<int>(text.size())));
}

Json parse_json(std::string_view text, JsonSyntax syntax, std::string *error)
{
    const std::unique_ptr<json_tokener, FreeTokener> tokener(json_tokener_new());
    if (!tokener || text.size() >= static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        if (error != nullptr) {
            *error = "too large";
        }
        return {};
    }
    // A closing NUL ends a bare number at the end of the text.
    const std::string terminated(text);
    Json document = Json::own(json_tokener_parse_ex(tokener.get(), terminated.c_str(),
                                                    static_cast<int>(terminated.size()) + 1));
    const json_tokener_error outcome = json_tokener_get_error(tokener.get());
    const std::size_t end = json_tokener_get_parse_end(tokener.get());
    if (outcome == json_tokener_success &&
        (syntax == JsonSyntax::lenient || only_blanks(text.substr(std::min(end, text.size()))))) {
        return document;
    }
    if (error != nullptr) {
        *error = outcome == json_tokener_success    ? "text behind the document"
                 : outcome == json_tokener_continue ? "unexpected end"
                                                    : json_tokener_error_desc(outcome);
        *error += " at byte " + std::to_string(end);
    }
    return {};
}

Json read_json_file(const std::string &path, std::size_t bound)
{
    const auto text = read_file(path, bound);
    return text ? parse_json(*text, JsonSyntax::lenient) : Json();
}

bool is_json_object(json_object *value)
{
    return json_object_is_type(value, json_type_object) != 0;
}

bool is_json_array(json_object *value)
{
    return json_object_is_type(value, json_type_array) != 0;
}

bool is_json_integer(json_object *value)
{
    return json_object_is_type(value, json_type_int) != 0;
}

std::size_t json_size(json_object *value)
{
    if (is_json_array(value)) {
        return json_object_array_length(value);
    }
    return is_json_object(value) ? static_cast<std::size_t>(json_object_object_length(value)) : 0;
}

json_object *json_element(json_object *array, std::size_t index)
{
    return index < json_size(array) && is_json_array(array)
               ? json_object_array_get_idx(array, index)
               : nullptr;
}

std::string_view json_value_view(json_object *value)
{
    const char *text = value == nullptr ? nullptr : json_object_get_string(value);
    return text == nullptr ? std::string_view() : text;
}

std::string json_value_text(json_object *value)
{
    return std::string(json_value_view(value));
}

namespace {

std::string_view compact_view(json_object *value)
{
    if (value == nullptr) {
        return "null";
    }
    std::size_t length = 0;
    const char *text = json_object_to_json_string_length(value, JSON_C_TO_STRING_PLAIN, &length);
    return text == nullptr ? std::string_view() : std::string_view(text, length);
}

std::string_view string_of(json_object *value)
{
    return {json_object_get_string(value),
            static_cast<std::size_t>(json_object_get_string_len(value))};
}

bool have_equal_members(json_object *left, json_object *right)
{
    if (json_object_object_length(left) != json_object_object_length(right)) {
        return false;
    }
    const json_object_iterator end = json_object_iter_end(left);
    json_object_iterator a = json_object_iter_begin(left);
    json_object_iterator b = json_object_iter_begin(right);
    for (; json_object_iter_equal(&a, &end) == 0;
         json_object_iter_next(&a), json_object_iter_next(&b)) {
        if (std::strcmp(json_object_iter_peek_name(&a), json_object_iter_peek_name(&b)) != 0 ||
            !json_equal(json_object_iter_peek_value(&a), json_object_iter_peek_value(&b))) {
            return false;
        }
    }
    return true;
}

bool have_equal_elements(json_object *left, json_object *right)
{
    const std::size_t length = json_object_array_length(left);
    if (json_object_array_length(right) != length) {
        return false;
    }
    for (std::size_t i = 0; i < length; ++i) {
        if (!json_equal(json_object_array_get_idx(left, i), json_object_array_get_idx(right, i))) {
            return false;
        }
    }
    return true;
}

} // namespace

std::string json_compact_text(json_object *value)
{
    return std::string(compact_view(value));
}

// Two values have the same text when their parts have; printing them is left to numbers, as a text
// that json-c has printed stays with its value and doubles the memory of a document.
bool json_equal(json_object *left, json_object *right)
{
    if (left == right) {
        return true;
    }
    if (is_json_object(left) && is_json_object(right)) {
        return have_equal_members(left, right);
    }
    if (is_json_array(left) && is_json_array(right)) {
        return have_equal_elements(left, right);
    }
    if (json_object_is_type(left, json_type_string) != 0 &&
        json_object_is_type(right, json_type_string) != 0) {
        return string_of(left) == string_of(right);
    }
    return compact_view(left) == compact_view(right);
}

bool json_set(json_object *object, const char *key, Json value)
{
    if (!is_json_object(object) || json_object_object_add(object, key, value.get()) != 0) {
        return false;
    }
    value.release();
    return true;
}

bool json_append(json_object *array, Json value)
{
    if (!is_json_array(array) || json_object_array_add(array, value.get()) != 0) {
        return false;
    }
    value.release();
    return true;
}

} // namespace qorcfg
