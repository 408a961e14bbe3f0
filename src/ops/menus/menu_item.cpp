// The menu record's value semantics, its JSON form (and the snapshot's, a
// document of records) and its decoding. Every
// walk over the tree uses an explicit stack (see menu_item.h).
#include "ops/menus/menu_item.h"

#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

#include "core/json_writer.h"

namespace zeblo {

MenuItem MenuItem::shallowCopy(const MenuItem& other) {
    MenuItem out;
    out.title = other.title;
    out.path = other.path;
    out.enabled = other.enabled;
    out.checked = other.checked;
    out.cmdChar = other.cmdChar;
    out.cmdModifiers = other.cmdModifiers;
    out.pid = other.pid;
    return out;
}

MenuItem::MenuItem(const MenuItem& other) : MenuItem(shallowCopy(other)) {
    // Each level's copies are complete before the walk descends into them, so
    // the pointers into the vectors stay valid.
    std::vector<std::pair<const MenuItem*, MenuItem*>> work{{&other, this}};
    while (!work.empty()) {
        const auto [from, to] = work.back();
        work.pop_back();
        if (!from->children) continue;
        to->children.emplace();
        to->children->reserve(from->children->size());
        for (const MenuItem& child : *from->children) to->children->push_back(shallowCopy(child));
        for (std::size_t i = 0; i < from->children->size(); ++i) {
            work.emplace_back(&(*from->children)[i], &(*to->children)[i]);
        }
    }
}

MenuItem& MenuItem::operator=(const MenuItem& other) {
    if (this != &other) *this = MenuItem(other);
    return *this;
}

MenuItem::~MenuItem() {
    // Detach every submenu before its items are destroyed, so that no item is
    // destroyed with children of its own and the destructors never nest.
    if (!children) return;
    std::vector<std::vector<MenuItem>> pending;
    pending.push_back(std::move(*children));
    children.reset();
    while (!pending.empty()) {
        std::vector<MenuItem> level = std::move(pending.back());
        pending.pop_back();
        for (MenuItem& item : level) {
            if (item.children) {
                pending.push_back(std::move(*item.children));
                item.children.reset();
            }
        }
    }
}

void MenuItem::encode(json::Writer& w) const {
    struct Frame {
        const std::vector<MenuItem>* items;
        std::size_t next;
    };
    std::vector<Frame> open;
    // Writes an item's own members; an item with children stays open until
    // they are written.
    auto begin = [&](const MenuItem& item) {
        w.beginObject();
        w.key("title");
        w.string(item.title);
        w.key("path");
        w.beginArray();
        for (const auto& title : item.path) w.string(title);
        w.endArray();
        w.key("enabled");
        w.boolean(item.enabled);
        w.key("checked");
        w.boolean(item.checked);
        if (item.cmdChar) {
            w.key("cmdChar");
            w.string(*item.cmdChar);
        }
        if (item.cmdModifiers) {
            w.key("cmdModifiers");
            w.integer(*item.cmdModifiers);
        }
        if (item.children) {
            w.key("children");
            w.beginArray();
            open.push_back({&*item.children, 0});
        } else {
            w.endObject();
        }
    };
    begin(*this);
    while (!open.empty()) {
        Frame& top = open.back();
        if (top.next < top.items->size()) {
            begin((*top.items)[top.next++]);  // may push: `top` is not used afterwards
        } else {
            w.endArray();
            w.endObject();
            open.pop_back();
        }
    }
}

namespace {

// About the length of the pretty-printed snapshot of `menus`, so that the text
// is allocated once instead of growing through repeated copies (which, for a
// text of a megabyte, costs several times the writing itself).
std::size_t estimatedTextSize(const std::vector<MenuItem>& menus) {
    std::size_t total = 64;
    std::vector<std::pair<const MenuItem*, std::size_t>> work;  // record, indentation of its members
    for (const MenuItem& m : menus) work.emplace_back(&m, 6);
    while (!work.empty()) {
        const auto [item, indent] = work.back();
        work.pop_back();
        total += 8 * (indent + 16) + item->title.size() + item->cmdChar.value_or("").size();
        for (const std::string& title : item->path) total += indent + 8 + title.size();
        if (item->children) {
            for (const MenuItem& child : *item->children) work.emplace_back(&child, indent + 4);
        }
    }
    return total;
}

}  // namespace

std::string encodeMenuBar(std::string_view appName, const std::vector<MenuItem>& menus) {
    json::Writer writer(json::Layout::pretty);
    writer.reserve(estimatedTextSize(menus));
    writer.beginObject();
    writer.key("app");
    writer.string(appName);
    writer.key("menus");
    writer.beginArray();
    for (const MenuItem& menu : menus) menu.encode(writer);
    writer.endArray();
    writer.endObject();
    return writer.take();
}

namespace {

using Json = nlohmann::json;

std::int64_t integerOf(const Json& v) {
    if (v.is_number_unsigned()) {
        const auto u = v.get<std::uint64_t>();
        if (u > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            throw Json::out_of_range::create(406, "integer out of range: " + v.dump(), &v);
        }
        return static_cast<std::int64_t>(u);
    }
    if (v.is_number_integer()) return v.get<std::int64_t>();
    throw Json::type_error::create(302, std::string("type must be an integer, but is ") + v.type_name(), &v);
}

// The value of an optional key: null when the key is missing or null.
const Json* optionalMember(const Json& object, const char* key) {
    const auto it = object.find(key);
    return it == object.end() || it->is_null() ? nullptr : &*it;
}

// Reads one object's own members; returns its "children" array, if any.
const Json::array_t* decodeMembers(const Json& object, MenuItem& item) {
    item.title = object.at("title").get<std::string>();
    item.path = object.at("path").get<std::vector<std::string>>();
    item.enabled = object.at("enabled").get<bool>();
    item.checked = object.at("checked").get<bool>();
    if (const Json* v = optionalMember(object, "cmdChar")) item.cmdChar = v->get<std::string>();
    if (const Json* v = optionalMember(object, "cmdModifiers")) item.cmdModifiers = integerOf(*v);
    const Json* children = optionalMember(object, "children");
    if (children == nullptr) return nullptr;
    if (!children->is_array()) {
        throw Json::type_error::create(302, std::string("type must be array, but is ") + children->type_name(),
                                       children);
    }
    return &children->get_ref<const Json::array_t&>();
}

}  // namespace

MenuItem MenuItem::decode(const Json& object) {
    struct Frame {
        const Json::array_t* items;
        std::size_t next;
        MenuItem* parent;
    };
    MenuItem root;
    std::vector<Frame> open;
    auto start = [&](const Json& from, MenuItem& to) {
        if (const Json::array_t* items = decodeMembers(from, to)) {
            to.children.emplace();
            to.children->reserve(items->size());  // keeps `parent` pointers valid
            open.push_back({items, 0, &to});
        }
    };
    start(object, root);
    while (!open.empty()) {
        Frame& top = open.back();
        if (top.next == top.items->size()) {
            open.pop_back();
            continue;
        }
        const Json& from = (*top.items)[top.next++];
        MenuItem& to = top.parent->children->emplace_back();
        start(from, to);
    }
    return root;
}

void from_json(const nlohmann::json& object, MenuItem& item) { item = MenuItem::decode(object); }

}  // namespace zeblo
