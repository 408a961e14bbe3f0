// Taking a survey: Cache.GetItems on the application (or a read level by
// level) and one Collection match under the walk's root, the child lists
// linked and completed, and what the survey knows of an object. The tables
// filled on demand are in survey_tables.cpp, the messages' layout in
// survey_wire.cpp.
#include "platform/linux/survey.h"

#include <dbus/dbus.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/linux/accessible.h"
#include "platform/linux/bus_batch.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/survey_wire.h"

namespace zeblo::platform::linux_desktop {

namespace {

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
    auto items = decodeItems(callAll(bus_, call).front());
    // No answer, an older or newer layout, or an empty cache (Qt's): read
    // level by level. Only an application that caches objects is asked
    // for the others' properties with GetAll, which Qt's cannot take.
    if (!items || items->empty()) return false;
    for (auto& [path, item] : *items) items_.insert_or_assign(std::move(path), std::move(item));
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
        calls.push_back(methodCall(busName_.c_str(), path->c_str(), kAccessibleInterface, "GetChildren"));
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
    // Objects the application does not cache (GTK's list rows, a web page's
    // content) are read in one batch when the walk first reaches one of
    // them: four calls each, and their child lists follow from the parents
    // they name, in the order the Collection match gave them. An
    // application that refuses GetAll gets six calls each instead, the last
    // its child list.
    completed_ = true;
    std::vector<const std::string*> uncached;
    for (const AccessibleRef& object : objects_) {
        const auto path = under_.find(pathOf(object.get()));
        if (path != under_.end() && items_.count(path->first) == 0) uncached.push_back(&path->first);
    }
    if (uncached.empty()) return;
    std::vector<Message> calls;
    calls.reserve(uncached.size() * kCallsPerObjectWithProperties);
    for (const std::string* path : uncached) appendPropertyCalls(calls, busName_.c_str(), path->c_str());
    const std::vector<Message> answers = callAll(bus_, calls);
    bool refused = true;
    for (std::size_t i = 0; i < uncached.size() && refused; ++i) {
        refused = isErrorAnswer(answers[i * kCallsPerObjectWithProperties + 1]);
    }
    if (refused) {
        completeByChildLists(uncached);
        return;
    }
    std::vector<Item*> added(uncached.size(), nullptr);
    for (std::size_t i = 0; i < uncached.size(); ++i) {
        std::optional<Item> item = itemFromPropertyAnswers(&answers[i * kCallsPerObjectWithProperties]);
        if (item) added[i] = &items_.emplace(*uncached[i], std::move(*item)).first->second;  // else read live
    }
    // Each new item joins its parent's list when the parent is new as well
    // (a cached parent's list was asked for whole when the survey was taken).
    std::unordered_map<std::string_view, Item*> fresh;
    for (std::size_t i = 0; i < uncached.size(); ++i) {
        if (added[i] != nullptr) fresh.emplace(*uncached[i], added[i]);
    }
    for (std::size_t i = 0; i < uncached.size(); ++i) {
        if (added[i] == nullptr) continue;
        const auto parent = fresh.find(added[i]->parentPath);
        if (parent != fresh.end()) parent->second->children.push_back(under_.at(*uncached[i]));
    }
    for (std::size_t i = 0; i < uncached.size(); ++i) {
        if (added[i] != nullptr) settle(*uncached[i], *added[i]);
    }
}

void Survey::completeByChildLists(const std::vector<const std::string*>& uncached) const {
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
