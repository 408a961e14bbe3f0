/*
** ZEBLOui: drive other running desktop applications the way a user would.
**
** This header is the library's whole interface: 25 functions with C linkage
** and plain C types, usable from C, C++ and Swift.
**
** CONVENTIONS THAT HOLD FOR EVERY FUNCTION
**
** Strings.  Every string argument is a NUL-terminated UTF-8 string.  Bytes
** that are not well-formed UTF-8 are read as U+FFFD (the replacement
** character); nothing is rejected for its encoding.
**
**   - An OPTIONAL name (application, window) may be NULL: NULL means the same
**     as "".  For applications "" means the frontmost application; for
**     windows it means the application's first window.
**   - A REQUIRED string must not be NULL.  If it is anyway, it is read as ""
**     (a harmless, documented answer, never a crash).
**
** Arrays.  An array argument comes with a signed 32-bit count.  A negative
** count is read as 0; a NULL array with a positive count is read as empty.
** The array is never read when it is treated as empty.
**
** Results.  Boolean functions return true or false; the ones that can fail
** for a reason write exactly one line to the system log when they do, made of
** the function's name, " error: " and the error's description.
** String functions return a new NUL-terminated UTF-8 string holding JSON.
** The caller owns it and releases it exactly once with zeblo_free_string().
** String functions always return a string, in success and in failure alike
** (an error object {"error": "..."} or a documented fallback such as "[]");
** they return NULL only when the memory for the copy cannot be had.
**
** Threads.  Every function runs synchronously on the calling thread and
** blocks it until the work, including any waiting it does, is finished.  The
** library starts no threads, takes no locks and keeps no state between calls:
** every call looks the application, window and elements up afresh.  Calls
** from several threads are safe; they meet only in the desktop itself (the
** same application, the same pasteboard, the same event stream).
**
** Permission.  On macOS the host process needs the accessibility permission
** (System Settings > Privacy & Security > Accessibility) for everything that
** reads or drives other applications' elements.
*/
#ifndef ZEBLO_ZEBLO_H
#define ZEBLO_ZEBLO_H

#include <stdbool.h>
#include <stdint.h>

/*
** VERSION
**
** The version of this header, which is the version of the library it comes
** with.  The build system reads the version from the three numeric
** lines below; keep each of them on its own line in the form
** "#define ZEBLO_VERSION_X N".  ZEBLO_VERSION_STRING is the same version as
** text.  The version is not available at run time: the library has no
** version function.
*/
#define ZEBLO_VERSION_MAJOR 0
#define ZEBLO_VERSION_MINOR 1
#define ZEBLO_VERSION_PATCH 0
#define ZEBLO_VERSION_STRING "0.1.0"

/*
** ZEBLO_API marks the 25 functions of the library.
**
**   - The library's own sources define ZEBLO_BUILDING_LIBRARY: the functions
**     are exported (__declspec(dllexport) on Windows, default visibility
**     with GCC and clang).
**   - A consumer defines nothing: on Windows the functions are imported from
**     the DLL (__declspec(dllimport)); a consumer that links the library
**     statically on Windows defines ZEBLO_STATIC first, which leaves
**     ZEBLO_API empty.  Elsewhere the visibility attribute is harmless for a
**     consumer; with a compiler that has neither, ZEBLO_API is empty.
**
** Only the zeblo_* functions below are exported; nothing else in the library
** is visible to the dynamic linker.
*/
#if defined(_WIN32) || defined(__CYGWIN__)
#if defined(ZEBLO_BUILDING_LIBRARY)
#define ZEBLO_API __declspec(dllexport)
#elif defined(ZEBLO_STATIC)
#define ZEBLO_API
#else
#define ZEBLO_API __declspec(dllimport)
#endif
#elif defined(__GNUC__) || defined(__clang__)
#define ZEBLO_API __attribute__((visibility("default")))
#else
#define ZEBLO_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* =========================================================================
** MENUS
** ========================================================================= */

