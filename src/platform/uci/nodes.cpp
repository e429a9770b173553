#include "platform/uci/nodes.h"

#include "platform/uci/names.h"

#include <functional>
#include <utility>

namespace qorcfg::uci {

namespace {

/// Lists up to this length are walked: shorter than a table is worth in memory.
constexpr std::size_t short_list = 16;

uci_element blank_element(uci_type type)
{
    uci_element element{};
    element.type = type;
    return element;
}

} // namespace

template <class Node> std::size_t NameIndex<Node>::Hash::operator()(std::string_view name) const
{
    return std::hash<std::string_view>{}(name);
}

template <class Node> Node *NameIndex<Node>::walk(const uci_list &list, std::string_view name)
{
    for (const uci_list *link = list.next; link != &list; link = link->next) {
        Node &node = Node::of(*list_to_element(link));
        if (node.name() == name) {
            return &node;
        }
    }
    return nullptr;
}

template <class Node> Node *NameIndex<Node>::find(const uci_list &list, std::string_view name) const
{
    if (!table_) {
        return walk(list, name);
    }
    const auto [first, last] = table_->equal_range(name);
    if (first == last) {
        return nullptr;
    }
    return std::next(first) == last ? *first : walk(list, name);
}

template <class Node> void NameIndex<Node>::added(const uci_list &list, Node &node)
{
    ++count_;
    if (table_) {
        table_->insert(&node);
    } else if (count_ > short_list) {
        auto table = std::make_unique<Table>();
        for (const uci_list *link = list.next; link != &list; link = link->next) {
            table->insert(&Node::of(*list_to_element(link)));
        }
        table_ = std::move(table);
    }
}

template <class Node> void NameIndex<Node>::removed(Node &node)
{
    --count_;
    if (!table_) {
        return;
    }
    const auto [first, last] = table_->equal_range(&node);
    for (auto it = first; it != last; ++it) {
        if (*it == &node) {
            table_->erase(it);
            break;
        }
    }
}

template class NameIndex<Option>;
template class NameIndex<Section>;

Item::Item(std::string text) : uci_element(blank_element(UCI_TYPE_ITEM)), text_(std::move(text))
{
    name = text_.data();
}

Option::Option(uci_section &owner, std::string name) : uci_option{}
{
    e = blank_element(UCI_TYPE_OPTION);
    section = &owner;
    set_name(std::move(name));
    set_value({});
}

void Option::set_name(std::string name)
{
    name_ = std::move(name);
    e.name = name_.data();
}

void Option::set_value(std::string value)
{
    items_.reset();
    value_ = std::move(value);
    type = UCI_TYPE_STRING;
    v.string = value_.data();
}

void Option::add_item(std::string item)
{
    auto node = std::make_unique<Item>(std::move(item));
    if (type == UCI_TYPE_STRING) {
        // An option that was never given a value has none to keep.
        auto old = value_.empty() ? nullptr : std::make_unique<Item>(std::exchange(value_, {}));
        v.list = {};
        items_ = std::make_unique<Children<Item>>(v.list);
        type = UCI_TYPE_LIST;
        if (old) {
            items_->append(std::move(old));
        }
    }
    items_->append(std::move(node));
}

Section::Section(uci_package &owner, std::string type, std::string name)
    : uci_section{}, name_(std::move(name)), options_(options)
{
    e = blank_element(UCI_TYPE_SECTION);
    e.name = name_.data();
    package = &owner;
    set_type(std::move(type));
}

void Section::set_type(std::string type)
{
    type_ = std::move(type);
    uci_section::type = type_.data();
}

Option &Section::add_option(std::string name)
{
    Option &option = options_.append(std::make_unique<Option>(*this, std::move(name)));
    index_.added(options, option);
    return option;
}

void Section::rename_option(Option &option, std::string name)
{
    index_.removed(option);
    option.set_name(std::move(name));
    index_.added(options, option);
}

void Section::remove_option(Option &option)
{
    index_.removed(option);
    options_.remove(option);
}

Delta::Delta(uci_command command, const char *section, const char *option, const char *value)
    : uci_delta{}, section_(section != nullptr ? section : ""),
      option_(option != nullptr ? option : ""), value_(value != nullptr ? value : "")
{
    e = blank_element(UCI_TYPE_DELTA);
    e.name = option != nullptr ? option_.data() : nullptr;
    cmd = command;
    uci_delta::section = section != nullptr ? section_.data() : nullptr;
    uci_delta::value = value != nullptr ? value_.data() : nullptr;
}

Package::Package(uci_context &owner, std::string name)
    : uci_package{}, name_(std::move(name)), sections_(sections), unsaved_(delta),
      saved_(saved_delta)
{
    e = blank_element(UCI_TYPE_PACKAGE);
    e.name = name_.data();
    ctx = &owner;
}

void Package::set_path(std::string path)
{
    path_ = std::move(path);
    uci_package::path = path_.data();
}

Section &Package::add_section(std::string type, const char *name)
{
    ++n_section;
    std::string used =
        name != nullptr ? name : generated_name(static_cast<unsigned>(n_section), type);
    Section &section =
        sections_.append(std::make_unique<Section>(*this, std::move(type), std::move(used)));
    section.anonymous = name == nullptr;
    index_.added(sections, section);
    return section;
}

void Package::rename_section(Section &section, std::string name)
{
    index_.removed(section);
    section.name_ = std::move(name);
    section.e.name = section.name_.data();
    section.anonymous = false;
    index_.added(sections, section);
}

void Package::remove_section(Section &section)
{
    index_.removed(section);
    sections_.remove(section);
}

bool Package::move_section(Section &section, int position)
{
    uci_list *const old_next = section.e.list.next;
    auto node = sections_.take(section);
    uci_list *before = position < 0 ? &sections : sections.next;
    for (; before != &sections && position > 0; --position) {
        before = before->next;
    }
    list_append(*before, node.release()->e.list);
    return before != old_next;
}

} // namespace qorcfg::uci
