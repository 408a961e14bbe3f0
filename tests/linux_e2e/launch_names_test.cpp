// Launching by the name `zeblo apps` shows: a Qt example registers as
// "Application Example", which only its desktop entry's Name connects to its
// program.
#include <filesystem>
#include <fstream>

#include "e2e_support.h"

namespace {

using namespace e2e;

constexpr const char* kApp = "Application Example";
const std::filesystem::path kProgram = "/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/mainwindows/application/application";

class LaunchByName : public DesktopTest {};

TEST_F(LaunchByName, TheListedNameLaunchesFocusesAndIsListed) {
    if (!desktopAvailable()) GTEST_SKIP() << "no display";
    if (!std::filesystem::exists(kProgram)) GTEST_SKIP() << "no Qt examples";
    const std::filesystem::path data = std::filesystem::temp_directory_path() / "zeblo-launch-names";
    std::filesystem::create_directories(data / "applications");
    std::ofstream(data / "applications" / "zeblo-qt-example.desktop")
        << "[Desktop Entry]\nType=Application\nName=" << kApp << "\nExec=" << kProgram.string() << " %F\n";
    setenv("XDG_DATA_HOME", data.c_str(), 1);

    ASSERT_FALSE(isRunning(kApp));
    ASSERT_TRUE(zeblo_focus_app(kApp, nullptr, true, true, 20000)) << "not launched by its listed name";
    EXPECT_TRUE(isRunning(kApp));
    EXPECT_TRUE(zeblo_launch_app(kApp));  // running: activated
    EXPECT_TRUE(zeblo_send_keystroke(kApp, "q", 2));  // Control+Q quits it
    EXPECT_TRUE(eventually([] { return !isRunning(kApp); }));
    unsetenv("XDG_DATA_HOME");
}

}  // namespace
