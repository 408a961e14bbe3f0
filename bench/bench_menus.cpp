// The menu bar snapshot on a simulated menu bar of 20 menus of 250 items each
// (5,000 items, some of them in submenus), per item; the parts of it (reading
// the records, writing the text); and, as a reference for the writing,
// nlohmann-json's dump(2) of the same tree. A counting backend in front of
// the simulated desktop reports the platform calls the snapshot makes per
// item.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <nlohmann/json.hpp>

#include "ops/menus/menu_item.h"
#include "ops/menus/menu_ops.h"
#include "platform/ax_names.h"
#include "platform/platform.h"
#include "platform/sim/sim_desktop.h"
#include "zeblo/zeblo.h"

namespace {

using namespace zeblo;
using platform::AXError;
using platform::Element;

// A snapshot allocates texts of about a megabyte. With glibc's defaults such
// blocks come from fresh mappings or not, depending on earlier frees, and the
// first touch of fresh pages (costly in a virtual machine) then swamps the
// work measured here and makes runs bimodal. Keeping large blocks on the heap
// measures the library's own work. (Other C libraries keep their defaults.)
#if defined(__GLIBC__)
[[maybe_unused]] const bool kHeapTuned = [] {
    mallopt(M_MMAP_THRESHOLD, 64 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
    return true;
}();
#endif

constexpr int kMenus = 20;
constexpr int kItemsPerMenu = 250;   // items below each menu bar item, submenu items included
constexpr int kSubmenus = 5;         // items per menu that open a submenu...
constexpr int kSubmenuItems = 5;     // ...of this many items
constexpr int kRecords = kMenus * (1 + kItemsPerMenu);  // menu bar items count as records too

// Forwards every operation to the simulated desktop and counts the calls.
class CountingPlatform final : public platform::Platform {
public:
    explicit CountingPlatform(std::shared_ptr<sim::SimDesktop> sim) : sim_(std::move(sim)) {}
    std::atomic<long> calls{0};

    Element createApplicationElement(std::int32_t pid) override { return ++calls, sim_->createApplicationElement(pid); }
    Element createSystemWideElement() override { return ++calls, sim_->createSystemWideElement(); }
    platform::AttributeRead copyAttributeValue(const Element& e, std::string_view a) override {
        return ++calls, sim_->copyAttributeValue(e, a);
    }
    platform::NamesRead copyAttributeNames(const Element& e) override { return ++calls, sim_->copyAttributeNames(e); }
    AXError setAttributeValue(const Element& e, std::string_view a, const platform::SetValue& v) override {
        return ++calls, sim_->setAttributeValue(e, a, v);
    }
    platform::SettableRead isAttributeSettable(const Element& e, std::string_view a) override {
        return ++calls, sim_->isAttributeSettable(e, a);
    }
    bool sameElement(const Element& a, const Element& b) override { return ++calls, sim_->sameElement(a, b); }
    AXError performAction(const Element& e, std::string_view a) override { return ++calls, sim_->performAction(e, a); }
    platform::NamesRead copyActionNames(const Element& e) override { return ++calls, sim_->copyActionNames(e); }
    bool isProcessTrusted(bool prompt) override { return ++calls, sim_->isProcessTrusted(prompt); }
    platform::EventSource createEventSource(std::int32_t s) override { return ++calls, sim_->createEventSource(s); }
    platform::Event createKeyboardEvent(const platform::EventSource* s, std::uint16_t k, bool d) override {
        return ++calls, sim_->createKeyboardEvent(s, k, d);
    }
    void setEventFlags(const platform::Event& e, std::uint64_t f) override { ++calls, sim_->setEventFlags(e, f); }
    void setEventIntegerField(const platform::Event& e, std::uint32_t f, std::int64_t v) override {
        ++calls, sim_->setEventIntegerField(e, f, v);
    }
    void postEvent(std::uint32_t t, const platform::Event& e) override { ++calls, sim_->postEvent(t, e); }
    std::optional<platform::RunningApp> frontmostApplication() override { return ++calls, sim_->frontmostApplication(); }
    std::vector<platform::RunningApp> runningApplications() override { return ++calls, sim_->runningApplications(); }
    bool launchApplication(std::string_view n) override { return ++calls, sim_->launchApplication(n); }
    bool activateApplication(const platform::RunningApp& a, std::uint64_t o) override {
        return ++calls, sim_->activateApplication(a, o);
    }
    std::optional<std::vector<platform::PasteboardItem>> pasteboardItems() override {
        return ++calls, sim_->pasteboardItems();
    }
    void clearPasteboard() override { ++calls, sim_->clearPasteboard(); }
    bool setPasteboardString(std::string_view t, std::string_view ty) override {
        return ++calls, sim_->setPasteboardString(t, ty);
    }
    bool writePasteboardItems(const std::vector<platform::PasteboardItem>& i) override {
        return ++calls, sim_->writePasteboardItems(i);
    }
    void sleep(double s) override { ++calls, sim_->sleep(s); }
    double now() override { return ++calls, sim_->now(); }
    void writeLog(std::string_view line) override { ++calls, sim_->writeLog(line); }
    void retainHandle(platform::HandleKind k, void* r) noexcept override { sim_->retainHandle(k, r); }
    void releaseHandle(platform::HandleKind k, void* r) noexcept override { sim_->releaseHandle(k, r); }

private:
    std::shared_ptr<sim::SimDesktop> sim_;
};

// A menu item with the attributes a real one reports.
sim::Node* menuItem(sim::SimDesktop& d, const std::string& title, int n) {
    sim::Node* item = d.newNode();
    item->setAttr("AXRole", std::string("AXMenuItem"));
    item->setAttr("AXRoleDescription", std::string("menu item"));
    item->setAttr("AXTitle", title);
    item->setAttr("AXEnabled", n % 7 != 0);
    item->setAttr("AXSelected", false);
    item->setAttr("AXMenuItemMarkChar", n % 11 == 0 ? std::string("\xe2\x9c\x93") : std::string());
    if (n % 3 == 0) {
        item->setAttr("AXMenuItemCmdChar", std::string(1, static_cast<char>('A' + n % 26)));
        item->setAttr("AXMenuItemCmdModifiers", std::int64_t{n % 4});
    }
    item->setAttr("AXMenuItemCmdVirtualKey", std::int64_t{n % 50});
    item->setAttr("AXMenuItemCmdGlyph", std::int64_t{0});
    item->setAttr("AXHelp", std::string());
    item->setAttr("AXIdentifier", "item-" + std::to_string(n));
    item->setAttr("AXChildren", std::vector<sim::Node*>{});
    item->actions = {{"AXPress", {0}}, {"AXCancel", {0}}};
    return item;
}

// An untitled container holding `items`, as the single child of `owner`.
void attachSubmenu(sim::SimDesktop& d, sim::Node* owner, std::vector<sim::Node*> items) {
    sim::Node* menu = d.newNode();
    menu->setAttr("AXRole", std::string("AXMenu"));
    menu->setAttr("AXTitle", std::string());
    menu->setAttr("AXChildren", std::move(items));
    owner->setAttr("AXChildren", std::vector<sim::Node*>{menu});
}

std::shared_ptr<sim::SimDesktop> benchDesktop() {
    auto d = sim::SimDesktop::fromJson(
        R"({"apps": [{"name": "Bench", "pid": 7, "element": {"id": "app", "attrs": {}}}], "frontmost": 7})");
    d->setRecording(false);
    sim::Node* bar = d->newNode();
    std::vector<sim::Node*> menus;
    int n = 0;
    for (int m = 0; m < kMenus; ++m) {
        sim::Node* menu = menuItem(*d, "Menu " + std::to_string(m), n++);
        std::vector<sim::Node*> items;
        for (int i = 0; i < kItemsPerMenu - kSubmenus * kSubmenuItems; ++i) {
            sim::Node* item = menuItem(*d, "Item " + std::to_string(m) + "." + std::to_string(i) + "\xe2\x80\xa6", n++);
            if (i % ((kItemsPerMenu - kSubmenus * kSubmenuItems) / kSubmenus) == 0 &&
                i / ((kItemsPerMenu - kSubmenus * kSubmenuItems) / kSubmenus) < kSubmenus) {
                std::vector<sim::Node*> sub;
                for (int s = 0; s < kSubmenuItems; ++s) sub.push_back(menuItem(*d, "Sub/" + std::to_string(s), n++));
                attachSubmenu(*d, item, std::move(sub));
            }
            items.push_back(item);
        }
        attachSubmenu(*d, menu, std::move(items));
        menus.push_back(menu);
    }
    bar->setAttr("AXChildren", std::move(menus));
    d->node("app")->setAttr(ax::kMenuBarAttribute, bar);
    return d;
}

// The desktop, installed behind the counting backend.
CountingPlatform& counting() {
    static const std::shared_ptr<CountingPlatform> backend = [] {
        auto p = std::make_shared<CountingPlatform>(benchDesktop());
        platform::install(p);
        return p;
    }();
    return *backend;
}

void perRecord(benchmark::State& state) {
    state.counters["per_item"] =
        benchmark::Counter(kRecords, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

std::vector<MenuItem> readRecords() {
    platform::Platform& p = platform::current();
    auto bar = platform::asElement(p.copyAttributeValue(p.createApplicationElement(7), ax::kMenuBarAttribute));
    auto items = platform::asElementArray(p.copyAttributeValue(bar.value, ax::kChildrenAttribute));
    std::vector<MenuItem> menus;
    for (Element& e : items.value) menus.emplace_back(e, 7, std::vector<std::string>{});
    return menus;
}

void BM_MenuSnapshot(benchmark::State& state) {
    CountingPlatform& p = counting();
    p.calls = 0;
    const char* first = zeblo_get_app_menus("Bench");
    const long calls = p.calls;
    const std::size_t bytes = std::strlen(first);
    zeblo_free_string(first);
    for (auto _ : state) {
        const char* text = zeblo_get_app_menus("Bench");
        benchmark::DoNotOptimize(text);
        zeblo_free_string(text);
    }
    perRecord(state);
    state.counters["platform_calls_per_item"] = static_cast<double>(calls) / kRecords;
    state.counters["bytes"] = static_cast<double>(bytes);
}

void BM_MenuReadRecords(benchmark::State& state) {
    counting();
    for (auto _ : state) benchmark::DoNotOptimize(readRecords());
    perRecord(state);
}

void BM_MenuWritePretty(benchmark::State& state) {
    counting();
    const std::vector<MenuItem> menus = readRecords();
    for (auto _ : state) benchmark::DoNotOptimize(encodeMenuBar("Bench", menus));
    perRecord(state);
}

void BM_NlohmannDump2(benchmark::State& state) {
    counting();
    const nlohmann::ordered_json tree = nlohmann::ordered_json::parse(encodeMenuBar("Bench", readRecords()));
    for (auto _ : state) benchmark::DoNotOptimize(tree.dump(2));
    perRecord(state);
}

// One attribute read of the simulated desktop: the platform's share.
void BM_SimAttributeRead(benchmark::State& state) {
    platform::Platform& p = counting();
    const Element app = p.createApplicationElement(7);
    for (auto _ : state) benchmark::DoNotOptimize(p.copyAttributeValue(app, ax::kMenuBarAttribute));
}

BENCHMARK(BM_MenuSnapshot)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MenuReadRecords)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MenuWritePretty)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NlohmannDump2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SimAttributeRead);

}  // namespace
