// The element interface of the superset library through its C functions on
// the simulated desktop: trees with references, find, act, wait, keys and
// the last failure. Every call is checked to leave no handle alive.
#include "ops/windows/window_fixture.h"
#include "zeblo/zeblo_plus.h"

namespace zeblo::testing {
namespace {

Json field(const std::string& id) {
    Json f = el("AXTextField");
    f["id"] = id;
    f["attrs"]["AXValue"] = "";
    f["settable"] = {"AXValue", "AXFocused"};
    f["attrs"]["AXFocused"] = false;
    return f;
}
Json label(const std::string& text) {
    Json l = el("AXStaticText");
    l["attrs"]["AXValue"] = text;
    return l;
}

class Elements : public WindowTest {
protected:
    void SetUp() override {
        Json subscribe = el("AXCheckBox", "Subscribe");
        subscribe["attrs"]["AXValue"] = 0;
        subscribe["actions"] = {{"AXPress", 0}};
        subscribe["onPress"] = "toggle";
        subscribe["id"] = "subscribe";
        Json cancel = button("Cancel");
        cancel["hidden"] = true;
        Json help = button("Help");
        help["attrs"]["AXEnabled"] = false;
        Json item = button("Bold");
        item["attrs"]["AXRole"] = "AXMenuItem";
        item["id"] = "bold";
        Json popover = el("AXMenu", "", {item});
        popover["id"] = "popover";
        popover["hidden"] = true;
        Json options = el("AXMenuButton", "Options", {popover});
        options["actions"] = {{"AXPress", 0}};
        options["reveals"] = "popover";
        Json ok = button("OK");
        ok["id"] = "ok";
        Json form = el("AXGroup", "", {label("Name:"), field("name"), label("Email:"), field("email")});
        loadWindows({window("Contact", {form, subscribe, ok, cancel, help, options})});
    }

