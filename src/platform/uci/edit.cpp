#include "platform/uci/edit.h"

#include "platform/uci/lookup.h"
#include "platform/uci/names.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace qorcfg::uci {

namespace {

Section &section_of(const uci_ptr &ptr)
{
    return static_cast<Section &>(*ptr.s);
}
Option &option_of(const uci_ptr &ptr)
{
    return static_cast<Option &>(*ptr.o);
}

void log_to(const uci_ptr &ptr, Log log, uci_command command, const char *value)
{
    if (log == Log::yes) {
        log_change(package_of(ptr), command, ptr.section, ptr.option, value);
    }
}

void change_type(Section &section, const char *type)
{
    // The generated name is made of the type. Other programs of the device let a section keep it,
    // as a name for good, when the new type has another length; names in pending changes would
    // otherwise mean different sections here and there.
    if (std::strlen(section.type) != std::strlen(type)) {
        section.anonymous = false;
    }
    section.set_type(type);
}

/// Item number `index` of a list option is removed; one that is not there is no failure.
void remove_item(const uci_ptr &ptr, int index, Log log)
{
    uci_element *item = nullptr;
    uci_foreach_element(&ptr.o->v.list, item)
    {
        if (index-- == 0) {
            log_to(ptr, log, UCI_CMD_REMOVE, ptr.value);
            option_of(ptr).remove_item(*item);
            return;
        }
    }
}

} // namespace

void log_change(Package &package, uci_command command, const char *section, const char *option,
                const char *value)
{
    if (package.has_delta) {
        package.unsaved().append(std::make_unique<Delta>(command, section, option, value));
    }
}

int set(uci_ptr &ptr, Log log)
{
    if (ptr.value == nullptr || (ptr.s == nullptr && (ptr.option != nullptr || !ptr.section))) {
        return UCI_ERR_INVAL;
    }
    const bool of_option = ptr.option != nullptr;
    if (*ptr.value == '\0') {
        const bool there = (ptr.flags & uci_ptr::UCI_LOOKUP_COMPLETE) != 0;
        return there ? remove(ptr, log) : UCI_OK;
    }
    if (!of_option && !is_printable_word(ptr.value)) {
        return UCI_ERR_INVAL;
    }
    if (of_option) {
        if (ptr.o == nullptr) {
            ptr.o = &section_of(ptr).add_option(ptr.option);
        } else if (ptr.o->type == UCI_TYPE_STRING && std::strcmp(ptr.o->v.string, ptr.value) == 0) {
            return UCI_OK;
        }
        option_of(ptr).set_value(ptr.value);
        ptr.last = &ptr.o->e;
    } else {
        if (ptr.s == nullptr) {
            ptr.s = &package_of(ptr).add_section(ptr.value, ptr.section);
        } else if (std::strcmp(ptr.s->type, ptr.value) == 0) {
            return UCI_OK;
        } else {
            change_type(section_of(ptr), ptr.value);
        }
        ptr.last = &ptr.s->e;
    }
    log_to(ptr, log, UCI_CMD_CHANGE, ptr.value);
    return UCI_OK;
}

int add_list(uci_ptr &ptr, Log log)
{
    if (ptr.s == nullptr || ptr.value == nullptr) {
        return UCI_ERR_INVAL;
    }
    if (ptr.option != nullptr) {
        if (ptr.o == nullptr) {
            ptr.o = &section_of(ptr).add_option(ptr.option);
        }
        option_of(ptr).add_item(ptr.value);
        ptr.last = &ptr.o->e;
    }
    log_to(ptr, log, UCI_CMD_LIST_ADD, ptr.value);
    return UCI_OK;
}

int del_list(uci_ptr &ptr, Log log)
{
    if (ptr.s == nullptr || ptr.value == nullptr) {
        return UCI_ERR_INVAL;
    }
    if (ptr.o == nullptr || ptr.o->type != UCI_TYPE_LIST) {
        return UCI_OK;
    }
    log_to(ptr, log, UCI_CMD_LIST_DEL, ptr.value);
    const std::string value = ptr.value; // which may be the very item that goes first
    uci_element *item = nullptr;
    uci_element *next = nullptr;
    uci_foreach_element_safe(&ptr.o->v.list, next, item)
    {
        if (value == item->name) {
            option_of(ptr).remove_item(*item);
        }
    }
    return UCI_OK;
}

int rename(uci_ptr &ptr, Log log)
{
    if (ptr.s == nullptr || ptr.value == nullptr) {
        return UCI_ERR_INVAL;
    }
    log_to(ptr, log, UCI_CMD_RENAME, ptr.value);
    // The old names may be the caller's way to say what is renamed: from here they are the new
    // ones.
    if (ptr.o != nullptr) {
        section_of(ptr).rename_option(option_of(ptr), ptr.value);
        ptr.option = ptr.o->e.name;
    } else {
        package_of(ptr).rename_section(section_of(ptr), ptr.value);
        ptr.section = ptr.s->e.name;
    }
    return UCI_OK;
}

int remove(uci_ptr &ptr, Log log)
{
    if (ptr.s == nullptr) {
        return UCI_ERR_INVAL;
    }
    if (ptr.o != nullptr && ptr.value != nullptr && *ptr.value != '\0') {
        int index = 0;
        if (std::sscanf(ptr.value, "%d", &index) != 1) {
            return 1; // what callers of libuci are used to
        }
        if (ptr.o->type == UCI_TYPE_LIST) {
            remove_item(ptr, index, log);
            return UCI_OK;
        }
    }
    log_to(ptr, log, UCI_CMD_REMOVE, nullptr);
    if (ptr.o != nullptr) {
        if (ptr.option == ptr.o->e.name) {
            ptr.option = nullptr;
        }
        section_of(ptr).remove_option(option_of(ptr));
        ptr.o = nullptr;
        ptr.last = &ptr.s->e;
    } else {
        if (ptr.section == ptr.s->e.name) {
            ptr.section = nullptr;
        }
        package_of(ptr).remove_section(section_of(ptr));
        ptr.s = nullptr;
        ptr.last = &ptr.p->e;
    }
    return UCI_OK;
}

int reorder(Section &section, int position, Log log)
{
    auto &package = static_cast<Package &>(*section.package);
    if (package.move_section(section, position) && log == Log::yes) {
        log_change(package, UCI_CMD_REORDER, section.e.name, nullptr,
                   std::to_string(position).c_str());
    }
    return UCI_OK;
}

} // namespace qorcfg::uci
