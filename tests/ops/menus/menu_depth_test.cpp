// Menu trees have no depth limit and the host may call us on a thread with a
// small stack (512 KiB is the default for secondary threads on macOS). These
// tests run deep trees on such threads; whatever recursed on the machine stack
// in proportion to the depth would crash them.
//
// The snapshot text grows with the cube of the depth (each record repeats its
// ancestors' titles, one per line, indented two blanks per level), so the
// export is run on a chain whose text stays in the tens of megabytes, and the
// record machinery on its own is run on far deeper chains.
#include "support/sim_fixture.h"

#include <pthread.h>

#include <functional>
#include <string>

#include "core/json_writer.h"
#include "ops/menus/menu_item.h"
#include "platform/platform.h"

namespace zeblo::testing {
namespace {

using nlohmann::json;

constexpr std::size_t kHostStack = 512 * 1024;

// Runs `fn` on a new thread with a stack of `bytes` and waits for it.
void runOnStack(std::size_t bytes, const std::function<void()>& fn) {
    pthread_attr_t attr;
    ASSERT_EQ(pthread_attr_init(&attr), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attr, bytes), 0);
    pthread_t thread;
    auto entry = [](void* arg) -> void* {
        (*static_cast<const std::function<void()>*>(arg))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attr, entry, const_cast<std::function<void()>*>(&fn)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
}

class MenuDepthTest : public SimTest {
protected:
    // Application "Deep" (frontmost) whose menu bar holds a chain of `depth`
    // items "m0", "m1", ...; each item's submenu is an untitled container
    // holding the next item.
    void loadChain(int depth) {
        load(R"J({"apps": [{"name": "Deep", "pid": 1, "element": {"id": "app", "attrs": {}}}], "frontmost": 1})J");
        sim::Node* bar = desk().newNode();
        desk().node("app")->setAttr("AXMenuBar", bar);
        sim::Node* parent = bar;
        for (int i = 0; i < depth; ++i) {
            sim::Node* item = desk().newNode();
            item->setAttr("AXTitle", "m" + std::to_string(i));
            item->setAttr("AXEnabled", i % 2 == 0);
            if (parent == bar) {
                bar->setAttr("AXChildren", std::vector<sim::Node*>{item});
            } else {
                sim::Node* container = desk().newNode();
                container->setAttr("AXTitle", std::string());
                container->setAttr("AXChildren", std::vector<sim::Node*>{item});
                parent->setAttr("AXChildren", std::vector<sim::Node*>{container});
            }
            parent = item;
        }
    }
};

TEST_F(MenuDepthTest, SnapshotOfADeepChainOnAHostSizedStack) {
    constexpr int kDepth = 250;  // about 20 MB of text
    loadChain(kDepth);
    std::string text;
    runOnStack(kHostStack, [&] {
        const char* result = zeblo_get_app_menus("Deep");
        if (result != nullptr) text = result;
        zeblo_free_string(result);
    });
    EXPECT_EQ(desk().liveHandles(), 0);
    EXPECT_TRUE(logs().empty());

    const json snapshot = json::parse(text);  // iterative parser, on the main thread
    const json* item = &snapshot["menus"][0];
    int levels = 1;
    while (item->contains("children")) {
        ASSERT_EQ((*item)["children"].size(), 1u);
        item = &(*item)["children"][0];
        ++levels;
    }
    EXPECT_EQ(levels, kDepth);
    EXPECT_EQ((*item)["title"], "m" + std::to_string(kDepth - 1));
    const json& path = (*item)["path"];
    ASSERT_EQ(path.size(), static_cast<std::size_t>(kDepth - 1));
    for (int i = 0; i < kDepth - 1; ++i) EXPECT_EQ(path[i], "m" + std::to_string(i));
    EXPECT_EQ((*item)["enabled"], (kDepth - 1) % 2 == 0);
}

TEST_F(MenuDepthTest, BuildingFromElementsOnATinyStack) {
    // 64 KiB for 2,000 levels (4,000 elements): about 32 bytes per level.
    constexpr int kDepth = 2000;
    loadChain(kDepth);
    int levels = 0;
    std::size_t lastPath = 0;
    std::size_t textSize = 0;
    runOnStack(64 * 1024, [&] {
        platform::Platform& p = platform::current();
        auto bar = platform::asElement(p.copyAttributeValue(p.createApplicationElement(1), "AXMenuBar"));
        auto items = platform::asElementArray(p.copyAttributeValue(bar.value, "AXChildren"));
        const MenuItem root(items.value.at(0), 1, {});
        items.value.clear();
        const MenuItem* item = &root;
        for (levels = 1; item->children; ++levels) item = &item->children->front();
        lastPath = item->path.size();
        zeblo::json::Writer w(zeblo::json::Layout::compact);
        root.encode(w);
        textSize = w.take().size();
    });
    EXPECT_EQ(levels, kDepth);
    EXPECT_EQ(lastPath, static_cast<std::size_t>(kDepth - 1));
    EXPECT_GT(textSize, static_cast<std::size_t>(kDepth) * kDepth);
    EXPECT_EQ(desk().liveHandles(), 0);
}

}  // namespace
}  // namespace zeblo::testing
