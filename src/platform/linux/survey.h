// A bulk read of one application's accessible objects, taken when a walk
// over its elements starts, so that the walk does not pay a D-Bus round trip
// for every role, name, description, state set and child list it reads.
//
// Two calls make a survey where the application answers GetItems:
// - org.a11y.atspi.Cache.GetItems on the application gives, for every object
//   the application caches, its name, role, description, states, child
//   count, parent and index in the parent;
// - one Collection match under the walk's root gives the AtspiAccessible
//   objects of every descendant, which the walk's element nodes refer to.
//
// An application without GetItems (Qt) is read level by level instead, one
// batch of calls per level of the tree under the root.
//
// Element nodes created during the walk share the survey and it dies with the
// last of them, so nothing read stays after the operation returns. A survey
// is shared as const, yet some of what it knows is read on the first look at
// it (the uncached objects, key bindings, texts, sizes: the mutable members
// below); that is safe because every call into the backend holds
// LinuxPlatform's lock (guard()), so two threads never look at once. A survey is
// only trusted while nothing has happened on the desktop since it was taken
// (see LinuxPlatform::generation). Objects the application does not cache
// (transient ones such as table cells) and child lists it knows only in part
// are read live.
#pragma once

#include <atspi/atspi.h>
#include <dbus/dbus.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/linux/bus_batch.h"
#include "platform/linux/live_count.h"
#include "platform/linux/owned.h"
#include "platform/linux/sight.h"

namespace zeblo::platform::linux_desktop {

class Survey {
public:
    struct Item {
        std::string name;
        std::string description;
        AtspiRole role = ATSPI_ROLE_INVALID;
        std::uint64_t states = 0;  // bit n set: AtspiStateType n
        std::string parentPath;
        std::int32_t childCount = 0;  // -1: not given
        bool hasAction = false;
        bool hasText = false;
        bool hasComponent = false;
        bool hasEditableText = false;
        // The children, in order, when every one of them is known; borrowed
        // from the survey (valid while it lives).
        std::vector<AtspiAccessible*> children;
        bool childrenKnown = false;
    };

    // Surveys the application of `root` and the objects under `root`. When
    // the application does not answer the bulk read the survey is empty.
    static std::shared_ptr<const Survey> take(AtspiAccessible* root, std::uint64_t generation);
    Survey(const Survey&) = delete;
    Survey& operator=(const Survey&) = delete;

    // What the survey knows of `object`, or null.
    const Item* find(AtspiAccessible* object) const;
    // The item of `item`'s parent, or null.
    const Item* parent(const Item& item) const;
    // Whether an element with `role` is below `item`; nothing when part of
    // the subtree is not known.
    std::optional<bool> hasDescendant(const Item& item, AtspiRole role) const;
    // The key binding of the first action of a menu item under the root ("" for
    // none), or null when the survey cannot tell. The bindings of all the menu
    // items under the root are asked for at once, on the first call.
    const std::string* keyBinding(AtspiAccessible* object) const;
    // The whole text of an object under the root that has the Text
    // interface and a role whose value is text (labels included), or null
    // when the survey cannot tell. All of them are asked for at once, on
    // the first call.
    const std::string* text(AtspiAccessible* object) const;
    // The size on screen of an object the survey knows, or nothing when it
    // cannot tell (or the object has none to give). All of them are asked
    // for at once, on the first call.
    std::optional<Size> size(AtspiAccessible* object) const;
    // The action names of an object under the root (none for one without
    // the Action interface), or null when the survey cannot tell. All of them
    // are asked for at once, on the first call.
    const std::vector<std::string>* actions(AtspiAccessible* object) const;
    // Where an object the survey knows is drawn in its window (asked for
    // with the sizes).
    std::optional<Box> box(AtspiAccessible* object) const;
    std::uint64_t generation() const { return generation_; }
    std::size_t size() const { return items_.size(); }

private:
    struct Key {};  // made by take() only

public:
    explicit Survey(Key) {}

private:
    bool read(AtspiAccessible* root);
    void linkChildren(AtspiAccessible* root);
    // The survey of an application without GetItems, read level by level.
    void readLevels(AtspiAccessible* root);

    using ByPath = std::unordered_map<std::string, std::string>;
    // What `table` holds for `object`, an object under the root; `read` fills
    // the table on the first call.
    const std::string* lookUp(AtspiAccessible* object, std::optional<ByPath>& table,
                              void (Survey::*read)() const) const;
    // Calls `member` with the 32-bit `arguments` on every path in `asked` in
    // one batch, and keeps the string answers by path.
    void askEach(const std::vector<const std::string*>& asked, const char* interface, const char* member,
                 std::initializer_list<dbus_int32_t> arguments, ByPath& into) const;
    void readKeyBindings() const;
    void readTexts() const;
    void readSizes() const;
    void readActions() const;
    // Sets `item`'s children (it is the object at `owner`) from a
    // GetChildren answer, when every child is under the root.
    void takeChildren(const std::string& owner, Item& item, const Message& answer) const;
    // Decides whether `item`'s child list is known; forgets it otherwise.
    void settle(const std::string& path, Item& item) const;
    // Reads the objects under the root that the application does not cache.
    void complete() const;
    // complete() for an application that refuses GetAll: the objects in
    // `uncached` are read with their child lists.
    void completeByChildLists(const std::vector<const std::string*>& uncached) const;

    std::uint64_t generation_ = 0;
    std::string busName_;
    DBusConnection* bus_ = nullptr;                // the application's, while objects_ hold it
    // By object path. Items are added, never removed, while the survey lives
    // (the uncached ones on the first look at one of them), so references
    // to them stay valid.
    mutable std::unordered_map<std::string, Item> items_;
    mutable std::unordered_map<std::string, std::string> parentOfUncached_;  // path to parent path
    mutable bool completed_ = false;
    std::vector<AccessibleRef> objects_;            // the root and all under it
    std::unordered_map<std::string, AtspiAccessible*> under_;  // objects_ by path
    mutable std::optional<ByPath> keyBindings_;
    mutable std::optional<ByPath> texts_;
    mutable std::optional<std::unordered_map<std::string, Box>> sizes_;
    mutable std::optional<std::unordered_map<std::string, std::vector<std::string>>> actions_;
    Counted counted_;
};

}  // namespace zeblo::platform::linux_desktop
