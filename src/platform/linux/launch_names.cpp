// Names to commands: remembered executables and desktop entries.
#include "platform/linux/launch_names.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

namespace zeblo::platform::linux_desktop {

namespace {

constexpr std::streamsize kMaxEntryBytes = 64 * 1024;

bool sameIgnoringCase(const std::string& a, const std::string& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

std::string baseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// The Exec line split at blanks, field codes dropped.
std::vector<std::string> splitCommand(const std::string& exec) {
    std::vector<std::string> words;
    std::istringstream in(exec);
    std::string word;
    while (in >> word) {
        if (word.size() == 2 && word[0] == '%') continue;
        words.push_back(word);
    }
    return words;
}

// The locale's language ("de" of "de_DE.UTF-8"), "" for C and POSIX.
std::string language() {
    const char* locale = std::setlocale(LC_MESSAGES, nullptr);
    std::string name = locale != nullptr ? locale : "";
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (name.empty() || name == "C") {
            const char* value = std::getenv(variable);
            if (value != nullptr && *value != '\0') name = value;
        }
    }
    name = name.substr(0, name.find_first_of("_.@"));
    return name == "C" || name == "POSIX" ? "" : name;
}

struct Entry {
    std::string name, localized, wmClass, exec, categories;
    bool hidden = false;
    bool noDisplay = false;
};

// Whether `entry` (with its Exec split into `command`) is an application's
// main entry: it starts the program itself, with no arguments but the files
// to open, is shown in menus and is no settings dialog ("mousepad --
// preferences" under the name of the editor's settings).
bool isMainEntry(const Entry& entry, const std::vector<std::string>& command) {
    const auto inCategory = [&](std::string_view category) {
        std::istringstream in(entry.categories);
        std::string item;
        while (std::getline(in, item, ';')) {
            if (item == category) return true;
        }
        return false;
    };
    return command.size() == 1 && !entry.noDisplay && !inCategory("Settings") && !inCategory("X-XFCE-SettingsDialog");
}

Entry readEntry(const std::string& file, const std::string& lang) {
    Entry entry;
    std::ifstream in(file);
    std::string line;
    bool inMain = false;
    std::streamsize read = 0;
    while (std::getline(in, line) && read < kMaxEntryBytes) {
        read += static_cast<std::streamsize>(line.size()) + 1;
        if (!line.empty() && line[0] == '[') {
            inMain = line == "[Desktop Entry]";
            continue;
        }
        const std::size_t eq = line.find('=');
        if (!inMain || eq == std::string::npos) continue;
        std::string key = line.substr(0, eq);
        key.erase(key.find_last_not_of(' ') + 1);
        std::string value = line.substr(eq + 1);
        value.erase(0, value.find_first_not_of(' '));
        if (key == "Name") entry.name = value;
        if (!lang.empty() && key == "Name[" + lang + "]") entry.localized = value;
        if (key == "StartupWMClass") entry.wmClass = value;
        if (key == "Exec") entry.exec = value;
        if (key == "Hidden" && value == "true") entry.hidden = true;
        if (key == "NoDisplay" && value == "true") entry.noDisplay = true;
        if (key == "Categories") entry.categories = value;
    }
    return entry;
}

}  // namespace

std::vector<std::string> dataDirectories() {
    std::vector<std::string> dirs;
    const char* home = std::getenv("XDG_DATA_HOME");
    if (home != nullptr && *home == '/') {
        dirs.emplace_back(home);
    } else if (const char* user = std::getenv("HOME"); user != nullptr && *user == '/') {
        dirs.push_back(std::string(user) + "/.local/share");
    }
    const char* list = std::getenv("XDG_DATA_DIRS");
    std::istringstream in(list != nullptr && *list != '\0' ? list : "/usr/local/share:/usr/share");
    std::string dir;
    while (std::getline(in, dir, ':')) {
        if (!dir.empty() && dir[0] == '/') dirs.push_back(dir);
    }
    return dirs;
}

std::vector<std::string> desktopEntryCommand(const std::vector<std::string>& dataDirs, const std::string& name) {
    if (name.empty()) return {};
    const std::string lang = language();
    // The first entry that names it, unless a later one is the program's
    // main entry and the first is not.
    std::vector<std::string> first;
    for (const std::string& dir : dataDirs) {
        const std::string folder = dir + "/applications/";
        const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(folder.c_str()), closedir);
        if (!listing) continue;
        std::vector<std::string> files;
        while (const dirent* e = readdir(listing.get())) {
            const std::string file = e->d_name;
            if (file.size() > 8 && file.compare(file.size() - 8, 8, ".desktop") == 0) files.push_back(file);
        }
        std::sort(files.begin(), files.end());  // the same answer whatever order the folder lists
        for (const std::string& file : files) {
            const Entry entry = readEntry(folder + file, lang);
            const std::vector<std::string> command = splitCommand(entry.exec);
            if (entry.hidden || command.empty()) continue;
            const bool named = entry.name == name || (!entry.localized.empty() && entry.localized == name) ||
                               sameIgnoringCase(file.substr(0, file.size() - 8), name) ||
                               (!entry.wmClass.empty() && sameIgnoringCase(entry.wmClass, name)) ||
                               sameIgnoringCase(baseName(command.front()), name);
            if (!named) continue;
            if (isMainEntry(entry, command)) return command;
            if (first.empty()) first = command;
        }
    }
    return first;
}

void LaunchNames::listed(const std::string& name, std::int32_t pid) {
    if (name.empty() || pid <= 0) return;
    if (executables_.size() >= kMaxRemembered && executables_.count(name) == 0) return;
    char path[4096];
    const ssize_t length = readlink(("/proc/" + std::to_string(pid) + "/exe").c_str(), path, sizeof path - 1);
    if (length > 0) executables_[name] = std::string(path, static_cast<std::size_t>(length));
}

std::vector<std::string> LaunchNames::commandFor(const std::string& name) const {
    std::vector<std::string> command = desktopEntryCommand(dataDirectories(), name);
    if (!command.empty()) return command;
    const auto known = executables_.find(name);
    if (known != executables_.end() && access(known->second.c_str(), X_OK) == 0) return {known->second};
    return {};
}

}  // namespace zeblo::platform::linux_desktop
