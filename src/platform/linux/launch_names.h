// What to run for an application's name. `zeblo apps` lists applications by
// their accessible name ("Chromium", "Application Example"), which is rarely
// the program's name; launching by that name finds the program through, in
// this order:
// - the desktop entries (applications/*.desktop under XDG_DATA_HOME and
//   XDG_DATA_DIRS, earlier directories first): an entry whose Name, Name in
//   the current locale, file name (without ".desktop"), StartupWMClass or
//   program (Exec's first word, without its directory) equals the name;
//   Name and the localized Name exactly, the others without regard to ASCII
//   case. Hidden entries are passed over; of the others, the first that is
//   the program's main entry (its command is the program alone, and it is
//   neither NoDisplay nor a settings dialog) wins, else the first. The
//   command is Exec, split at blanks and with its field codes (%U, %f...)
//   dropped. They are read afresh at each launch (a launch is rare and
//   already waits);
// - the executable of a process that was listed under that name before
//   (remembered for the process's life, at most kMaxRemembered names).
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace zeblo::platform::linux_desktop {

class LaunchNames {
public:
    static constexpr std::size_t kMaxRemembered = 256;

    // Notes that process `pid` is listed as `name`.
    void listed(const std::string& name, std::int32_t pid);
    // The command that starts `name`, or empty when nothing names it.
    std::vector<std::string> commandFor(const std::string& name) const;

private:
    std::unordered_map<std::string, std::string> executables_;  // name to executable path
};

// The command of the first desktop entry under `dataDirs` (each with an
// "applications" folder) that matches `name` as above; empty for none.
std::vector<std::string> desktopEntryCommand(const std::vector<std::string>& dataDirs, const std::string& name);

// XDG_DATA_HOME (or ~/.local/share), then XDG_DATA_DIRS (or /usr/local/share
// and /usr/share).
std::vector<std::string> dataDirectories();

}  // namespace zeblo::platform::linux_desktop
