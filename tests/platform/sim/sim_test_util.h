// Helpers of the simulator's tests.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/sim/sim_desktop.h"

namespace zeblo::sim::testing {

using namespace zeblo::platform;

// A loaded desktop that must have no live handle when the test ends.
class SimTest : public ::testing::Test {
protected:
    void load(const std::string& json) { desk = SimDesktop::fromJson(json); }
    void TearDown() override {
        if (desk) {
            EXPECT_EQ(desk->liveHandles(), 0);
        }
    }
    Element app(std::int32_t pid) { return desk->createApplicationElement(pid); }
    AttributeRead read(const Element& e, std::string_view attr) { return desk->copyAttributeValue(e, attr); }
    Element child(const Element& e, std::string_view attr) { return asElement(read(e, attr)).value; }
    std::string idOf(const Element& e) { return e ? static_cast<Node*>(e.raw())->id : "<null>"; }
    std::vector<std::string> windowIds(std::int32_t pid) {
        std::vector<std::string> ids;
        for (auto& w : asElementArray(read(app(pid), "AXWindows")).value) ids.push_back(idOf(w));
        return ids;
    }

    std::shared_ptr<SimDesktop> desk;
};

}  // namespace zeblo::sim::testing
