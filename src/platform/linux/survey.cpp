// The bulk read behind a walk: Cache.GetItems on the application and one
// Collection match under the walk's root.
#include "platform/linux/survey.h"

#include <dbus/dbus.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "platform/linux/accessible.h"
#include "platform/linux/bus_batch.h"
#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

namespace {

// The reply of GetItems since AT-SPI 2.34: for every object its reference,
// its application's and parent's references, index in parent, child count,
// interfaces, name, role, description and the two words of its state set.
constexpr const char* kItemsSignature = "a((so)(so)(so)iiassusau)";
constexpr const char* kAccessible = "org.a11y.atspi.Accessible";

// Reads an "(so)" reference at `it` and advances past it; gives the path.
std::string readReference(DBusMessageIter* it) {
    DBusMessageIter ref;
    dbus_message_iter_recurse(it, &ref);
    dbus_message_iter_next(&ref);  // the bus name
    const char* path = nullptr;
    dbus_message_iter_get_basic(&ref, &path);
    dbus_message_iter_next(it);
    return path != nullptr ? path : "";
}

template <class T>
T readBasic(DBusMessageIter* it) {
    T value{};
    dbus_message_iter_get_basic(it, &value);
    dbus_message_iter_next(it);
    return value;
}

std::string readString(DBusMessageIter* it) {
    const char* text = readBasic<const char*>(it);
    return text != nullptr ? text : "";
}

// The calls that read one object without GetItems: what GetItems gives of
// it, and its child list (the last).
constexpr std::size_t kCallsPerObject = 6;

void appendObjectCalls(std::vector<Message>& calls, const char* bus, const char* path) {
    calls.push_back(methodCall(bus, path, kAccessible, "GetRole"));
    calls.push_back(propertyCall(bus, path, kAccessible, "Name"));
    calls.push_back(propertyCall(bus, path, kAccessible, "Description"));
    calls.push_back(methodCall(bus, path, kAccessible, "GetState"));
    calls.push_back(methodCall(bus, path, kAccessible, "GetInterfaces"));
    calls.push_back(methodCall(bus, path, kAccessible, "GetChildren"));
}

// The item the answers to appendObjectCalls' calls describe (its parent and
// children not set), or nothing when the object is gone or answers oddly.
std::optional<Survey::Item> itemFromAnswers(const Message* answer) {
    dbus_uint32_t role = 0;
    const char* name = stringAnswer(answer[1]);
    const char* description = stringAnswer(answer[2]);
    const auto states = uint32sAnswer(answer[3]);
    const auto interfaces = stringsAnswer(answer[4]);
    if (!uint32Answer(answer[0], &role) || name == nullptr || description == nullptr || !states || !interfaces) {
        return std::nullopt;
    }
    Survey::Item item;
    item.role = static_cast<AtspiRole>(role);
    item.name = name;
    item.description = description;
    for (std::size_t word = 0; word < 2 && word < states->size(); ++word) {
        item.states |= std::uint64_t{(*states)[word]} << (32 * word);
    }
    for (const std::string& interface : *interfaces) {
        item.hasAction |= interface == "org.a11y.atspi.Action";
        item.hasText |= interface == "org.a11y.atspi.Text";
        item.hasComponent |= interface == "org.a11y.atspi.Component";
        item.hasEditableText |= interface == "org.a11y.atspi.EditableText";
    }
    item.childCount = -1;
    return item;
}

// How far a survey read level by level goes: objects below are read live.
constexpr int kMaxLevels = 64;
constexpr std::size_t kMaxLevelObjects = 4096;

}  // namespace


std::shared_ptr<const Survey> Survey::take(AtspiAccessible* root, std::uint64_t generation) {
    if (root == nullptr || busOf(root) == nullptr) return nullptr;
    auto survey = std::make_shared<Survey>(Key());
    survey->generation_ = generation;
    // An application that does not answer the bulk read gets an empty
    // survey: the walk reads live and does not ask again at every level.
    if (survey->read(root)) {
        survey->linkChildren(root);
    } else if (survey->bus_ != nullptr) {
        survey->readLevels(root);
    }
    return survey;
}

