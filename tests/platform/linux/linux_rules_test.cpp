// The Linux backend's rules that need no desktop: which desktop entry a name
// launches, and which elements a walk over a window keeps.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/linux/launch_names.h"
#include "platform/linux/sight.h"

namespace zeblo::platform::linux_desktop {
namespace {

class DesktopEntries : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() / ("zeblo-entries-" + std::to_string(::getpid()));
        std::filesystem::create_directories(dir_ / "applications");
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }
    void entry(const std::string& file, const std::string& body) {
        std::ofstream(dir_ / "applications" / file) << "[Desktop Entry]\nType=Application\n" << body;
    }
    std::vector<std::string> commandFor(const std::string& name) { return desktopEntryCommand({dir_.string()}, name); }

    std::filesystem::path dir_;
};

TEST_F(DesktopEntries, TheProgramsMainEntryWinsOverItsSettingsDialog) {
    // Sorted first, and named by its program too: a settings dialog.
    entry("org.example.pad-settings.desktop",
          "Name=Pad Settings\nExec=pad --preferences\nCategories=GTK;Settings;DesktopSettings;\n");
    entry("org.example.pad.desktop",
          "Name=Pad\nExec=/usr/bin/pad %U\nCategories=Utility;\n[Desktop Action prefs]\nExec=pad --preferences\n");
    EXPECT_EQ(commandFor("pad"), std::vector<std::string>({"/usr/bin/pad"}));
    EXPECT_EQ(commandFor("Pad"), std::vector<std::string>({"/usr/bin/pad"}));
    EXPECT_EQ(commandFor("Pad Settings"), std::vector<std::string>({"pad", "--preferences"}));  // by its own name
    EXPECT_TRUE(commandFor("nothing").empty());
}

TEST_F(DesktopEntries, HiddenOnesAreSkippedNoDisplayOnesOnlyWhenNothingElseNamesIt) {
    entry("a-helper.desktop", "Name=Helper\nExec=tool --daemon\nNoDisplay=true\n");
    entry("b-hidden.desktop", "Name=Tool\nExec=tool --old\nHidden=true\n");
    EXPECT_EQ(commandFor("tool"), std::vector<std::string>({"tool", "--daemon"}));
    entry("c-main.desktop", "Name=Tool\nExec=tool\n");
    EXPECT_EQ(commandFor("tool"), std::vector<std::string>({"tool"}));
}

TEST(Sight, WhatEachWayOfSeeingKeeps) {
    const std::uint64_t showing = std::uint64_t{1} << ATSPI_STATE_SHOWING;
    const std::uint64_t visible = std::uint64_t{1} << ATSPI_STATE_VISIBLE;
    const Size some{10, 20}, none{0, 0}, flat{10, 0};
    EXPECT_TRUE(shown(Sight::everything, 0, std::nullopt));
    EXPECT_TRUE(shown(Sight::showing, showing, std::nullopt));
    EXPECT_FALSE(shown(Sight::showing, visible, some));
    EXPECT_TRUE(shown(Sight::visible, visible, none));
    EXPECT_FALSE(shown(Sight::visible, showing, some));
    EXPECT_TRUE(shown(Sight::sized, visible, some));
    EXPECT_TRUE(shown(Sight::sized, visible, std::nullopt));  // no size given: the state decides
    EXPECT_FALSE(shown(Sight::sized, visible, none));
    EXPECT_FALSE(shown(Sight::sized, visible, flat));
    EXPECT_FALSE(shown(Sight::sized, 0, some));
    EXPECT_TRUE(shown(Sight::sized, showing, none));

    EXPECT_EQ(sightBelow(Sight::showing, ATSPI_ROLE_DOCUMENT_WEB), Sight::visible);
    EXPECT_EQ(sightBelow(Sight::sized, ATSPI_ROLE_PUSH_BUTTON), Sight::sized);
    EXPECT_EQ(sightBelow(Sight::everything, ATSPI_ROLE_DOCUMENT_WEB), Sight::everything);

    EXPECT_EQ(sightOfToolkit("GTK", "4.8.3"), Sight::sized);
    EXPECT_EQ(sightOfToolkit("gtk", "3.24.38"), Sight::showing);
    EXPECT_EQ(sightOfToolkit("GTK", "3.99"), Sight::showing);
    EXPECT_EQ(sightOfToolkit("Qt", "5.15.8"), Sight::showing);
    EXPECT_EQ(sightOfToolkit("GTK", ""), Sight::showing);
}

}  // namespace
}  // namespace zeblo::platform::linux_desktop