/*
** zeblo_get_app_menus: the whole menu bar of an application.
**
** appName  optional; exact localized name of a running application (case and
**          spaces count), or NULL / "" for the frontmost application.
**
** Returns a pretty-printed JSON object (two blanks of indentation):
**   { "app": NAME, "menus": [ ITEM, ... ] }
**   ITEM = { "title": string ("(no title)" when the item has none),
**            "path": [ titles of the ancestors, from the menu bar down ],
**            "enabled": bool, "checked": bool,
**            "cmdChar": string        (only when the item has a key equivalent),
**            "cmdModifiers": integer  (only when the item reports one),
**            "children": [ ITEM, ... ] (only when the item has a submenu) }
** NAME is appName, or the frontmost application's name ("Unknown" when it has
** none).  A menu bar that gives no item list at all gives the one-line text
** {"app": "NAME", "menus": []}; an empty item list gives the pretty layout.
** On failure: {"error": "..."} (no such application, no frontmost
** application, no readable menu bar).  Free the result with
** zeblo_free_string().  Writes no log line of its own.
*/
ZEBLO_API const char *zeblo_get_app_menus(const char *appName);

/*
** zeblo_menu_click: choose a menu item by its path of titles.
**
** appName        optional; exact name, or NULL / "" for the frontmost app.
** menuPath       titles from the menu bar down, e.g. {"File", "Save"};
**                each compared whole and exactly; NULL entries are skipped.
** menuPathCount  number of entries in menuPath.
**
** Presses the item ("AXPress", or "AXPick" when the press is refused).
** Returns true when the item was chosen.  On failure returns false and logs
** "zeblo_menu_click error: " and the error (empty path, no such application,
** no menu bar, a title not found, or the item refused both actions; in the
** last case the item's available actions are logged first).
*/
ZEBLO_API bool zeblo_menu_click(const char *appName, const char *const *menuPath,
                                int32_t menuPathCount);

/*
** zeblo_menu_item_exists: whether a menu path leads to an item.
** Arguments as zeblo_menu_click.  Returns false on any failure; logs nothing.
*/
ZEBLO_API bool zeblo_menu_item_exists(const char *appName, const char *const *menuPath,
                                      int32_t menuPathCount);

/*
** zeblo_menu_item_enabled: whether the item at a menu path is enabled.
** Arguments as zeblo_menu_click.  Returns false when the item is disabled,
** cannot be found, or does not report its state.  Logs nothing.
*/
ZEBLO_API bool zeblo_menu_item_enabled(const char *appName, const char *const *menuPath,
                                       int32_t menuPathCount);

/* =========================================================================
** KEYBOARD AND TEXT
** ========================================================================= */

/*
** zeblo_send_keystroke: press one key, with modifiers, in an application.
**
** appName    optional; exact name, or NULL / "" for the frontmost app.  The
**            application is activated, then the key is pressed 0.05 s later.
** keyChar    required; a letter, a digit, one of  ` - = [ ] \ ; ' , . /
**            space, tab, line feed (Return), backspace (Delete), escape, or
**            "f1".."f12", "left", "right", "up", "down" (any case).
** modifiers  bit 0 Shift, bit 1 Control, bit 2 Option, bit 3 Command;
**            other bits are ignored.
**
** Returns true when sent; false with a "zeblo_send_keystroke error: " log
** line for an unknown key, no such application, or events that cannot be
** made.
*/
ZEBLO_API bool zeblo_send_keystroke(const char *appName, const char *keyChar, int32_t modifiers);

/*
** zeblo_send_global_keystroke: press a chord of raw virtual key codes into
** whatever has the keyboard focus.
**
** keyCodes       the codes, pressed in order and released in reverse order.
** keyCodesCount  number of codes; 0 presses nothing (and succeeds when an
**                event source can be made).
** modifierFlags  event flag mask; only Shift 0x20000, Control 0x40000,
**                Option 0x80000 and Command 0x100000 are kept.  With none of
**                them the events keep the flags they are created with.
**
** Every event carries the marker 0x5A45424C4F in event field 127.
** Returns true when sent; false with a "zeblo_send_global_keystroke error: "
** log line when an event cannot be made.
*/
ZEBLO_API bool zeblo_send_global_keystroke(const uint16_t *keyCodes, int32_t keyCodesCount,
                                           uint64_t modifierFlags);