bool Survey::read(AtspiAccessible* root) {
    bus_ = connectionOf(root);
    if (bus_ == nullptr) return false;
    busName_ = busOf(root);
    std::vector<Message> call;
    call.push_back(methodCall(busName_.c_str(), "/org/a11y/atspi/cache", "org.a11y.atspi.Cache", "GetItems"));
    const Message answer = std::move(callAll(bus_, call).front());
    if (!answer || dbus_message_get_type(answer.get()) != DBUS_MESSAGE_TYPE_METHOD_RETURN) return false;
    const char* signature = dbus_message_get_signature(answer.get());
    if (signature == nullptr || std::strcmp(signature, kItemsSignature) != 0) {
        return false;  // an older or newer layout: the walk reads live
    }
    DBusMessage* reply = answer.get();
    DBusMessageIter it, array;
    dbus_message_iter_init(reply, &it);
    dbus_message_iter_recurse(&it, &array);
    while (dbus_message_iter_get_arg_type(&array) == DBUS_TYPE_STRUCT) {
        DBusMessageIter field;
        dbus_message_iter_recurse(&array, &field);
        std::string path = readReference(&field);
        readReference(&field);  // the application
        Item item;
        item.parentPath = readReference(&field);
        readBasic<dbus_int32_t>(&field);  // the index in the parent
        item.childCount = readBasic<dbus_int32_t>(&field);
        DBusMessageIter interfaces;
        dbus_message_iter_recurse(&field, &interfaces);
        while (dbus_message_iter_get_arg_type(&interfaces) == DBUS_TYPE_STRING) {
            const std::string interface = readString(&interfaces);
            item.hasAction |= interface == "org.a11y.atspi.Action";
            item.hasText |= interface == "org.a11y.atspi.Text";
            item.hasComponent |= interface == "org.a11y.atspi.Component";
            item.hasEditableText |= interface == "org.a11y.atspi.EditableText";
        }
        dbus_message_iter_next(&field);
        item.name = readString(&field);
        item.role = static_cast<AtspiRole>(readBasic<dbus_uint32_t>(&field));
        item.description = readString(&field);
        DBusMessageIter states;
        dbus_message_iter_recurse(&field, &states);
        for (int word = 0; word < 2 && dbus_message_iter_get_arg_type(&states) == DBUS_TYPE_UINT32; ++word) {
            item.states |= std::uint64_t{readBasic<dbus_uint32_t>(&states)} << (32 * word);
        }
        items_.insert_or_assign(std::move(path), std::move(item));
        dbus_message_iter_next(&array);
    }
    return true;
}

void Survey::linkChildren(AtspiAccessible* root) {
    // The objects under the root, by path; the root itself as well.
    objects_.push_back(AccessibleRef::retain(root));
    if (const auto collection = Ref<AtspiCollection>::adopt(atspi_accessible_get_collection_iface(root))) {
        const Ref<AtspiMatchRule> rule = Ref<AtspiMatchRule>::adopt(
            atspi_match_rule_new(nullptr, ATSPI_Collection_MATCH_ALL, nullptr, ATSPI_Collection_MATCH_ALL, nullptr,
                                 ATSPI_Collection_MATCH_ALL, nullptr, ATSPI_Collection_MATCH_ALL, FALSE));
        Error error;
        std::vector<AccessibleRef> matches = takeAccessibles(atspi_collection_get_matches(
            collection.get(), rule.get(), ATSPI_Collection_SORT_ORDER_CANONICAL, 0, TRUE, out(error)));
        objects_.reserve(matches.size() + 1);
        for (AccessibleRef& match : matches) objects_.push_back(std::move(match));
    }
    for (const AccessibleRef& object : objects_) under_.emplace(pathOf(object.get()), object.get());

    // Every item's children, in the match's order: the Collection walks the
    // tree depth first, so each parent's children come in their own order
    // (GetItems' index in parent is not reliable: GTK gives -1 for some menu
    // items).
    for (const AccessibleRef& object : objects_) {
        if (object.get() == root) continue;
        const auto item = items_.find(pathOf(object.get()));
        if (item == items_.end()) continue;  // not cached: its parent reads its children live
        const auto parent = items_.find(item->second.parentPath);
        if (parent != items_.end()) parent->second.children.push_back(object.get());
    }

    // A list is known when it holds as many children as the application
    // says the element has. The lists this does not settle (GTK gives no
    // count for its menus; uncached children leave gaps) are asked for whole,
    // in one batch.
    std::vector<const std::string*> open;
    for (auto& [path, item] : items_) {
        if (under_.count(path) != 0 &&
            (item.childCount < 0 || item.children.size() != static_cast<std::size_t>(item.childCount))) {
            open.push_back(&path);
        }
    }
    std::vector<Message> calls;
    calls.reserve(open.size());
    for (const std::string* path : open) {
        calls.push_back(methodCall(busName_.c_str(), path->c_str(), kAccessible, "GetChildren"));
    }
    const std::vector<Message> lists = callAll(bus_, calls);
    for (std::size_t i = 0; i < open.size(); ++i) takeChildren(*open[i], items_[*open[i]], lists[i]);
    for (auto& [path, item] : items_) settle(path, item);
}

