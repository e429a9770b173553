#pragma once

#include "uci.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>

/// What stands behind the structures of uci.h: each has a C++ node that owns its strings and
/// children. A node never moves, so that callers may keep pointers into it until it is deleted.
namespace qorcfg::uci {

inline void list_init(uci_list &head)
{
    head.next = &head;
    head.prev = &head;
}

/// Puts a link before `head`, which is the end of the list. Any link can be given as the head.
inline void list_append(uci_list &head, uci_list &link)
{
    link.prev = head.prev;
    link.next = &head;
    head.prev->next = &link;
    head.prev = &link;
}

inline void list_unlink(uci_list &link)
{
    link.prev->next = link.next;
    link.next->prev = link.prev;
    list_init(link);
}

/// The nodes of one uci_list, owned. `append` takes over a node, `remove` and the destructor
/// destroy.
template <class Node> class Children {
public:
    explicit Children(uci_list &head) : head_(head) { list_init(head_); }
    Children(const Children &) = delete;
    Children &operator=(const Children &) = delete;
    ~Children() { clear(); }

    Node &append(std::unique_ptr<Node> node)
    {
        list_append(head_, node->element().list);
        return *node.release();
    }
    /// Out of the list, still alive in the pointer that is returned.
    std::unique_ptr<Node> take(Node &node)
    {
        list_unlink(node.element().list);
        return std::unique_ptr<Node>(&node);
    }
    void remove(Node &node) { take(node).reset(); }
    void clear()
    {
        for (uci_list *link = head_.next; link != &head_;) {
            Node &node = Node::of(*list_to_element(link));
            link = link->next;
            remove(node);
        }
    }

private:
    uci_list &head_;
};

/// Finds nodes of a list by name; the first in list order where several have one name. Short lists
/// are walked, long ones are hashed. Tell it of every node before its name goes and after it came.
template <class Node> class NameIndex {
public:
    Node *find(const uci_list &list, std::string_view name) const;
    void added(const uci_list &list, Node &node);
    void removed(Node &node);

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const;
        std::size_t operator()(const Node *node) const { return (*this)(node->name()); }
    };
    struct Equal {
        using is_transparent = void;
        static std::string_view key(std::string_view name) { return name; }
        static std::string_view key(const Node *node) { return node->name(); }
        template <class A, class B> bool operator()(const A &a, const B &b) const
        {
            return key(a) == key(b);
        }
    };
    using Table = std::unordered_multiset<Node *, Hash, Equal>;

    static Node *walk(const uci_list &list, std::string_view name);

    std::size_t count_ = 0;
    std::unique_ptr<Table> table_;
};

/// One item of a list option.
class Item : public uci_element {
public:
    explicit Item(std::string text);
    Item(const Item &) = delete;
    Item &operator=(const Item &) = delete;

    uci_element &element() { return *this; }
    static Item &of(uci_element &e) { return static_cast<Item &>(e); }

private:
    std::string text_;
};

/// A folder in uci_context::delta_path has the form of an item.
using Folder = Item;

class Option : public uci_option {
public:
    Option(uci_section &owner, std::string name);
    Option(const Option &) = delete;
    Option &operator=(const Option &) = delete;

    uci_element &element() { return e; }
    static Option &of(uci_element &e) { return static_cast<Option &>(*uci_to_option(&e)); }

    std::string_view name() const { return name_; }
    void set_name(std::string name);
    /// Makes it a string option.
    void set_value(std::string value);
    /// Makes it a list, of its old value and the new item where it was a string.
    void add_item(std::string item);
    void remove_item(uci_element &item) { items_->remove(Item::of(item)); }

private:
    std::string name_;
    std::string value_;
    std::unique_ptr<Children<Item>> items_; // on v.list, so there only while this is a list
};

class Section : public uci_section {
public:
    Section(uci_package &owner, std::string type, std::string name);
    Section(const Section &) = delete;
    Section &operator=(const Section &) = delete;

    uci_element &element() { return e; }
    static Section &of(uci_element &e) { return static_cast<Section &>(*uci_to_section(&e)); }

    std::string_view name() const { return name_; }
    void set_type(std::string type);
    Option *find(std::string_view name) const { return index_.find(options, name); }
    /// A new option at the end, an empty string as yet.
    Option &add_option(std::string name);
    void rename_option(Option &option, std::string name);
    void remove_option(Option &option);

private:
    friend class Package;

    std::string name_;
    std::string type_;
    Children<Option> options_;
    NameIndex<Option> index_;
};

/// One logged change. Parts that are absent are empty pointers in the structure.
class Delta : public uci_delta {
public:
    Delta(uci_command command, const char *section, const char *option, const char *value);
    Delta(const Delta &) = delete;
    Delta &operator=(const Delta &) = delete;

    uci_element &element() { return e; }
    static Delta &of(uci_element &e) { return static_cast<Delta &>(*uci_to_delta(&e)); }

private:
    std::string section_;
    std::string option_;
    std::string value_;
};

class Package : public uci_package {
public:
    Package(uci_context &owner, std::string name);
    Package(const Package &) = delete;
    Package &operator=(const Package &) = delete;

    uci_element &element() { return e; }
    static Package &of(uci_element &e) { return static_cast<Package &>(*uci_to_package(&e)); }

    std::string_view name() const { return name_; }
    void set_path(std::string path);
    Section *find(std::string_view name) const { return index_.find(sections, name); }
    /// A new section at the end; without a name it is anonymous and gets a generated one.
    Section &add_section(std::string type, const char *name);
    void rename_section(Section &section, std::string name);
    void remove_section(Section &section);
    /// False when the section stands there already. Positions past the end, and negative ones, mean
    /// the end.
    bool move_section(Section &section, int position);

    Children<Delta> &unsaved() { return unsaved_; }
    Children<Delta> &saved() { return saved_; }

private:
    std::string name_;
    std::string path_;
    Children<Section> sections_;
    Children<Delta> unsaved_;
    Children<Delta> saved_;
    NameIndex<Section> index_;
};

} // namespace qorcfg::uci
