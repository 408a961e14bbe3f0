// The survey's tables filled on demand (survey.h): the key bindings of the
// menu items, the texts and the sizes on screen of the objects under the
// root, each asked for in one batch on the first look at one of them.
#include <dbus/dbus.h>

#include "platform/linux/accessible.h"
#include "platform/linux/bus_batch.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/survey.h"

namespace zeblo::platform::linux_desktop {

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

const std::string* Survey::text(AtspiAccessible* object) const { return lookUp(object, texts_, &Survey::readTexts); }

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
    // interface, in two batches; the others have none.
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
    std::vector<std::optional<std::vector<std::string>>> names = actionNamesAt(bus_, busName_.c_str(), asked);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        if (names[i]) actions_->emplace(*asked[i], std::move(*names[i]));
    }
}

}  // namespace zeblo::platform::linux_desktop