void Survey::takeChildren(const std::string& owner, Item& item, const Message& answer) const {
    const auto references = referencesAnswer(answer);
    if (!references) return;  // as it was: the list is read live if it does not add up
    item.childCount = static_cast<std::int32_t>(references->size());
    item.children.clear();
    for (const auto& [bus, path] : *references) {
        const auto object = bus == busName_ ? under_.find(path) : under_.end();
        if (object == under_.end()) {  // outside the survey: the list is read live
            item.children.clear();
            return;
        }
        item.children.push_back(object->second);
    }
    for (const auto& [bus, path] : *references) {
        const auto child = items_.find(path);
        if (child == items_.end()) {
            parentOfUncached_.emplace(path, owner);
        } else if (child->second.parentPath.empty()) {
            child->second.parentPath = owner;
        }
    }
}

void Survey::settle(const std::string& path, Item& item) const {
    item.childrenKnown = under_.count(path) != 0 && item.childCount >= 0 &&
                         item.children.size() == static_cast<std::size_t>(item.childCount);
    if (!item.childrenKnown) item.children.clear();
}

void Survey::complete() const {
    // Objects the application does not cache (GTK's list rows, for one) are
    // read in one batch when the walk first reaches one of them: six calls
    // each, the answers GetItems would have given and the child list.
    completed_ = true;
    std::vector<const std::string*> uncached;
    for (const auto& [path, object] : under_) {
        if (items_.count(path) == 0) uncached.push_back(&path);
    }
    if (uncached.empty()) return;
    std::vector<Message> calls;
    calls.reserve(uncached.size() * kCallsPerObject);
    for (const std::string* path : uncached) appendObjectCalls(calls, busName_.c_str(), path->c_str());
    const std::vector<Message> answers = callAll(bus_, calls);
    std::vector<std::pair<const std::string*, Item*>> added;
    for (std::size_t i = 0; i < uncached.size(); ++i) {
        std::optional<Item> item = itemFromAnswers(&answers[i * kCallsPerObject]);
        if (!item) continue;  // read live
        const auto parent = parentOfUncached_.find(*uncached[i]);
        if (parent != parentOfUncached_.end()) item->parentPath = parent->second;
        added.emplace_back(uncached[i], &items_.emplace(*uncached[i], std::move(*item)).first->second);
    }
    // The child lists once every new item is in place, so that they can name
    // their children's parent.
    for (std::size_t i = 0, k = 0; i < uncached.size() && k < added.size(); ++i) {
        if (added[k].first != uncached[i]) continue;
        takeChildren(*uncached[i], *added[k].second, answers[(i + 1) * kCallsPerObject - 1]);
        settle(*uncached[i], *added[k].second);
        ++k;
    }
}

