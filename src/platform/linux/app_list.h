// The applications registered on the accessibility bus, read in two round
// trips however many there are: the registry's child list in one call, then
// every application's process id, name and child count in one batch. An
// application that does not answer is listed all the same, under what it
// answered before, and the list does not wait on it again.
#pragma once

#include <atspi/atspi.h>

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/linux/owned.h"

namespace zeblo::platform::linux_desktop {

struct ListedApp {
    std::string busName;
    std::string path;
    std::int32_t pid = 0;             // 0: the bus did not tell
    std::optional<std::string> name;  // none: not asked for, or the application did not answer
    std::int32_t childCount = -1;     // -1: likewise
};

// What the list keeps between calls about each application still registered:
// its last name and child count, and whether it left the last question
// unanswered ("silent").
class AppMemory {
public:
    struct Entry {
        std::string name;
        std::int32_t childCount = -1;
        bool silent = false;
        bool woken = false;  // asked for its root's attributes (see below)
        // The toolkit's name and version ("GTK", "4.8.3"), once known.
        std::optional<std::pair<std::string, std::string>> toolkit;
    };
    // How long the batch waits for an application's name: a moment (a
    // healthy application answers in a few milliseconds; one that does not is
    // listed all the same), and hardly at all for a silent one, which is asked
    // again all the same and speaks again once it answers in that time. Never
    // more than the reply limit.
    int waitFor(const std::string& busName) const;
    static constexpr int kListWaitMs = 250;
    static constexpr int kSilentWaitMs = 25;

    // Records an answer, or its absence; gives what to list.
    const Entry& answered(const std::string& busName, std::string name, std::int32_t childCount);
    const Entry& unanswered(const std::string& busName, std::int32_t pid);
    // Forgets the applications that are no longer registered.
    void keepOnly(const std::vector<ListedApp>& listed);
    // What is known of the application at `busName`, or null.
    Entry* find(const std::string& busName);
    // Chromium-based applications show their content only after someone
    // asked their root object for its attributes: the list asks every
    // application once, when it first answers, for that and for its
    // toolkit, and tells here whether one of them is built on Chromium (its
    // content comes a moment later).
    bool takeChromiumWoken() { return std::exchange(chromiumWoken_, false); }
    void wake(const std::vector<ListedApp>& listed);

private:
    std::unordered_map<std::string, Entry> entries_;
    bool chromiumWoken_ = false;
};

// The registry's applications in its order; empty when it does not answer.
// Their names and child counts are asked for only when `memory` is given: the
// process ids come from the bus itself, without waiting on any application.
// An application that gives no name in time is listed under its remembered
// name, else its program name (from /proc).
std::vector<ListedApp> listApplications(AppMemory* memory);

// The program name of process `pid`: the file name of its command's first
// word, else its short name ("" when unknown).
std::string programName(std::int32_t pid);

// The Application interface's calls for the toolkit's name and version of
// the application at `busName` (two calls, in that order).
std::vector<Message> toolkitCalls(const std::string& busName);

// The accessible object of `listed`, which stood at `index` of the list, with
// its own reference; null when it has gone.
AccessibleRef applicationObject(const ListedApp& listed, std::size_t index);

}  // namespace zeblo::platform::linux_desktop
