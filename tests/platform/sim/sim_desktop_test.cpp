// The simulated desktop's behaviour: actions and their effects, setting
// attributes, the timeline and the clock, events, the workspace, the
// pasteboard, handle counting and the trace.
#include "sim_test_util.h"

namespace zeblo::sim::testing {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kWindows = R"({
  "apps": [{"name": "Mail", "pid": 120, "activate": false, "element": {"attrs": {"AXWindows": [
    {"id": "w1", "attrs": {"AXCloseButton": {"id": "x1", "onPress": "close", "actions": {"AXPress": 0}}}},
    {"id": "w2", "attrs": {"AXChildren": [{"attrs": {"AXChildren": [
      {"id": "x2", "onPress": "close", "actions": {"AXPress": [-25204, 0]}}]}}]}},
    {"id": "w3", "attrs": {"AXChildren": [
      {"id": "box", "attrs": {"AXValue": 0}, "onPress": "toggle", "actions": {"AXPress": 0, "AXPick": 0}},
      {"id": "field", "attrs": {"AXValue": "old"}, "settable": ["AXValue"]},
      {"id": "locked", "attrs": {"AXValue": "old"}, "settable": ["AXValue"], "setResult": -25200,
       "actionNamesError": -25204},
      {"attrs": {"AXValue": "x"}, "actions": {"AXPress": 0}}]}}]}}},
   {"name": "Notes", "pid": 130}],
  "launchable": {"TextEdit": {"pid": 140}},
  "frontmost": 120
})";

TEST_F(SimTest, ActionsConsumeResultCodesAndPressesCloseOrToggle) {
    load(kWindows);
    Element x2 = desk->elementOf(desk->node("x2"));
    EXPECT_EQ(desk->performAction(x2, "AXPress"), -25204);  // nothing happens on failure
    EXPECT_EQ(windowIds(120), (std::vector<std::string>{"w1", "w2", "w3"}));
    EXPECT_EQ(desk->performAction(x2, "AXPress"), 0);  // the window holding x2 closes
    EXPECT_EQ(desk->performAction(x2, "AXPress"), 0);  // the last code repeats
    EXPECT_EQ(desk->performAction(x2, "AXShowMenu"), kAXErrorActionUnsupported);
    EXPECT_EQ(desk->performAction(desk->elementOf(desk->node("x1")), "AXPress"), 0);
    EXPECT_EQ(windowIds(120), (std::vector<std::string>{"w3"}));

    Element box = desk->elementOf(desk->node("box"));
    EXPECT_EQ(desk->performAction(box, "AXPick"), 0);  // only a press toggles
    EXPECT_EQ(asInteger(read(box, "AXValue")).value, 0);
    desk->performAction(box, "AXPress");
    EXPECT_EQ(asInteger(read(box, "AXValue")).value, 1);
    desk->performAction(box, "AXPress");
    EXPECT_EQ(asInteger(read(box, "AXValue")).value, 0);
    desk->node("box")->setAttr("AXValue", std::string("mixed"));
    desk->performAction(box, "AXPress");
    EXPECT_EQ(asInteger(read(box, "AXValue")).value, 1);

    auto trace = desk->trace();
    ASSERT_EQ(trace.size(), 9u);
    EXPECT_EQ(trace[0], Json::parse(R"({"action": "AXPress", "element": "x2", "result": -25204})"));
    auto kids = asElementArray(read(app(120), "AXWindows")).value;
    auto last = asElementArray(read(kids[0], "AXChildren")).value.back();
    desk->performAction(last, "AXPress");
    EXPECT_EQ(desk->trace().back(), Json::parse(R"({"action": "AXPress", "element": null, "result": 0})"));
}