/*
** zeblo_type_text: type text key by key, as on a US keyboard, into whatever
** has the keyboard focus (0.005 s per character).
**
** text        required; printable ASCII, tab and line feed can be typed.
** markEvents  put the marker 0x5A45424C4F in event field 127 of every event.
**
** Stops at the first character that cannot be typed: false, with the log line
** "zeblo_type_text error: Unsupported character: 'C'" (the characters before
** it have been typed).
*/
ZEBLO_API bool zeblo_type_text(const char *text, bool markEvents);

/*
** zeblo_paste_text: paste any text into whatever has the keyboard focus,
** through the general pasteboard.
**
** text  required; any characters.
**
** Saves every type and data of the pasteboard, writes the text, presses
** Command-V, then puts the saved pairs back (gathered into one item).  Takes
** at least 0.06 s.  Returns false with a "zeblo_paste_text error: " log line
** when the keystroke cannot be made; the pasteboard then holds the text.
*/
ZEBLO_API bool zeblo_paste_text(const char *text);

/*
** zeblo_paste_into_focused_field: set the value of the focused text field
** directly (no keystrokes, pasteboard untouched), then optionally press
** Return.
**
** text       required; becomes the field's whole value.
** sendEnter  press Return afterwards.
**
** When the focused element is not a text field (or refuses the value), its
** direct children are tried in order.  May show the system's accessibility
** permission prompt.  Returns false with a
** "zeblo_paste_into_focused_field error: " log line when the process is not
** trusted, nothing has focus, or no element took the value.
*/
ZEBLO_API bool zeblo_paste_into_focused_field(const char *text, bool sendEnter);

/* =========================================================================
** WINDOWS AND CONTROLS
** In all of these, appName is matched exactly first, then loosely (case and
** white space ignored, a part of the name is enough), NULL / "" meaning the
** frontmost application; windowName is matched loosely against window
** titles, NULL / "" meaning the application's first window.  Controls are
** found by loose match of their title, searching 50 levels deep.
** ========================================================================= */

/*
** zeblo_click_button: press a button of a window.
** buttonName required.  Returns true when pressed ("AXPress", or "AXPick"
** when the press is refused); false with a "zeblo_click_button error: " log
** line otherwise.
*/
ZEBLO_API bool zeblo_click_button(const char *appName, const char *windowName,
                                  const char *buttonName);

/*
** zeblo_click_checkbox: press (toggle) a checkbox of a window.
** checkboxName required.  Returns true when pressed; false with a
** "zeblo_click_checkbox error: " log line otherwise.
*/
ZEBLO_API bool zeblo_click_checkbox(const char *appName, const char *windowName,
                                    const char *checkboxName);

/*
** zeblo_get_window_buttons: the titles of all titled buttons of a window.
** Returns a JSON array of strings in document order, duplicates kept, at most
** 1,000 (e.g. ["OK","Cancel"]), or an error object such as
** {"error": "Window 'X' not found"}.  Logs its progress.  Free the result with
** zeblo_free_string().
*/
ZEBLO_API const char *zeblo_get_window_buttons(const char *appName, const char *windowName);

/*
** zeblo_set_checkbox_value: write a number into a checkbox's value.
** checkboxName required; value is written as it stands (0, 1, 2...).
** Returns true when written; false with a "zeblo_set_checkbox_value error: "
** log line otherwise.
*/
ZEBLO_API bool zeblo_set_checkbox_value(const char *appName, const char *windowName,
                                        const char *checkboxName, int32_t value);

/*
** zeblo_get_popup_menu_items: open a popup button and list its menu's items.
** popupName required.  Waits 0.05 s after opening.  Returns a JSON array of
** the non-empty item titles (e.g. ["Small","Medium","Large"], or []), or an
** error object.  Free the result with zeblo_free_string().
*/
ZEBLO_API const char *zeblo_get_popup_menu_items(const char *appName, const char *windowName,
                                                 const char *popupName);

/*
** zeblo_get_window_text: all text a window shows, as labelled lines.
** Returns a JSON array of strings such as "[AXStaticText] Saved",
** "[AXButton Title] OK" or "[AXImage Description] Warning", in document
** order, at most 1,002; a title or description already contained in an
** earlier line is left out.  On failure an error object.  Free the result
** with zeblo_free_string().
*/
ZEBLO_API const char *zeblo_get_window_text(const char *appName, const char *windowName);