void Survey::readLevels(AtspiAccessible* root) {
    // Without GetItems (Qt has none) the tree under the root is read level
    // by level: one batch per level asks every object of the level for what
    // GetItems would have given and for its children, which make the next
    // level. A walk then pays about one round trip per level of the tree,
    // not several per element.
    if (_atspi_ref_accessible == nullptr) return;  // then not taken
    completed_ = true;  // what the levels do not reach is read live
    objects_.push_back(AccessibleRef::retain(root));
    std::vector<std::string> level{pathOf(root)};
    under_.emplace(level.front(), root);
    std::size_t read = 0;
    for (int depth = 0; depth < kMaxLevels && !level.empty() && read < kMaxLevelObjects; ++depth) {
        level.resize(std::min(level.size(), kMaxLevelObjects - read));
        read += level.size();
        std::vector<Message> calls;
        calls.reserve(level.size() * kCallsPerObject);
        for (const std::string& path : level) appendObjectCalls(calls, busName_.c_str(), path.c_str());
        const std::vector<Message> answers = callAll(bus_, calls);
        std::vector<std::string> next;
        for (std::size_t i = 0; i < level.size(); ++i) {
            std::optional<Item> item = itemFromAnswers(&answers[i * kCallsPerObject]);
            if (!item) continue;  // read live, and so is what is under it
            const Message& childList = answers[(i + 1) * kCallsPerObject - 1];
            for (const auto& [bus, path] : referencesAnswer(childList).value_or(std::vector<Reference>{})) {
                if (bus != busName_ || under_.count(path) != 0) continue;
                AccessibleRef child = AccessibleRef::adopt(_atspi_ref_accessible(bus.c_str(), path.c_str()));
                if (!child) continue;
                under_.emplace(path, child.get());
                objects_.push_back(std::move(child));
                next.push_back(path);
            }
            const auto parent = parentOfUncached_.find(level[i]);
            if (parent != parentOfUncached_.end()) item->parentPath = parent->second;
            Item& stored = items_.insert_or_assign(level[i], std::move(*item)).first->second;
            takeChildren(level[i], stored, childList);
            settle(level[i], stored);
        }
        level = std::move(next);
    }
}

const Survey::Item* Survey::find(AtspiAccessible* object) const {
    if (object == nullptr) return nullptr;
    const char* bus = busOf(object);
    if (bus == nullptr || busName_ != bus) return nullptr;
    const std::string path = pathOf(object);
    auto found = items_.find(path);
    if (found == items_.end() && !completed_ && under_.count(path) != 0) {
        complete();
        found = items_.find(path);
    }
    return found != items_.end() ? &found->second : nullptr;
}

const std::string* Survey::lookUp(AtspiAccessible* object, std::optional<ByPath>& table,
                                  void (Survey::*read)() const) const {
    const Item* item = find(object);
    if (item == nullptr || under_.count(pathOf(object)) == 0) return nullptr;
    if (!table) (this->*read)();
    const auto found = table->find(pathOf(object));
    return found != table->end() ? &found->second : nullptr;
}

void Survey::askEach(const std::vector<const std::string*>& asked, const char* interface, const char* member,
                     std::initializer_list<dbus_int32_t> arguments, ByPath& into) const {
    std::vector<Message> calls;
    calls.reserve(asked.size());
    for (const std::string* path : asked) {
        Message call = methodCall(busName_.c_str(), path->c_str(), interface, member);
        for (const dbus_int32_t argument : arguments) {
            if (call && !dbus_message_append_args(call.get(), DBUS_TYPE_INT32, &argument, DBUS_TYPE_INVALID)) {
                call.reset();
            }
        }
        calls.push_back(std::move(call));
    }
    const std::vector<Message> answers = callAll(bus_, calls);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        if (const char* answer = stringAnswer(answers[i])) into.emplace(*asked[i], answer);
    }
}

const std::string* Survey::keyBinding(AtspiAccessible* object) const {
    return lookUp(object, keyBindings_, &Survey::readKeyBindings);
}

void Survey::readKeyBindings() const {
    // The first action's binding of every menu item under the root; items
    // without the Action interface have none.
    keyBindings_.emplace();
    std::vector<const std::string*> asked;
    for (const auto& [path, object] : under_) {
        const auto item = items_.find(path);
        if (item == items_.end()) continue;
        const AtspiRole role = item->second.role;
        if (role != ATSPI_ROLE_MENU_ITEM && role != ATSPI_ROLE_CHECK_MENU_ITEM && role != ATSPI_ROLE_RADIO_MENU_ITEM)
            continue;
        if (item->second.hasAction) {
            asked.push_back(&path);
        } else {
            keyBindings_->emplace(path, std::string());
        }
    }
    askEach(asked, "org.a11y.atspi.Action", "GetKeyBinding", {0}, *keyBindings_);
}

const std::string* Survey::text(AtspiAccessible* object) const {
    return lookUp(object, texts_, &Survey::readTexts);
}