TEST_F(SimTest, SleepingAppliesTheTimelineOnAnExactClock) {
    load(R"({"apps": [{"name": "A", "pid": 1, "element": {"attrs": {"AXWindows": [{"id": "w1"}, {"id": "w2"}]}}},
                      {"name": "B", "pid": 2}],
      "frontmost": 1,
      "timeline": [{"at": 0, "frontmost": 2}, {"at": 0.3, "frontmost": null},
                   {"at": 0.5, "addWindow": {"pid": 1, "window": {"id": "w3"}}},
                   {"addWindow": {"pid": 2, "window": {"ref": "w1"}}, "at": 0.5},
                   {"at": 1.0, "removeWindow": "w1"}, {"at": 1.0, "removeApp": 2},
                   {"at": 2, "addApp": {"name": "C", "pid": 3, "element": {"attrs": {"AXTitle": "C"}}}}]})");
    EXPECT_EQ(desk->frontmostApplication()->pid, 2);  // "at" 0 is applied at load
    for (int i = 0; i < 3; ++i) desk->sleep(0.1);
    EXPECT_EQ(desk->now(), 0.3);
    EXPECT_FALSE(desk->frontmostApplication());
    desk->sleep(0.05);
    desk->sleep(0.15);
    EXPECT_EQ(windowIds(1), (std::vector<std::string>{"w1", "w2", "w3"}));
    EXPECT_EQ(windowIds(2), (std::vector<std::string>{"w1"}));  // the array is created
    desk->sleep(0.5);
    EXPECT_EQ(windowIds(1), (std::vector<std::string>{"w2", "w3"}));
    EXPECT_EQ(desk->runningApplications().size(), 1u);
    EXPECT_EQ(read(app(2), "AXWindows").code, kAXErrorInvalidUIElement);
    desk->sleep(0.99);
    EXPECT_EQ(desk->runningApplications().size(), 1u);
    desk->sleep(0.01);
    EXPECT_EQ(desk->now(), 2.0);
    EXPECT_EQ(asString(read(app(3), "AXTitle")).value, "C");
    EXPECT_EQ(desk->trace()[3], Json::parse(R"({"sleep": 0.05})"));
    EXPECT_EQ(desk->endRecord()["end"]["clock"], 2.0);
}

TEST_F(SimTest, PasteboardRoundTripsBinaryData) {
    const char* board = R"([{"public.utf8-plain-text": "hello", "bin": {"base64": "/wABAg=="}}, {"promise": null}])";
    load(std::string(R"({"pasteboard": )") + board + "}");
    auto items = *desk->pasteboardItems();
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].entries[1].second, (Bytes{0xff, 0x00, 0x01, 0x02}));
    EXPECT_FALSE(items[1].entries[0].second);
    desk->clearPasteboard();
    EXPECT_TRUE(desk->pasteboardItems()->empty());
    EXPECT_TRUE(desk->writePasteboardItems(items));
    EXPECT_EQ(desk->endRecord()["end"]["pasteboard"], Json::parse(board));
    EXPECT_EQ(desk->trace()[1]["items"], Json::parse(board));
    EXPECT_TRUE(desk->setPasteboardString("h\xc3\xa9", kPasteboardTypeString));
    EXPECT_EQ(desk->trace().back(),
              Json::parse(R"({"pasteboard": "setString", "type": "public.utf8-plain-text", "text": "hé"})"));

    // Every length of ill-formed data survives the trace form and a reload.
    for (std::uint8_t n = 0; n < 7; ++n) {
        Bytes data(n, 0);
        for (std::uint8_t i = 0; i < n; ++i) data[i] = static_cast<std::uint8_t>(0x80 + 37 * i);
        auto json = SimDesktop::pasteboardJson({SimPasteboardItem{{{"t", data}}}});
        auto again = SimDesktop::fromJson(Json{{"pasteboard", json}}.dump());
        EXPECT_EQ(again->pasteboard()[0].entries[0].second, data) << json.dump();
    }
}

TEST_F(SimTest, LiveHandlesCountEveryReferenceIncludingArrayEntries) {
    load(R"({"apps": [{"pid": 1, "element": {"attrs": {"AXChildren": [{"id": "a"}, null, {"id": "b"}],
                                                        "AXMenuBar": null}}}]})");
    Element root = app(1);
    EXPECT_EQ(desk->liveHandles(), 1);
    {
        AttributeRead r = read(root, "AXChildren");
        EXPECT_EQ(desk->liveHandles(), 3);  // one per non-null entry
        auto copy = std::get<std::vector<Element>>(r.value);
        EXPECT_EQ(desk->liveHandles(), 5);
        auto view = asElementArray(std::move(r));
        EXPECT_EQ(desk->liveHandles(), 5);
        EXPECT_EQ(asElement(read(root, "AXMenuBar")).status, ReadStatus::noValue);
        EXPECT_EQ(desk->liveHandles(), 5);
    }
    EXPECT_EQ(desk->liveHandles(), 1);
    root = {};
    EXPECT_EQ(desk->endRecord()["end"]["liveHandles"], 0);
}

TEST(PlatformInstall, ReplacedBackendsStayAlive) {
    Platform& def = current();

    auto desk = SimDesktop::fromJson(R"({"apps": [{"pid": 1, "element": {"attrs": {"AXTitle": "T"}}}]})");
    install(desk);
    EXPECT_EQ(&current(), desk.get());
    Element e = current().createApplicationElement(1);
    SimDesktop* raw = desk.get();
    desk.reset();
    install(nullptr);  // the replaced desktop is kept, so `e` stays usable
    EXPECT_EQ(&current(), &def);
    EXPECT_EQ(asString(e.owner()->copyAttributeValue(e, "AXTitle")).value, "T");
    e = {};
    EXPECT_EQ(raw->liveHandles(), 0);
}

}  // namespace
}  // namespace zeblo::sim::testing
