// The accessibility operations of the simulated desktop: elements, attribute
// reads and writes, actions (with the effects of a press) and the trust check.
#include <type_traits>
#include <unordered_set>

#include "platform/ax_names.h"
#include "platform/sim/sim_state.h"

namespace zeblo::sim {

using Json = nlohmann::ordered_json;
using platform::AXError;

namespace {

// The node behind a handle of this desktop; null for a null or foreign handle.
Node* nodeOf(const platform::Platform* self, const platform::Element& e) {
    return e.owner() == self ? static_cast<Node*>(e.raw()) : nullptr;
}

Json idJson(const Node* n) { return n == nullptr || n->id.empty() ? Json(nullptr) : Json(n->id); }

// Why an operation on `n` cannot proceed, or success.
AXError usable(const Node* n) {
    if (n == nullptr) return platform::kAXErrorIllegalArgument;
    if (n->dead) return platform::kAXErrorInvalidUIElement;
    return platform::kAXErrorSuccess;
}

// Why a read of `n` gets no answer: as `usable`, or, for a hung element, the
// reply limit running out after its hung time has passed; success when it
// answers.
AXError unanswered(SimDesktop::Impl& state, const Node* n) {
    if (AXError e = usable(n)) return e;
    if (std::int64_t micros = state.hungMicros(n); micros > 0) {
        state.waitUnanswered(n, micros);
        return platform::kAXErrorCannotComplete;
    }
    return platform::kAXErrorSuccess;
}

// The answer to a write or action that `n` has been given and has acted on
// (`result`): held back until the reply limit runs out when `n` is hung or
// holds its replies.
AXError withheld(SimDesktop::Impl& state, const Node* n, AXError result) {
    std::int64_t micros = state.hungMicros(n);
    if (micros == 0) micros = n->holdsReplyMicros;
    if (micros == 0) return result;
    state.waitUnanswered(n, micros);
    return platform::kAXErrorCannotComplete;
}

// Whether `target` is `root` or lies below it through any attribute. Walks
// with an explicit list; shared nodes and cycles are visited once.
bool holds(Node* root, const Node* target) {
    std::vector<Node*> work{root};
    std::unordered_set<const Node*> seen{root};
    auto visit = [&](Node* n) {
        if (n != nullptr && seen.insert(n).second) work.push_back(n);
    };
    while (!work.empty()) {
        Node* n = work.back();
        work.pop_back();
        if (n == target) return true;
        for (auto& [name, value] : n->attrs) {
            if (auto* child = std::get_if<Node*>(&value)) visit(*child);
            if (auto* children = std::get_if<std::vector<Node*>>(&value))
                for (Node* c : *children) visit(c);
        }
    }
    return false;
}

// Removes the window holding `n` from its application's "AXWindows".
void closeWindowHolding(std::vector<SimApp>& apps, const Node* n) {
    for (auto& app : apps) {
        if (app.element == nullptr) continue;
        Attr* a = app.element->findAttr(ax::kWindowsAttribute);
        auto* windows = a == nullptr ? nullptr : std::get_if<std::vector<Node*>>(a);
        if (windows == nullptr) continue;
        for (Node* w : *windows) {
            if (w != nullptr && holds(w, n)) {
                std::erase(*windows, w);
                return;
            }
        }
    }
}

void toggle(Node& n) {
    Attr* a = n.findAttr(ax::kValueAttribute);
    auto* v = a == nullptr ? nullptr : std::get_if<std::int64_t>(a);
    n.setAttr(ax::kValueAttribute, std::int64_t{v != nullptr && *v == 0 ? 1 : (v != nullptr && *v == 1 ? 0 : 1)});
}

}  // namespace

std::int64_t SimDesktop::Impl::hungMicros(const Node* n) {
    if (n->hungMicros > 0) return n->hungMicros;
    for (const SimApp& app : apps)
        if (app.hungMicros > 0 && app.element != nullptr && holds(app.element, n)) return app.hungMicros;
    return 0;
}

platform::Element SimDesktop::elementOf(Node* n) {
    if (n == nullptr) return {};
    ++impl_->liveHandles;
    return platform::Element::adopt(this, n);
}

platform::Element SimDesktop::createApplicationElement(std::int32_t pid) {
    std::lock_guard lock(impl_->mu);
    Node* n = nullptr;
    if (SimApp* app = impl_->findApp(pid)) {
        if (app->element == nullptr) app->element = impl_->makeNode({});
        n = app->element;
    } else {
        n = impl_->deadElement();
    }
    ++impl_->liveHandles;
    return platform::Element::adopt(this, n);
}

platform::Element SimDesktop::createSystemWideElement() {
    std::lock_guard lock(impl_->mu);
    if (impl_->systemWide == nullptr) impl_->systemWide = impl_->makeNode({});
    ++impl_->liveHandles;
    return platform::Element::adopt(this, impl_->systemWide);
}

platform::AttributeRead SimDesktop::copyAttributeValue(const platform::Element& element,
                                                       std::string_view attribute) {
    Node* n = nodeOf(this, element);
    std::lock_guard lock(impl_->mu);
    if (AXError e = unanswered(*impl_, n)) return {e, {}};
    if (auto it = n->errors.find(attribute); it != n->errors.end()) return {it->second, {}};
    if (attribute == ax::kVisibleAttribute) return {platform::kAXErrorSuccess, !n->hidden};
    // Every child, seen or not, is listed under the library's own name.
    const bool everyChild = attribute == ax::kAllChildrenAttribute;
    const Attr* a = n->findAttr(everyChild ? std::string_view(ax::kChildrenAttribute) : attribute);
    if (a == nullptr) return {platform::kAXErrorAttributeUnsupported, {}};

    auto handOut = [&](Node* child) {
        if (child == nullptr) return platform::Element{};
        ++impl_->liveHandles;
        return platform::Element::adopt(this, child);
    };
    platform::AttributeRead r{platform::kAXErrorSuccess, {}};
    if (auto* s = std::get_if<std::string>(a)) {
        r.value = *s;
    } else if (auto* b = std::get_if<bool>(a)) {
        r.value = *b;
    } else if (auto* i = std::get_if<std::int64_t>(a)) {
        r.value = *i;
    } else if (auto* d = std::get_if<double>(a)) {
        r.value = platform::OtherValue{Json(*d).dump()};
    } else if (auto* child = std::get_if<Node*>(a)) {
        if (*child != nullptr) r.value = handOut(*child);
    } else if (auto* children = std::get_if<std::vector<Node*>>(a)) {
        std::vector<platform::Element> out;
        out.reserve(children->size());
        // "AXChildren" holds what a user sees, "ZBMenus" the menus open now.
        const bool shownOnly = attribute == ax::kChildrenAttribute || attribute == ax::kMenusAttribute;
        for (Node* c : *children) {
            if (c != nullptr && c->hidden && shownOnly) continue;
            out.push_back(handOut(c));
        }
        r.value = std::move(out);
    } else if (auto* strings = std::get_if<std::vector<std::string>>(a)) {
        r.value = *strings;
    }
    return r;
}

platform::NamesRead SimDesktop::copyAttributeNames(const platform::Element& element) {
    Node* n = nodeOf(this, element);
    std::lock_guard lock(impl_->mu);
    if (AXError e = unanswered(*impl_, n)) return {e, std::nullopt};
    std::vector<std::string> names;
    names.reserve(n->attrs.size());
    for (const auto& [name, value] : n->attrs) names.push_back(name);
    return {platform::kAXErrorSuccess, std::move(names)};
}

AXError SimDesktop::setAttributeValue(const platform::Element& element, std::string_view attribute,
                                      const platform::SetValue& value) {
    Node* n = nodeOf(this, element);
    std::lock_guard lock(impl_->mu);
    AXError result = usable(n);
    if (result == platform::kAXErrorSuccess) {
        if (n->setResult) {
            result = *n->setResult;
        } else if (n->settable.count(attribute) == 0) {
            result = platform::kAXErrorAttributeUnsupported;
        }
    }
    if (result == platform::kAXErrorSuccess) {
        if (auto* s = std::get_if<std::string>(&value)) {
            n->setAttr(std::string(attribute), *s);
        } else if (auto* b = std::get_if<bool>(&value)) {
            n->setAttr(std::string(attribute), *b);
        } else {
            n->setAttr(std::string(attribute), std::get<std::int64_t>(value));
        }
    }
    if (n != nullptr && !n->dead) result = withheld(*impl_, n, result);
    Json shown = std::visit(
        [](const auto& v) {
            if constexpr (std::is_same_v<std::decay_t<decltype(v)>, std::string>) {
                return Json(traceText(v));
            } else {
                return Json(v);
            }
        },
        value);
    impl_->record(Json{{"set", traceText(attribute)}, {"element", idJson(n)}, {"value", std::move(shown)},
                       {"result", result}});
    return result;
}

platform::SettableRead SimDesktop::isAttributeSettable(const platform::Element& element,
                                                       std::string_view attribute) {
    Node* n = nodeOf(this, element);
    std::lock_guard lock(impl_->mu);
    if (AXError e = unanswered(*impl_, n)) return {e, false};
    return {platform::kAXErrorSuccess, n->settable.count(attribute) != 0};
}

bool SimDesktop::sameElement(const platform::Element& a, const platform::Element& b) {
    // Nodes live as long as the desktop, so comparing them needs no lock.
    const Node* n = nodeOf(this, a);
    return n != nullptr && n == nodeOf(this, b);
}

std::optional<platform::Frame> SimDesktop::frameOf(const platform::Element& element) {
    Node* n = nodeOf(this, element);
    std::lock_guard lock(impl_->mu);
    if (usable(n) != platform::kAXErrorSuccess || n->hungMicros > 0) return std::nullopt;
    return n->frame;
}

AXError SimDesktop::performAction(const platform::Element& element, std::string_view action) {
    Node* n = nodeOf(this, element);
    std::lock_guard lock(impl_->mu);
    AXError result = usable(n);
    if (result == platform::kAXErrorSuccess) {
        result = platform::kAXErrorActionUnsupported;
        for (auto& [name, codes] : n->actions) {
            if (name != action) continue;
            result = codes.empty() ? platform::kAXErrorSuccess : codes.front();
            if (codes.size() > 1) codes.erase(codes.begin());  // the last code repeats
            break;
        }
    }
    if (result == platform::kAXErrorSuccess && action == ax::kPressAction) {
        if (n->onPress == OnPress::close) closeWindowHolding(impl_->apps, n);
        if (n->onPress == OnPress::toggle) toggle(*n);
    }
    if (result == platform::kAXErrorSuccess && (action == ax::kPressAction || action == ax::kShowMenuAction) &&
        !n->reveals.empty()) {
        if (Node* shown = impl_->findNode(n->reveals)) shown->hidden = false;
    }
    if (n != nullptr && !n->dead) result = withheld(*impl_, n, result);
    impl_->record(Json{{"action", traceText(action)}, {"element", idJson(n)}, {"result", result}});
    return result;
}

platform::NamesRead SimDesktop::copyActionNames(const platform::Element& element) {
    Node* n = nodeOf(this, element);
    std::lock_guard lock(impl_->mu);
    if (AXError e = unanswered(*impl_, n)) return {e, std::nullopt};
    if (n->actionNamesError) return {*n->actionNamesError, std::nullopt};
    std::vector<std::string> names;
    names.reserve(n->actions.size());
    for (const auto& [name, codes] : n->actions) names.push_back(name);
    return {platform::kAXErrorSuccess, std::move(names)};
}

bool SimDesktop::isProcessTrusted(bool prompt) {
    std::lock_guard lock(impl_->mu);
    impl_->record(Json{{"trustCheck", Json{{"prompt", prompt}}}, {"trusted", impl_->trusted}});
    return impl_->trusted;
}

}  // namespace zeblo::sim