    Json call(const char* result) { return takeJson(result); }
    Json tree(const Json& query) { return call(zeblo_element_tree(query.dump().c_str())); }
    Json find(const Json& query) { return call(zeblo_element_find(query.dump().c_str())); }
    Json act(const std::string& ref, const char* action, const char* value = nullptr) {
        return call(zeblo_element_act(ref.c_str(), action, value));
    }
    Json lastFailure() { return call(zeblo_last_failure()); }
    // The reference of the one element the query finds.
    std::string ref(const Json& query) {
        const Json found = find(query);
        EXPECT_EQ(found["count"], 1) << found.dump();
        return found["matches"][0]["ref"].get<std::string>();
    }
};

TEST_F(Elements, TreeListsWhatAUserSeesWithReferencesAndLabelledFields) {
    const Json t = tree({{"app", "Notes"}, {"window", "contact"}});
    EXPECT_EQ(t["app"], "Notes");
    EXPECT_EQ(t["pid"], 7);
    const Json& win = t["tree"][0];
    EXPECT_EQ(win["role"], "window");
    EXPECT_EQ(win["name"], "Contact");
    EXPECT_EQ(win["ref"].get<std::string>().substr(0, 4), "7:0~");
    // The plain group is left out; its children stand in its place; the
    // fields take the labels before them as names; hidden ones are not there.
    std::vector<std::string> names;
    for (const Json& n : win["children"]) names.push_back(n.value("name", "") + "/" + n["role"].get<std::string>());
    EXPECT_EQ(names, (std::vector<std::string>{"Name:/statictext", "Name:/textfield", "Email:/statictext",
                                               "Email:/textfield", "Subscribe/checkbox", "OK/button",
                                               "Help/button", "Options/menubutton"}));
    EXPECT_EQ(win["children"][1]["ref"].get<std::string>().substr(0, 8), "7:0.0.1~");
    EXPECT_EQ(win["children"][1]["states"], Json({"editable"}));
    EXPECT_EQ(win["children"][6]["states"], Json({"disabled"}));
    EXPECT_EQ(win["children"][5]["actions"], Json({"press"}));

    // Hidden ones on request, without references.
    const Json all = tree({{"window", "Contact"}, {"hidden", true}});
    bool sawCancel = false;
    for (const Json& n : all["tree"][0]["children"]) {
        if (n.value("name", "") != "Cancel") continue;
        sawCancel = true;
        EXPECT_FALSE(n.contains("ref"));
        EXPECT_EQ(n["states"], Json({"hidden"}));
    }
    EXPECT_TRUE(sawCancel);
    std::size_t referenced = 0;  // the shown ones keep their references
    for (const Json& n : all["tree"][0]["children"]) referenced += n.contains("ref") ? 1 : 0;
    EXPECT_EQ(referenced, win["children"].size());

    // The menu bar, where macOS keeps it: on the application.
    desk().apps()[0].element->setAttr("AXMenuBar", desk().node("popover"));
    desk().node("popover")->hidden = false;
    const Json bar = tree({{"app", "Notes"}, {"menuBar", true}});
    EXPECT_EQ(bar["tree"][0]["children"][0]["name"], "Bold");
    const std::string bold = bar["tree"][0]["children"][0]["ref"];
    EXPECT_EQ(bold.substr(0, 5), "7:m.0");
    EXPECT_EQ(act(bold, "press")["ok"], true);
    desk().node("popover")->hidden = true;
    desk().apps()[0].element->setAttr("AXMenuBar", static_cast<sim::Node*>(nullptr));
    EXPECT_NE(act(bold, "press")["error"]["message"].get<std::string>().find("no menu bar now"), std::string::npos);

    // Limits say what they left out.
    const Json small = tree({{"maxNodes", 3}});
    EXPECT_EQ(small["nodes"], 3);
    EXPECT_GT(small["truncated"]["omitted"].get<int>(), 0);
    const Json shallow = tree({{"maxDepth", 0}});
    EXPECT_FALSE(shallow["tree"][0].contains("children"));
    EXPECT_EQ(shallow["tree"][0]["more"], 5);  // the hidden one is not counted
}

TEST_F(Elements, FieldsTakeTheLabelDrawnBesideThemWhateverTheOrder) {
    // A grid that lists its cells backwards, as GTK 3's does.
    const auto at = [](Json e, double x, double y) {
        e["frame"] = {x, y, 100, 20};
        return e;
    };
    Json zip = at(field("zip"), 110, 120);
    zip["attrs"]["ZBName"] = "Postal code";  // its own accessible label comes first
    Json fullName = at(label("Full name:"), 0, 0);
    fullName["frame"][2] = 111;  // its box reaches a pixel into the field's
    Json size = label("Size:");
    size["frame"] = {0, 150, 50, 20};
    Json automatic = el("AXCheckBox", "Automatic");
    automatic["frame"] = {55, 150, 56, 20};
    // A field and a label that are not drawn (no frame) are measured against nothing.
    loadWindows({window("Form", {el("AXGroup", "", {at(field("email"), 110, 30), at(label("Email:"), 0, 30),
                                                   at(field("name"), 110, 0), fullName,
                                                   at(field("note"), 110, 90), at(label("Note:"), 110, 65),
                                                   zip, at(label("Zip:"), 0, 120), field("undrawn"),
                                                   label("Undrawn:"), size, automatic,
                                                   at(field("size"), 110, 150)})})});
    const Json fields = find({{"role", "textfield"}});
    ASSERT_EQ(fields["count"], 6) << fields.dump();
    // A check box between a label and a field: the label is the box's.
    EXPECT_FALSE(fields["matches"][5].contains("name")) << fields["matches"][5].dump();
    EXPECT_EQ(fields["matches"][2]["name"], "Note:");  // the caption just above it
    EXPECT_EQ(fields["matches"][3]["name"], "Postal code");
    act(ref({{"role", "textfield"}, {"name", "full name"}}), "set_value", "Ada");
    act(ref({{"role", "textfield"}, {"name", "email"}}), "set_value", "ada@example.org");
    EXPECT_EQ(std::get<std::string>(*desk().node("name")->findAttr("AXValue")), "Ada");
    EXPECT_EQ(std::get<std::string>(*desk().node("email")->findAttr("AXValue")), "ada@example.org");
}

TEST_F(Elements, TreeLeavesOutRepeatingLabelsPlainGroupsAndVanishedChildren) {
    // A button drawn with a label of its own name (GTK's are), and one whose
    // label of the same name sits four levels down: that one is content.
    const auto nested = [](Json inner, int levels) {
        for (int i = 0; i < levels; ++i) inner = el("AXGroup", "", Json::array({inner}));
        return inner;
    };
    Json save = button("Save");
    save["attrs"]["AXChildren"] = Json::array({nested(label("Save"), 1)});
    Json open = button("Open");
    open["attrs"]["AXChildren"] = Json::array({nested(label("Open"), 3)});
    Json size = el("AXCheckBox", "Size");  // any control: only a label repeats
    size["attrs"]["AXChildren"] = Json::array({el("AXButton", "Size")});
    // A group with nothing but a context menu is as plain as any (a web page
    // gives every element one); a child gone while the window is read keeps
    // its place in the paths.
    Json section = el("AXGroup", "", Json::array({size}));
    section["actions"] = {{"AXShowMenu", 0}};
    loadWindows({window("Echo", {save, nullptr, open, section})});
    const Json kids = tree({{"window", "Echo"}})["tree"][0]["children"];
    ASSERT_EQ(kids.size(), 3u) << kids.dump();
    EXPECT_EQ(kids[1]["ref"].get<std::string>().substr(0, 6), "7:0.2~");
    EXPECT_FALSE(kids[0].contains("children")) << kids[0].dump();
    ASSERT_TRUE(kids[1].contains("children")) << kids[1].dump();
    EXPECT_EQ(kids[1]["children"][0]["role"], "statictext");
    EXPECT_EQ(kids[2]["role"], "checkbox");
    ASSERT_TRUE(kids[2].contains("children")) << kids[2].dump();
    // find lists every label, the repeating ones too.
    EXPECT_EQ(find({{"role", "statictext"}, {"window", "Echo"}})["count"], 2);
}

TEST_F(Elements, FindMatchesRoleNameTextAndState) {
    EXPECT_EQ(find({{"role", "AXTextField"}})["count"], 2);
    EXPECT_EQ(find({{"role", "text field"}, {"name", "email"}})["matches"][0]["name"], "Email:");
    EXPECT_EQ(find({{"role", "button"}, {"state", {{"enabled", false}}}})["matches"][0]["name"], "Help");
    EXPECT_EQ(find({{"text", "subscr"}})["count"], 1);
    EXPECT_EQ(find({{"name", "Nothing like it"}})["count"], 0);
    EXPECT_EQ(find({{"role", "statictext"}})["matches"].size(), 2u);
    // A role in any case, with or without its "AX".
    EXPECT_EQ(find({{"role", "axStaticText"}})["count"], 2);
    desk().node("email")->setAttr("AXValue", std::string("ada@example.org"));
    const Json byValue = find({{"value", "ADA@"}});
    ASSERT_EQ(byValue["count"], 1) << byValue.dump();
    EXPECT_EQ(byValue["matches"][0]["value"], "ada@example.org");
    EXPECT_TRUE(find({{"role", "button"}, {"maxScan", 3}})["truncated"].contains("unsearched"));
    const Json limited = find({{"role", "statictext"}, {"limit", 1}});
    EXPECT_EQ(limited["matches"].size(), 1u);
    EXPECT_EQ(limited["truncated"]["matches"], 1);
    EXPECT_EQ(find(Json::object())["error"]["kind"], "usage");
    EXPECT_EQ(find({{"app", "Nope"}, {"name", "x"}})["error"]["case"], "appNotFound");
    EXPECT_EQ(find({{"window", "Nope"}, {"name", "x"}})["error"]["kind"], "window");
}

TEST_F(Elements, ActionsByReferenceFillPressCheckAndOpenMenus) {
    const std::string name = ref({{"role", "textfield"}, {"name", "Name"}});
    EXPECT_EQ(act(name, "set_value", "Ada")["ok"], true);
    EXPECT_EQ(act(name, "focus")["ok"], true);
    const std::string email = ref({{"role", "textfield"}, {"name", "Email"}});
    EXPECT_EQ(act(email, "fill", "ada@example.org")["ok"], true);
    EXPECT_EQ(desk().node("name")->findAttr("AXValue")->index(), 1u);
    EXPECT_EQ(std::get<std::string>(*desk().node("email")->findAttr("AXValue")), "ada@example.org");
    EXPECT_EQ(std::get<bool>(*desk().node("name")->findAttr("AXFocused")), true);

    const std::string box = ref({{"name", "Subscribe"}});
    EXPECT_EQ(act(box, "check")["changed"], true);
    EXPECT_EQ(act(box, "check")["changed"], false);  // already checked: nothing sent
    EXPECT_EQ(traceOf("action").size(), 1u);
    EXPECT_EQ(call(zeblo_element_get(box.c_str()))["element"]["states"], Json({"checked"}));

    EXPECT_EQ(act(ref({{"name", "Help"}}), "press")["error"]["case"], "disabled");
    EXPECT_EQ(act(ref({{"name", "OK"}}), "check")["error"]["case"], "notCheckable");
    EXPECT_EQ(act(name, "explode")["error"]["kind"], "usage");
    EXPECT_EQ(act(box, "set_value", "maybe")["error"]["case"], "badValue");
    EXPECT_EQ(act(ref({{"name", "OK"}}), "scroll_into_view")["error"]["case"], "refused");
    EXPECT_EQ(act(ref({{"name", "OK"}}), "press")["ok"], true);

    // The popover's items appear once its button opens it.
    EXPECT_EQ(find({{"role", "menuitem"}})["count"], 0);
    const Json opened = act(ref({{"name", "Options"}}), "open_menu");
    ASSERT_EQ(opened["menu"].size(), 1u) << opened.dump();
    EXPECT_EQ(opened["menu"][0]["name"], "Bold");
    EXPECT_EQ(act(opened["menu"][0]["ref"].get<std::string>(), "press")["ok"], true);
    EXPECT_EQ(traceOf("action").back()["element"], "bold");
    // A toggle that opens nothing is pressed back.
    const Json none = act(box, "open_menu");
    EXPECT_EQ(none["error"]["case"], "noMenu");
    EXPECT_EQ(none["error"]["message"].get<std::string>().find("pressed"), std::string::npos);
    EXPECT_EQ(call(zeblo_element_get(box.c_str()))["element"]["states"], Json({"checked"}));
    // A button that opens nothing: its menu is waited for half a second.
    const double before = desk().clock();
    EXPECT_EQ(act(ref({{"name", "OK"}}), "open_menu")["error"]["case"], "noMenu");
    EXPECT_DOUBLE_EQ(desk().clock() - before, 0.5);
    // Texts are capped at maxText characters, an ellipsis marking the cut.
    EXPECT_EQ(find({{"name", "Help"}, {"maxText", 2}})["matches"][0]["name"], "He\u2026");
}

TEST_F(Elements, SlidersTabsAndRowsTakeTheirActions) {
    Json slider = el("AXSlider", "Volume");
    slider["id"] = "volume";
    slider["attrs"]["AXValue"] = 3;
    slider["settable"] = {"AXValue"};
    slider["actions"] = {{"AXIncrement", 0}};
    Json tab = el("AXRadioButton", "Advanced");
    tab["id"] = "tab";
    tab["attrs"]["AXSelected"] = false;
    tab["settable"] = {"AXSelected"};
    Json row = el("AXRow", "Fonts");
    row["id"] = "row";
    row["attrs"]["AXExpanded"] = false;
    row["settable"] = {"AXExpanded"};
    Json secret = field("secret");
    secret["attrs"]["AXRole"] = "AXSecureTextField";
    secret["attrs"]["AXTitle"] = "Password";
    loadWindows({window("Preferences", {slider, tab, row, secret})});
    EXPECT_EQ(act(ref({{"name", "Password"}}), "set_value", "hunter2")["ok"], true);
    EXPECT_EQ(std::get<std::string>(*desk().node("secret")->findAttr("AXValue")), "hunter2");

    const std::string volume = ref({{"name", "Volume"}});
    EXPECT_EQ(act(volume, "set_value", "7")["ok"], true);
    EXPECT_EQ(std::get<std::int64_t>(*desk().node("volume")->findAttr("AXValue")), 7);
    EXPECT_EQ(act(volume, "set_value", "loud")["error"]["case"], "notEditable");
    EXPECT_EQ(act(volume, "increment")["ok"], true);
    EXPECT_EQ(traceOf("action").back()["action"], "AXIncrement");
    EXPECT_EQ(act(volume, "decrement")["error"]["case"], "refused");

    EXPECT_EQ(act(ref({{"name", "Advanced"}}), "select")["ok"], true);
    EXPECT_TRUE(std::get<bool>(*desk().node("tab")->findAttr("AXSelected")));

    const std::string fonts = ref({{"name", "Fonts"}});
    EXPECT_EQ(act(fonts, "collapse")["changed"], false);  // collapsed already
    EXPECT_EQ(act(fonts, "expand")["changed"], true);
    EXPECT_TRUE(std::get<bool>(*desk().node("row")->findAttr("AXExpanded")));
    EXPECT_EQ(act(volume, "expand")["error"]["case"], "notExpandable");
}

TEST_F(Elements, ContextMenusAreLookedForInTheirOwnApplication) {
    Json item = button("Rename");
    item["attrs"]["AXRole"] = "AXMenuItem";
    Json menu = el("AXMenu", "", {item});
    menu["id"] = "context";
    menu["hidden"] = true;
    Json file = el("AXRow", "Report.txt");
    file["actions"] = {{"AXShowMenu", 0}};
    file["reveals"] = "context";
    Json notes = app("Notes", 7, {window("Files", {file})});
    notes["element"]["attrs"]["ZBMenus"] = Json::array({menu});
    loadDesk({{"apps", {app("Mail", 9, {window("Inbox")}), notes}}, {"frontmost", 9}});
    const Json opened = act(ref({{"app", "Notes"}, {"name", "Report.txt"}}), "open_menu");
    ASSERT_EQ(opened["menu"].size(), 1u) << opened.dump();
    EXPECT_EQ(opened["menu"][0]["name"], "Rename");
    EXPECT_EQ(opened["menu"][0]["ref"].get<std::string>().substr(0, 5), "7:p0.");
    EXPECT_EQ(act(opened["menu"][0]["ref"].get<std::string>(), "press")["ok"], true);
}

TEST_F(Elements, StaleReferencesActOnNothing) {
    const std::string ok = ref({{"name", "OK"}});
    // Another element at the same place: the check no longer matches.
    desk().node("ok")->setAttr("AXTitle", std::string("Apply"));
    const Json stale = act(ok, "press");
    EXPECT_EQ(stale["error"]["kind"], "stale");
    EXPECT_NE(stale["error"]["message"].get<std::string>().find("button 'Apply'"), std::string::npos);
    EXPECT_TRUE(traceOf("action").empty());
    // A path that leads nowhere, a process that is gone, text that is no reference.
    EXPECT_EQ(act("7:0.99~0000", "press")["error"]["kind"], "stale");
    EXPECT_EQ(act("8:0.1~0000", "press")["error"]["kind"], "stale");
    EXPECT_EQ(act("OK", "press")["error"]["case"], "badReference");
    EXPECT_EQ(act("7:px~0000", "press")["error"]["case"], "badReference");
    EXPECT_EQ(lastFailure()["function"], "zeblo_element_act");
}

TEST_F(Elements, WaitsUntilAnElementAppearsOrTimesOut) {
    Json added = window("Done", {button("Close")});
    sim::TimelineChange change;
    change.atMicros = 1'500'000;
    change.change = {{"addWindow", {{"pid", 7}, {"window", added}}}};
    desk().addTimelineChange(std::move(change));
    const Json appeared = call(zeblo_element_wait(R"({"window":"Done","name":"Close","timeout":3000})"));
    EXPECT_EQ(appeared["element"]["name"], "Close");
    EXPECT_GE(desk().clock(), 1.5);
    // The first of several that hold.
    EXPECT_EQ(call(zeblo_element_wait(R"({"role":"statictext"})"))["element"]["name"], "Name:");
    desk().node("email")->setAttr("AXValue", std::string("ada@example.org"));
    const Json valued =
        call(zeblo_element_wait(R"({"role":"textfield","until":"value","equals":"ada@example.org"})"));
    EXPECT_EQ(valued["element"]["value"], "ada@example.org") << valued.dump();
    const Json late = call(zeblo_element_wait(R"({"name":"Never","timeout":300})"));
    EXPECT_EQ(late["error"]["kind"], "timeout");
    EXPECT_EQ(call(zeblo_element_wait(R"({"name":"Help","until":"disappears","timeout":200})"))["error"]["kind"],
              "timeout");
}

TEST_F(Elements, KeysByNameAreChecked) {
    // Chords are apart by spaces, however many.
    EXPECT_EQ(call(zeblo_press_keys("Notes", "ctrl+shift+t + HOME  4 plus S ctrl+S esc end pagedown "))["chords"], 10);
    const auto keys = traceOf("key");
    ASSERT_EQ(keys.size(), 20u);
    for (std::size_t i = 0; i < keys.size(); ++i) EXPECT_EQ(keys[i]["down"], i % 2 == 0) << i;  // down, then up
    EXPECT_EQ(keys[0]["key"], 17);                      // t
    EXPECT_EQ(keys[0]["flags"], 0x40000 | 0x20000);     // Control and Shift
    EXPECT_EQ(keys[2]["key"], 24);                      // "+" is Shift and "="
    EXPECT_EQ(keys[2]["flags"], 0x20000);
    EXPECT_EQ(keys[4]["key"], 115);                     // home, without Shift
    EXPECT_EQ(keys[4]["flags"], 0);
    EXPECT_EQ(keys[6]["key"], 21);                      // "4", without Shift
    EXPECT_EQ(keys[6]["flags"], 0);
    EXPECT_EQ(keys[8]["key"], 24);                      // "plus" is the "=" key
    EXPECT_EQ(keys[10]["flags"], 0x20000);              // "S" is Shift and s,
    EXPECT_EQ(keys[12]["flags"], 0x40000);              // "ctrl+S" Control and s
    EXPECT_EQ(keys[14]["key"], 53);                     // esc
    EXPECT_EQ(keys[16]["key"], 119);                    // end
    EXPECT_EQ(keys[18]["key"], 121);                    // pagedown
    clearTrace();
    EXPECT_EQ(call(zeblo_press_keys("Notes", "ctrl+return hyper+x"))["error"]["case"], "badKeys");
    EXPECT_TRUE(traceOf("key").empty());  // nothing pressed before every chord is read
}

TEST_F(Elements, TheLastFailureExplainsTheTwentyFiveToo) {
    EXPECT_FALSE(done(zeblo_click_button("Notes", "Contact", "Cancel")));
    const Json why = lastFailure();
    EXPECT_EQ(why["function"], "zeblo_click_button");
    EXPECT_EQ(why["kind"], "window");
    EXPECT_EQ(why["case"], "buttonNotFound");
    EXPECT_EQ(why["message"], "Button 'Cancel' not found in window");
    EXPECT_EQ(why["detail"], "Button 'Cancel' is not visible");
    // The same line as in the plain library.
    EXPECT_EQ(logs().back(), "zeblo_click_button error: Button 'Cancel' not found in window");
    EXPECT_TRUE(done(zeblo_click_button("Notes", "Contact", "OK")));
    EXPECT_TRUE(lastFailure().is_null());
    EXPECT_FALSE(done(zeblo_focus_app("Nope", nullptr, false, false, 100)));
    EXPECT_EQ(lastFailure()["kind"], "app");
}

}  // namespace
}  // namespace zeblo::testing