void Survey::readTexts() const {
    // Every object under the root whose value is its text, the uncached ones
    // included (a label in a list row, for one).
    if (!completed_) complete();
    texts_.emplace();
    std::vector<const std::string*> asked;
    for (const auto& [path, object] : under_) {
        const auto item = items_.find(path);
        if (item == items_.end() || !item->second.hasText) continue;
        const AtspiRole role = item->second.role;
        if (isTextRole(role) || isTextBlockRole(role) || role == ATSPI_ROLE_LABEL || role == ATSPI_ROLE_STATIC) {
            asked.push_back(&path);
        }
    }
    askEach(asked, "org.a11y.atspi.Text", "GetText", {0, -1}, *texts_);  // from the start to the end
}

std::optional<Size> Survey::size(AtspiAccessible* object) const {
    const std::optional<Box> known = box(object);
    return known ? std::optional<Size>(Size{known->width, known->height}) : std::nullopt;
}

std::optional<Box> Survey::box(AtspiAccessible* object) const {
    if (find(object) == nullptr) return std::nullopt;
    if (!sizes_) readSizes();
    const auto found = sizes_->find(pathOf(object));
    return found != sizes_->end() ? std::optional<Box>(found->second) : std::nullopt;
}

void Survey::readSizes() const {
    // The extents of every object the survey knows with the Component
    // interface, in window coordinates (GTK 4 gives no others on X11).
    if (!completed_) complete();
    sizes_.emplace();
    std::vector<const std::string*> asked;
    for (const auto& [path, item] : items_) {
        if (item.hasComponent) asked.push_back(&path);
    }
    std::vector<Message> calls;
    calls.reserve(asked.size());
    const dbus_uint32_t window = ATSPI_COORD_TYPE_WINDOW;
    for (const std::string* path : asked) {
        Message call = methodCall(busName_.c_str(), path->c_str(), "org.a11y.atspi.Component", "GetExtents");
        if (call && !dbus_message_append_args(call.get(), DBUS_TYPE_UINT32, &window, DBUS_TYPE_INVALID)) call.reset();
        calls.push_back(std::move(call));
    }
    const std::vector<Message> answers = callAll(bus_, calls);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        if (const auto box = rectangleAnswer(answers[i])) {
            sizes_->emplace(*asked[i], Box{(*box)[0], (*box)[1], (*box)[2], (*box)[3]});
        }
    }
}

const std::vector<std::string>* Survey::actions(AtspiAccessible* object) const {
    if (find(object) == nullptr || under_.count(pathOf(object)) == 0) return nullptr;
    if (!actions_) readActions();
    const auto found = actions_->find(pathOf(object));
    return found != actions_->end() ? &found->second : nullptr;
}

void Survey::readActions() const {
    // The action names of every object under the root with the Action
    // interface, in one batch; the others have none.
    if (!completed_) complete();
    actions_.emplace();
    std::vector<const std::string*> asked;
    for (const auto& [path, object] : under_) {
        const auto item = items_.find(path);
        if (item == items_.end()) continue;
        if (item->second.hasAction) {
            asked.push_back(&path);
        } else {
            actions_->emplace(path, std::vector<std::string>{});
        }
    }
    std::vector<Message> calls;
    calls.reserve(asked.size());
    for (const std::string* path : asked) {
        calls.push_back(methodCall(busName_.c_str(), path->c_str(), "org.a11y.atspi.Action", "GetActions"));
    }
    const std::vector<Message> answers = callAll(bus_, calls);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        if (auto names = firstOfTriplesAnswer(answers[i])) actions_->emplace(*asked[i], std::move(*names));
    }
}

std::optional<bool> Survey::hasDescendant(const Item& item, AtspiRole role) const {
    std::vector<const Item*> pending{&item};
    while (!pending.empty()) {
        const Item* at = pending.back();
        pending.pop_back();
        if (!at->childrenKnown) return std::nullopt;
        for (AtspiAccessible* child : at->children) {
            const Item* known = find(child);
            if (known == nullptr) return std::nullopt;
            if (known->role == role) return true;
            pending.push_back(known);
        }
    }
    return false;
}

const Survey::Item* Survey::parent(const Item& item) const {
    const auto found = items_.find(item.parentPath);
    return found != items_.end() ? &found->second : nullptr;
}

}  // namespace zeblo::platform::linux_desktop
