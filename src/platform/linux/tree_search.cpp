// A breadth-first search under an element, for toolkits without the
// Collection interface: two batches per level (the level's child lists, then
// their children's roles and states), and the element found reached through
// libatspi by its indexes from the root.
#include "platform/linux/tree_search.h"

#include <string>
#include <unordered_set>
#include <vector>

#include "platform/linux/bus_batch.h"
#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr std::size_t kMaxLevels = 32;
constexpr std::size_t kMaxElements = 4096;

// One element met by the search: its path, and where it stands (the entry
// of its parent, the root's being 0, and its index among the parent's
// children).
struct Met {
    std::string path;
    std::size_t parent = 0;
    gint index = -1;
};

// The element `at` of `met` as an AtspiAccessible, reached from `root` by the
// child indexes on the way; null when the tree changed on the way.
AccessibleRef reach(AtspiAccessible* root, const std::vector<Met>& met, std::size_t at) {
    std::vector<std::size_t> chain;
    for (std::size_t i = at; i != 0; i = met[i].parent) chain.push_back(i);
    AccessibleRef current = AccessibleRef::retain(root);
    for (auto step = chain.rbegin(); step != chain.rend(); ++step) {
        Error error;
        AccessibleRef child =
            AccessibleRef::adopt(atspi_accessible_get_child_at_index(current.get(), met[*step].index, out(error)));
        if (error || !child || pathOf(child.get()) != met[*step].path) return {};
        current = std::move(child);
    }
    return current;
}

// The search of searchTree and searchBest: calls `met` with each element's
// entry, glance and depth in the order met, until it answers true; gives the
// elements met (for reach()).
std::vector<Met> search(AtspiAccessible* root, const std::function<bool(std::size_t, const Glance&, std::size_t)>& met,
                        const std::function<bool(const Glance&)>& descend) {
    DBusConnection* bus = root != nullptr ? connectionOf(root) : nullptr;
    if (bus == nullptr || busOf(root) == nullptr) return {};
    const std::string busName = busOf(root);
    std::vector<Met> elements{{pathOf(root), 0, -1}};
    std::unordered_set<std::string> known{elements.front().path};
    std::vector<std::size_t> level{0};  // the entries whose children are searched next
    for (std::size_t depth = 0; depth < kMaxLevels && !level.empty(); ++depth) {
        std::vector<Message> calls;
        calls.reserve(level.size());
        for (const std::size_t i : level) {
            calls.push_back(methodCall(busName.c_str(), elements[i].path.c_str(), kAccessible, "GetChildren"));
        }
        const std::vector<Message> lists = callAll(bus, calls);
        const std::size_t first = elements.size();
        for (std::size_t k = 0; k < level.size(); ++k) {
            const auto children = referencesAnswer(lists[k]);
            if (!children) continue;
            for (std::size_t index = 0; index < children->size() && elements.size() < kMaxElements; ++index) {
                const auto& [childBus, childPath] = (*children)[index];
                if (childBus != busName || !known.insert(childPath).second) continue;  // elsewhere, or met before
                elements.push_back({childPath, level[k], static_cast<gint>(index)});
            }
        }
        calls.clear();
        calls.reserve(2 * (elements.size() - first));
        for (std::size_t i = first; i < elements.size(); ++i) {
            calls.push_back(methodCall(busName.c_str(), elements[i].path.c_str(), kAccessible, "GetRole"));
            calls.push_back(methodCall(busName.c_str(), elements[i].path.c_str(), kAccessible, "GetState"));
        }
        const std::vector<Message> answers = callAll(bus, calls);
        level.clear();
        for (std::size_t i = first; i < elements.size(); ++i) {
            Glance glance;
            dbus_uint32_t role = 0;
            if (!uint32Answer(answers[2 * (i - first)], &role)) continue;  // gone, or not answering
            glance.role = static_cast<AtspiRole>(role);
            if (const auto words = uint32sAnswer(answers[2 * (i - first) + 1])) {
                for (std::size_t w = 0; w < words->size() && w < 2; ++w) {
                    glance.states |= std::uint64_t{(*words)[w]} << (32 * w);
                }
            }
            if (met(i, glance, depth + 1)) return elements;
            if (descend(glance)) level.push_back(i);
        }
    }
    return elements;
}

}  // namespace

AccessibleRef searchTree(AtspiAccessible* root, const std::function<bool(const Glance&)>& wanted,
                         const std::function<bool(const Glance&)>& descend) {
    std::size_t found = 0;
    const std::vector<Met> elements = search(
        root,
        [&](std::size_t i, const Glance& glance, std::size_t) {
            if (wanted(glance)) found = i;
            return found != 0;
        },
        descend);
    return found != 0 ? reach(root, elements, found) : AccessibleRef();
}

AccessibleRef searchBest(AtspiAccessible* root, const std::function<int(const Glance&)>& wanted,
                         const std::function<bool(const Glance&)>& descend) {
    std::size_t best = 0;
    int bestRank = 0;
    const std::vector<Met> elements = search(
        root,
        [&](std::size_t i, const Glance& glance, std::size_t) {
            const int rank = wanted(glance);
            if (rank > bestRank) {
                best = i;
                bestRank = rank;
            }
            return false;
        },
        descend);
    return best != 0 ? reach(root, elements, best) : AccessibleRef();
}

}  // namespace zeblo::platform::linux_desktop
