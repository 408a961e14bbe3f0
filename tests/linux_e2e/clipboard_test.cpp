// End-to-end test of the clipboard around a paste: what another process put
// on CLIPBOARD (clipboard.py) comes back after zeblo_paste_text, every target
// with its type and bytes, served by the clipboard holder, from a busy
// multi-threaded host that the library never forks.
#include <pthread.h>
#include <sys/wait.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <memory>
#include <mutex>

#include "e2e_support.h"

namespace {

using namespace e2e;
using Pipe = std::unique_ptr<FILE, int (*)(FILE*)>;

struct Target {
    std::string name, type, bytes;
};

// One line of JSON from `from`.
json readLine(FILE* from) {
    std::string line;
    for (int c; from != nullptr && (c = std::fgetc(from)) != EOF && c != '\n';) line += static_cast<char>(c);
    return json::parse(line, nullptr, false);
}

// CLIPBOARD as another process reads it: {target: [type, format, size, hash]}.
json readClipboard() { return readLine(Pipe(popen(ZEBLO_CLIPBOARD_TOOL " read", "r"), pclose).get()); }

// Puts `targets` on CLIPBOARD from another process, pastes, and expects them
// all back, byte for byte, from someone else.
void pasteAndCompare(const std::vector<Target>& targets) {
    json listing = json::array();
    for (const Target& t : targets) {
        std::string hex;
        for (unsigned char c : t.bytes) hex += {"0123456789abcdef"[c >> 4], "0123456789abcdef"[c & 15]};
        listing.push_back({t.name, t.type, hex});
    }
    const std::string file = testing::TempDir() + "zeblo-clipboard.json";
    std::ofstream(file) << listing.dump();
    Pipe owner(popen((ZEBLO_CLIPBOARD_TOOL " own " + file).c_str(), "r"), pclose);
    const json offered = readLine(owner.get());
    ASSERT_EQ(offered.size(), targets.size()) << "the owner did not start";
    ASSERT_EQ(readClipboard(), offered);

    ASSERT_TRUE(zeblo_paste_text("pasted by zeblo"));
    EXPECT_EQ(pclose(owner.release()), 0) << "the owner kept CLIPBOARD";
    EXPECT_EQ(readClipboard(), offered);
    EXPECT_LE(waitpid(-1, nullptr, WNOHANG), 0) << "a child of this process was left a zombie";
}

using Clipboard = DesktopTest;

// Other threads hold the allocator's and a mutex's locks meanwhile: nothing
// in the library may run in a forked copy of this process.
TEST_F(Clipboard, EveryTargetComesBackAndTheHostIsNeverForked) {
    if (!desktopAvailable()) GTEST_SKIP() << "no display";
    static std::atomic<int> forks{0};
    pthread_atfork([] { ++forks; }, nullptr, nullptr);
    std::atomic<bool> stop{false};
    std::mutex mutex;
    std::thread allocating([&] {
        while (!stop) free(std::malloc(1 + forks));
    });
    std::thread locking([&] {
        const std::lock_guard held(mutex);
        while (!stop) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    // The image is larger than one X request: it travels in pieces (INCR).
    const std::string image = "\x89PNG\r\n\x1a\n" + std::string(300000, '\xa7') + std::string("\0\1\2", 3);
    const std::vector<std::vector<Target>> cases = {
        {{"image/png", "image/png", image}},
        {{"text/html", "text/html", "<b>caf\xc3\xa9</b>"}, {"UTF8_STRING", "UTF8_STRING", "caf\xc3\xa9"}},
        {{"STRING", "STRING", "caf\xe9"}},  // Latin-1, not UTF-8
    };
    for (const auto& targets : cases) {
        SCOPED_TRACE(targets[0].name);
        pasteAndCompare(targets);
    }
    stop = true;
    allocating.join();
    locking.join();
    EXPECT_EQ(forks, 0);
}

}  // namespace
