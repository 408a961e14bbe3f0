// The simulated desktop's own guarantees that no export shows directly: binary
// pasteboard data through the trace form, handle counting, and backends kept
// alive after they are replaced. Actions, values, the timeline, events and the
// workspace are exercised through the exports by the tests of each area.
#include "sim_test_util.h"

namespace zeblo::sim::testing {
namespace {

using Json = nlohmann::ordered_json;

TEST_F(SimTest, PasteboardRoundTripsBinaryData) {
    const char* board =
        R"([{"public.utf8-plain-text": "hello", "bin": {"base64": "/wABAg=="}, "jpeg": {"base64": "/9j/"}},)"
        R"( {"promise": null}])";
    load(std::string(R"({"pasteboard": )") + board + "}");
    auto items = *desk->pasteboardItems();
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].entries[1].second, (Bytes{0xff, 0x00, 0x01, 0x02}));
    EXPECT_EQ(items[0].entries[2].second, (Bytes{0xff, 0xd8, 0xff}));
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

TEST_F(SimTest, HungElementsWaitAndFailEveryCallYetTakeActions) {
    load(R"({"apps": [{"pid": 1, "hung": 0.5, "element": {"attrs": {"AXChildren": [{"id": "b", "hung": 2,
        "actions": {"AXPress": 0}, "onPress": "toggle", "settable": ["AXValue"]}]}}}]})");
    EXPECT_EQ(read(app(1), "AXChildren").code, kAXErrorCannotComplete);  // the application's time
    const Element b = desk->elementOf(desk->node("b"));                  // its own time wins
    EXPECT_EQ(desk->copyAttributeNames(b).code, kAXErrorCannotComplete);
    EXPECT_EQ(desk->copyActionNames(b).code, kAXErrorCannotComplete);
    EXPECT_EQ(desk->isAttributeSettable(b, "AXValue").code, kAXErrorCannotComplete);
    EXPECT_EQ(desk->performAction(b, "AXPress"), kAXErrorCannotComplete);
    EXPECT_EQ(std::get<std::int64_t>(*desk->node("b")->findAttr("AXValue")), 1);  // pressed all the same
    EXPECT_EQ(desk->clock(), 8.5);
    EXPECT_EQ(desk->trace().front(), Json::parse(R"({"unanswered": 0.5, "element": null})"));
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