/* =========================================================================
** APPLICATIONS
** ========================================================================= */

/*
** zeblo_get_frontmost_info: the frontmost application and its focused window.
** Returns {"app":"NAME","window":"TITLE"} ("" where unknown), or an error
** object when no application is in front.  Free it with zeblo_free_string().
*/
ZEBLO_API const char *zeblo_get_frontmost_info(void);

/*
** zeblo_get_running_apps: the names of the running applications.
** Returns a JSON array of strings in the workspace's order, a name as often as
** applications of that name run, nameless ones left out; "[]" at worst, never
** an error object.  Free it with zeblo_free_string().
*/
ZEBLO_API const char *zeblo_get_running_apps(void);

/*
** zeblo_focus_app: bring an application to the front and wait for a window.
**
** appName       optional; matched loosely against visible, regular
**               applications.  NULL / "" does nothing and returns true.
** windowName    optional; when given and timeout > 0, waits (polling every
**               0.05 s) until the frontmost window's title matches loosely.
** shouldSwitch  activate the application.
** shouldLaunch  launch it when no visible, regular application matches
**               (then waits 0.5 s and takes any matching application).
** timeout       milliseconds to wait for the window.
**
** Returns true unless the application cannot be found or activated (false,
** with a "zeblo_focus_app error: " log line).  A window that never comes is
** not an error.
*/
ZEBLO_API bool zeblo_focus_app(const char *appName, const char *windowName, bool shouldSwitch,
                               bool shouldLaunch, int32_t timeout);

/*
** zeblo_launch_app: ask the system to launch an application by name.
** appName required.  Returns true when the launch was accepted; false with a
** "zeblo_launch_app error: " log line otherwise.  Does not wait.
*/
ZEBLO_API bool zeblo_launch_app(const char *appName);

/*
** zeblo_is_in_text_field: whether the keyboard focus is in a text field,
** text area, combo box or search field (a password field does not count).
** Returns false on any failure; logs nothing.
*/
ZEBLO_API bool zeblo_is_in_text_field(void);

/* =========================================================================
** WINDOWS, CONTINUED
** ========================================================================= */

/*
** zeblo_window_exists: whether the application runs and has the window
** (with windowName NULL / "": any window).  Logs the window lookup's
** diagnostic lines; returns false on any failure.
*/
ZEBLO_API bool zeblo_window_exists(const char *appName, const char *windowName);

/*
** zeblo_get_window_titles: the titles of an application's windows.
** appName is matched loosely only (NULL / "": the frontmost application).
** Returns a JSON array of strings in the window order, untitled windows as
** "", e.g. ["Inbox","Untitled",""]; "[]" for every failure, never an error
** object.  Free it with zeblo_free_string().
*/
ZEBLO_API const char *zeblo_get_window_titles(const char *appName);

/*
** zeblo_wait_for_window: wait, polling every 0.05 s, for a condition.
**
** condition  0: the window exists; 1: the window (or its application) is
**            gone; 2: the window is in front (the frontmost application
**            matches appName, or appName is NULL / "", and its focused
**            window's title matches windowName, or windowName is NULL / "").
**            Any other value returns false at once.
** timeout    milliseconds; 0 or less returns false without checking.
**
** Returns true when the condition held before the time ran out.
*/
ZEBLO_API bool zeblo_wait_for_window(const char *appName, const char *windowName,
                                     int32_t condition, int32_t timeout);

/*
** zeblo_close_window: press a window's close button.
**
** retryTimeout  negative: one attempt.  0 or more: milliseconds during which
**               the close is retried every 0.1 s until the window (or its
**               application) is gone; 0 only checks that it is gone already.
**
** Returns true when closed (or gone); false with a
** "zeblo_close_window error: " log line otherwise ("Failed to close window",
** "Operation timed out", or a lookup error).
*/
ZEBLO_API bool zeblo_close_window(const char *appName, const char *windowName,
                                  int32_t retryTimeout);

/* =========================================================================
** MEMORY
** ========================================================================= */

/*
** zeblo_free_string: release a string returned by any function above.
** NULL is accepted and does nothing.  Each string must be released once.
*/
ZEBLO_API void zeblo_free_string(const char *ptr);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZEBLO_ZEBLO_H */
