/*
** ZEBLOui: drive other running desktop applications the way a user would.
**
** This header is the library's whole interface: 25 functions with C linkage
** and plain C types, usable from C, C++ and Swift.  It is also the library's
** reference: each function's block says what it takes, what it returns, how
** it fails, what it logs and who frees what.  The blocks describe the macOS
** desktop; PLATFORMS (below) says what differs on Linux and elsewhere.
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
** Boolean results.  A boolean function answers true or false.  The ones that
** can fail for a reason write exactly one FAILURE LINE to the system log
** when they do: the function's name, " error: " and the error's
** description, e.g.
**     zeblo_click_button error: Button 'OK' not found in window
** The QUIET ones (zeblo_menu_item_exists, zeblo_menu_item_enabled,
** zeblo_is_in_text_field, zeblo_window_exists, zeblo_wait_for_window) never
** write a failure line: their false means "no" as well as "could not tell".
** Some functions also write DIAGNOSTIC LINES (each block names them); they
** come before the failure line, are written on success too, and are not part
** of the answer.  Log lines go to the unified log (NSLog) on macOS and to
** syslog elsewhere (see PLATFORMS).
**
** Error descriptions.  An error's description (the text after " error: ",
** and the text of an error object) is one of:
**   - a window error, with a fixed text (the WINDOWS functions):
**       "Application 'NAME' not found. Check if the app is running."
**       "Window 'NAME' not found. Check if the window exists and is visible."
**       "Button 'NAME' not found in window"
**       "Checkbox 'NAME' not found in window"
**       "No frontmost application"
**       "Failed to perform click action"
**       "Failed to close window"
**       "Operation timed out"
**     NAME is the name asked for, or "<focused>" when the first window was
**     asked for (NULL / "") and there is none;
**   - an application, menu or keystroke-target error, which has no text of
**     its own and gives the generic description
**       "The operation couldn't be completed. (ZEBLOui.TYPE error N.)"
**     whose apostrophe is U+2019 (RIGHT SINGLE QUOTATION MARK, the bytes
**     E2 80 99), with TYPE and N one of:
**       AppError        0 application not found, 1 no frontmost
**                       application, 2 activation failed, 3 launch failed
**       MenuError       0 application not found, 1 menu item not found,
**                       2 no frontmost application, 3 menu bar not found,
**                       4 empty menu path, 5 the item refused to be chosen
**       KeystrokeError  0 application not found, 1 no frontmost application
**   - a keystroke failure, with the text given in the function's block
**     (e.g. "Invalid key character: K").
**
** String results.  A string function returns a new NUL-terminated UTF-8
** string holding JSON, compact (no blanks) unless its block says otherwise.
** In JSON strings '"', '\' and the control characters are escaped, '/' is
** written as "\/", and every other character is written as UTF-8.
** String functions always return a string, in success and in failure
** alike: on failure an ERROR OBJECT, exactly {"error": "DESCRIPTION"} (one
** blank after the colon), or the function's FALLBACK ("[]" or "{}") where
** its block says so.  A result that would not be well-formed UTF-8 also
** gives the fallback (the shipped backends hand up U+FFFD for ill-formed
** text, so this does not happen in practice); an unforeseen error gives an
** error object with its text (the fallback, for the functions that never
** return an error object); an error whose text cannot be built gives
** {"error": "out of memory"}.  A string function returns NULL only when the
** memory for the copy cannot be had.
**
** Memory.  The caller owns every returned string and releases it exactly
** once with zeblo_free_string(), from any thread; never with another
** allocator's free().  The library keeps no pointer to any argument after
** the call returns.
**
** Threads and state.  Every function runs synchronously on the calling
** thread and blocks it until the work, including any waiting, is finished:
** pauses and polls are sleeps on the calling thread, and a call to an
** application that does not answer blocks until the reply limit (below).  The
** library starts no threads (on Linux it starts processes, never by forking
** the host: the applications it launches and the clipboard holder, see
** PLATFORMS, Processes).  Every call looks
** the application, window and elements up afresh: no application, window,
** element or event is remembered from one call to the next (beyond the
** macOS backend's list of applications it launched, below), and every
** handle a call obtains is released before it returns.  What the library
** does keep:
**   - the desktop backend, chosen at the first call of any function and kept
**     until the process ends (see PLATFORMS; a desktop that could not be
**     reached at that first call is not tried again);
**   - on Linux, that backend's display and bus connections and its lock, and
**     after a paste a clipboard holder process that outlives the call (see
**     PLATFORMS, "Linux: what is kept, and the lock");
**   - on macOS, the current keyboard layout's table, the applications the
**     library launched until the workspace lists them, and which processes
**     are built on Chromium (see PLATFORMS, macOS, WHAT IS KEPT).
** Calls from several threads are safe.  On macOS the backend's locks guard
** only what it keeps and are never held while another process is called:
** calls run side by side; work that Apple allows on the main thread only is
** handed to it, waiting at most the reply limit (PLATFORMS, macOS, MAIN
** THREAD).  On Linux every step of the backend holds one process-wide lock,
** so concurrent calls interleave step by step.
** Either way calls meet in the desktop itself (the same application, the
** same pasteboard, the same event stream), and two calls that drive the same
** application or the keyboard at once interfere as two users would.
**
** Reply limit.  No single message to another application waits more than
** the reply limit for its answer: 1000 ms, or the whole number of
** milliseconds (10 to 60000) in the environment variable
** ZEBLO_REPLY_TIMEOUT_MS, read once at the first call that needs it.  A read
** that runs out fails with kAXErrorCannotComplete (-25204), so an
** application that has stopped answering gives each function's documented
** failure (an error object, false or an empty list, with its log line) after
** about one limit per step the function takes, and a wait still ends by its
** own timeout plus at most one limit.  An action (a press, a pick, a
** checkbox toggle) or a written value that runs out was delivered and is
** still running (an action that opens a modal dialog answers only when the
** dialog closes): it counts as performed, and no second action is sent in
** its place.  zeblo_wait_for_window and zeblo_close_window do not take a
** window they could not look up for want of an answer for a window gone.
** Calls about other applications do not wait on one that has stopped
** answering: it stays in the list of running applications (see PLATFORMS).
**
** Element trees that loop.  A faulty application may list an element among
** the children of its own descendant.  Every walk over an application's
** elements leaves out a child that is the same element as one it is already
** inside, so no walk goes round forever.
**
** Permission.  On macOS the host process needs the accessibility permission
** (System Settings > Privacy & Security > Accessibility) for everything that
** reads or drives other applications' elements; without it element reads
** and actions fail and the keystrokes the library posts are not delivered
** (the keystroke functions say so in the log: PLATFORMS, macOS, POSTING
** PERMISSION).  On Linux there is no permission to grant (see PLATFORMS).
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

/*
** PLATFORMS
**
** The library drives the desktop through one backend, chosen at the first
** call of any function and kept for the life of the process:
**   - macOS: the real desktop (the accessibility API, CoreGraphics events,
**     NSWorkspace, the general NSPasteboard, NSLog).  The function blocks
**     below are written in its terms.
**   - Linux: the real desktop (AT-SPI2 through libatspi for elements),
**     when the library was built with it and, at that first call, the
**     session bus can be reached (DBUS_SESSION_BUS_ADDRESS, or
**     XDG_RUNTIME_DIR/bus), the accessibility registry answers and a window
**     system does: a Wayland compositor (WAYLAND_DISPLAY) when
**     XDG_SESSION_TYPE is "wayland", or is not set and WAYLAND_DISPLAY is;
**     else X11 (DISPLAY, with the XTEST extension).  See LINUX: WAYLAND
**     for what differs under Wayland.  Otherwise, and on other systems:
**   - no desktop: no application runs and none is in front (every lookup
**     fails with its "not found" or "no frontmost application" answer),
**     there is no pasteboard, and every call that would send a key or
**     launch fails, after one log line that says why no desktop can be
**     reached ("No desktop can be reached (neither DISPLAY nor
**     WAYLAND_DISPLAY is set): no key can be sent"); typing, pasting and
**     keystrokes answer false, "Failed to create event source".  Pauses and
**     waits take real time; log lines go to syslog.
**
** THE SIMULATED LIBRARY, for testing a host offline.  The build also makes a
** second library with the same file name, the same 25 functions and the same
** ABI, in a folder of its own (build/simulated/, installed as
** LIBDIR/zeblo/simulated/).  Its only desktop is a simulated one, described
** by the JSON desktop file (docs/desktop-format.md: applications, element
** trees, a pasteboard, changes over virtual time) that the environment
** variable ZEBLO_SIMULATE names.  A host runs its own tests against it
** unchanged, on a machine with no desktop, by putting that folder first on
** the library search path:
**     LD_LIBRARY_PATH=PREFIX/lib/zeblo/simulated ZEBLO_SIMULATE=d.json ./tests
** (DYLD_LIBRARY_PATH on macOS).  The file is read once, at the first call;
** when ZEBLO_SIMULATE is not set or the file cannot be read, one log line
** says why and the desktop is an empty one: no application runs and none
** is in front, key events go nowhere and succeed, the pasteboard is private
** and in memory.  Time is virtual there:
** pauses, waits and timeouts take no real time.  When ZEBLO_TRACE names a
** file ("-": standard error), every side effect (key event, press, written
** value, pasteboard change, launch, activation, pause, log line) is written
** to it as one JSON line as it happens, and {"end": {...}} (the virtual
** clock, the handles still alive, the pasteboard) when the process exits;
** the file is created afresh.  It keeps no trace in memory.  Log lines go to
** syslog (also to standard error when ZEBLO_LOG_STDERR is 1) and to the
** trace.  The library described elsewhere in this header never reads
** ZEBLO_SIMULATE or ZEBLO_TRACE: a production host cannot be pointed at a
** simulated desktop by its environment.
**
** macOS.  Each accessibility call is a message to the other process; every
** element the backend creates or reads gets the reply limit as its messaging
** timeout (AXUIElementSetMessagingTimeout).  Set on the system-wide element,
** that timeout is also the process's default for elements without one of
** their own, the host's included.  Pauses are plain sleeps on every thread:
** the library never runs the host's run loop.
** APPLICATIONS: the frontmost application is the one the accessibility
** server names (the system-wide element's "AXFocusedApplication"), else the
** workspace's frontmostApplication.  The running applications are the
** workspace's list, followed by the applications the library launched that
** the list does not show yet.  The workspace updates its list when the
** host's main run loop turns, so the one thing that waits for that loop is
** the list itself: an application someone else started, hid or showed since
** the loop last turned appears so once it turns (an application host's loop
** turns all the time; a host that calls on its main thread and never runs
** its loop keeps seeing those as they were at its first call).
** LAUNCHING: the name is a path (with or without ".app"); the name an
** application is installed under, as Launch Services finds it
** (-[NSWorkspace fullPathForApplication:]); or the name a running
** application is listed under, or the display name of an application in
** /Applications, /Applications/Utilities, /System/Applications,
** /System/Applications/Utilities or ~/Applications, so that the localized
** name the list shows ("Rechner" for Calculator on a German Mac) launches
** it too.  The application is opened with -[NSWorkspace
** openApplicationAtURL:configuration:completionHandler:], which brings one
** that runs already to the front, and the call waits for its handler up to
** the reply limit: an error is a refused launch, no answer in that time a
** launch under way (accepted).  A refusal logs, before the failure line,
**     Launch: no application 'NAME' was found
**     Launch: 'NAME' could not be opened: REASON
** An application launched by one name and listed under another is found
** by the name it is listed under only: on a German Mac, zeblo_focus_app with
** "Calculator" and shouldLaunch starts Calculator and answers AppError 0,
** with "Rechner" it launches and finds it.
** MAIN THREAD: AppKit's NSApplication and the input source manager behind
** keyboard layouts are used on the main thread only.  Called on another
** thread, the library hands that work to the main queue and waits for it at
** most the reply limit: the host's yielding of its activation (ACTIVATION),
** the reading of the keyboard layout at the start of every keystroke
** function, and, once, the making of the process's first keyboard event
** (the system sets up its key translation then, asking the input source
** manager, which traps off the main thread from macOS 14).  A main thread
** that does not run its queue in time costs that wait once; until it has
** run the work, later calls do not wait for it, a keystroke uses the layout
** read before and logs
**     Keyboard: the main thread did not answer within N ms; the keyboard layout read before is used
** ("no keyboard layout is known yet" when there is none), and before the
** first keyboard event has been made there no key event is made on other
** threads: the keystroke fails with its "Failed to create ..." failure
** after
**     Keyboard: no keyboard event can be made on this thread until the main thread has made the first one
** A host whose main thread runs its event loop or dispatch_main, or that
** calls on the main thread (a main-queue block, a Swift @MainActor task),
** never waits for this.
** KEYBOARD LAYOUT: key codes stay the library's US key codes, each standing
** for what it types on a US layout (with Shift: "2" is "@").  The backend
** reads the current layout (TISCopyCurrentKeyboardLayoutInputSource and
** UCKeyTranslate, for the keyboard type of the event source, again whenever
** the layout changes) and posts every key event as the key and the Shift
** and Option that type that character in it, the event's other flags and
** its marker kept, carrying the character as the event's text: "y" is the
** German "z" key, "@" is Option-L under German, "1" is Shift and the "&" key
** under French.  A key sent with Command, Control or Option
** (zeblo_send_keystroke, the paste chord, global chords) goes to the key
** the layout types its character on, as a user of that layout presses the
** shortcut: Command-Z is Command and the German "z" key, the paste chord
** under Dvorak Command and the Dvorak "v" key, and a layout with Command
** keys of its own ("Dvorak - QWERTY Command") uses those.  A character the
** layout has only as a dead key, or not at all ("^", "`" and "~" under
** German, every letter under a layout without Latin letters), is typed on
** the US key carrying the character as its text
** (CGEventKeyboardSetUnicodeString), which most applications take as
** typed; a chord without a key for its character is sent as given.  Keys that type
** no character (Return, Tab, Space, arrows, function and modifier keys) are
** posted as they are.
** POSTING PERMISSION: at the start of every keystroke function the backend
** asks CGPreflightPostEventAccess; when the process may not post events, it
** logs
**     Keyboard: this process may not post keyboard events (System Settings > Privacy & Security > Accessibility); the system drops them
** and posts them regardless (the answer is whether they were posted).
** CHROMIUM: applications built on Chromium (Electron applications, Chrome
** and its kin, told by their frameworks) build their accessibility tree
** only when asked through "AXManualAccessibility".  The library asks once
** in such an application's life, before the first walk over its elements
** (its first "AXChildren" read: a menu snapshot, window text, a control
** lookup), never for a lookup or a wait, and that call pauses 0.2 s for the
** content to come.  The application keeps its tree from then on.
** ACTIVATION: option 2 (NSApplicationActivateIgnoringOtherApps) is
** deprecated from macOS 14, where Apple says it has no effect; on macOS 14
** and 15 it has been seen to bring applications forward all the same.
** Either way every activation is checked through the application's
** "AXFrontmost" (a host that is an application first yields its activation
** to it), and one that did not come forward within 0.05 s is asked again by
** setting "AXFrontmost"; it counts as refused when it is still not in front
** 0.05 s later (zeblo_focus_app then fails as for a refused activation;
** keystrokes are sent regardless, as their blocks say).  An application
** that cannot tell is taken at its word.
** PASTEBOARD: the text zeblo_paste_text puts on the pasteboard for the
** moment of the paste also carries the types
** "org.nspasteboard.TransientType" and "org.nspasteboard.AutoGeneratedType"
** (empty), by which clipboard managers know not to record it.  PRIVACY:
** from macOS 15.4 (in a build with the macOS 15.4 SDK or later) the system
** may ask the user, once, whether the host may read the pasteboard;
** zeblo_paste_text reads it (and so may make the system ask) unless the
** user has denied it for good in System Settings > Privacy & Security.  It
** refuses (see its block), leaving the pasteboard untouched, when reading is
** denied for good or the user declines when asked (the pasteboard lists
** types, and none of them can be read).
** WHAT IS KEPT, AND THE LOCKS: the table of the current keyboard layout
** (with the input source and keyboard type it was read for); whether the
** first keyboard event has been made; up to 64 applications launched and
** not yet listed by the workspace (dropped when they end); and for up to
** 256 processes whether they are built on Chromium and were asked for their
** tree.  Each is behind a lock of its own, held for no call to another
** process.  Log lines go to NSLog.
**
** LINUX: WHAT EACH FUNCTION DOES DIFFERENTLY
**
** Applications (every function that takes appName, zeblo_get_running_apps,
** zeblo_get_frontmost_info).  The running applications are those registered
** on the accessibility bus, in the registry's order, named by their
** accessible name, which for GTK applications is the program name (e.g.
** "l3afpad"); one whose process id the bus does not give is left out.  The
** list waits at most 250 ms (or the reply limit when shorter) for an
** application's name: one that does not answer in time is listed under the
** name it last gave, else its program name (the file name of its command
** from /proc), and later lists wait only 25 ms for it until it answers
** again.  No application is ever hidden.  An application with at least one
** window counts as regular (activation policy 0), one without as a
** background helper.  The frontmost application is the process of the X
** active window (_NET_ACTIVE_WINDOW and its _NET_WM_PID, so a window manager
** that sets them is needed); a process that is not on the bus is named by
** /proc/PID/comm.  Its focused window is its window in the active state,
** else its window titled like the X active window.
**
** What a user sees.  AT-SPI lists every element an application made, shown
** or not; the functions see what a window shows, as a macOS window's tree
** holds it.  Under a window, a child is kept when it is in the showing
** state (GTK 3, Qt, the browsers' own windows); inside a web page when it
** is in the visible state (a part scrolled out of view is still the
** page's); for GTK 4 (which sets showing on its windows only) when it is
** visible and, where it says, has a size (a stack's hidden page has none).
** So hidden buttons, stack pages not shown, background tabs and the items
** of closed menus are neither found, pressed, listed nor part of the
** window's text: pressing a button found only hidden fails with "Button
** 'NAME' not found in window".  The menus reached through the menu bar
** (zeblo_get_app_menus, zeblo_menu_click...) and a popup button's menu are
** seen whole, closed or not.  An element whose state cannot be read is
** kept.  GTK 4 names an element that has no name after its class
** ("GtkMenuButton", "AdwGizmo"): such a name is no title.
**
** Windows and controls.  An application's windows ("AXWindows") are its
** shown frames, dialogs, file choosers, alerts, color choosers and titled
** popup windows (for GTK 4, visible ones: it does not mark its dialogs
** showing), titled by their accessible name.  An application that does
** not answer within the reply limit has no window list at all (the log
** says so): zeblo_window_exists answers false, but
** zeblo_wait_for_window(condition 1) keeps waiting (and times out false)
** and zeblo_close_window answers false, since a silent application is not a
** gone one.  Roles: "AXButton" is a
** push button, "AXCheckBox" a check box or toggle button, "AXPopUpButton" a
** combo box without an entry (its "AXMenu" is its menu child),
** "AXTextField" / "AXTextArea" single- / multi-line text (a spin button is
** an "AXTextField" whose value is its text), "AXComboBox" a
** combo box with an entry, "AXSecureTextField" a password field,
** "AXStaticText" a label, "AXTextArea" an editable paragraph or document
** text (a word processor's), "AXGroup" a web page's paragraph, section or
** quote, "AXHeading" a heading (docs/linux-backend.md has the whole table).
** A
** table cell whose first action is "toggle" (a check box in a GTK tree
** view: a checklist) is an "AXCheckBox" checked by its checked state and,
** having no name of its own, titled by the first non-empty name among the
** other cells of its row.  GTK runs such a cell's action as an activation
** of its row, not as a toggle: the checklist changes only when the
** application toggles on row activation (as most do).  The
** menu bar of an application is that of its focused window, else of its
** first window that has one.
**
** Actions (zeblo_menu_click, zeblo_click_button, zeblo_click_checkbox,
** zeblo_get_popup_menu_items).  "AXPress" and "AXPick" both run the
** element's first action named click, press, activate, toggle, check or
** uncheck (in that order of preference, in any letter case).  An element
** without such an action is pressed through the nearest element of the
** same name inside it or around it that has one (GTK 4 nests a menu
** button's push button in another of the same name).  A check box without
** any action (GTK 4.8's) is toggled as a user would with the keyboard: its
** window is brought to the front, Tab moves the focus until it is on the
** check box (at most 64 times), and Space toggles it; true only once its
** checked state changed.  An insensitive (disabled) element and one
** without any of these refuse.  GTK runs actions asynchronously: true means
** the action was accepted; its effect may come after the call returns.
**
** zeblo_set_checkbox_value.  Only 0 and 1 are accepted; any other value
** fails with "Failed to perform click action".  The checkbox is pressed when
** its checked state differs from the value and left alone (true) when it
** already matches; an insensitive one refuses the press.
**
** zeblo_close_window.  The close button sends WM_DELETE_WINDOW to the
** process's X window whose title equals the window's, else to the one that
** covers the place on the screen where the accessibility bus puts the
** window (more than half of the two together, the window manager's frame
** included: an alert named "Warning" may be titled "Save Document?"), else
** to its only X window; a press succeeds when the request is sent.  The
** application may still keep the window (e.g. to ask about unsaved
** changes).
**
** zeblo_get_window_text.  A label gives its text as a value line
** ("[AXStaticText] TEXT"), not as a title.  Checkbox values are numbers and
** give no line.  A password field gives one U+2022 (BULLET) per character,
** never its text.  A block of a web page (paragraph, heading, section,
** quote, list item) gives the text kept on it as its value: Firefox keeps
** text on the block, one U+FFFC for each child inside it (a link), which
** is given as the child's name ("[AXGroup] A paragraph with a link inside
** it."); Chromium gives each run of text a child of its own, and the block
** then gives no value.  Menu items' titles lose the spaces GTK 3 pads them
** with.
**
** zeblo_get_app_menus.  "checked" is the item's checked state.  "cmdChar"
** and "cmdModifiers" come from the accelerator of the item's key binding
** (e.g. "<Primary>n" gives "N" and 0).  "cmdChar" is the character the X
** key name stands for where it has one ("plus" gives "+", "period" ".", a
** letter in upper case), "F1".."F12", "\n", "\t", "\b", "\x1b", "left",
** "right", "up", "down", "home", "end", "pageup", "pagedown" and
** "forwarddelete" for those keys.  Letters, digits, unshifted symbols, the
** function keys and the arrows go back to zeblo_send_keystroke as they
** stand; a shifted symbol ("+") is sent as its unshifted key with Shift,
** and the other keys by their key codes through
** zeblo_send_global_keystroke (Home 115, End 119, Page Up 116, Page Down
** 121, Forward Delete 117).  An item whose key is none of these (a
** keypad or media key, Insert) has no key equivalent.  The bits: 1 Shift, 2 Option
** (Alt), 4 Control (Super, Meta) and 8 no Command; Control and <Primary>
** count as Command, because the command flag is sent as Control.  Qt's key
** bindings ("Ctrl+Shift+W", "Ctrl++", "Ctrl+PgUp") give the same; Qt's
** stand-in for a missing shortcut, Alt and a letter of the item's title (its
** mnemonic), gives none.  An item with a submenu has neither.  Disabled items
** are listed with their key.
**
** Keyboard (zeblo_send_keystroke, zeblo_send_global_keystroke,
** zeblo_type_text, zeblo_paste_text and the Return of
** zeblo_paste_into_focused_field).  Key codes stay the library's US key
** codes (the macOS virtual key codes), and each stands for what that key
** types on a US keyboard: with Shift (asked for by the flags, or held by a
** Shift key event) a character key stands for its shifted character ("2"
** with Shift is "@").  The backend reads the active XKB keymap afresh for
** every key and presses, with XTest, the key, shift level and group that
** give that keysym, holding exactly the modifiers the level needs (Shift,
** ISO_Level3_Shift, i.e. AltGr) around it and lifting a held Shift the level
** does not want, so typed text and keystrokes give the same characters
** under any layout ("@" is AltGr+Q under "de", "1" is Shift+& under "fr",
** Command-Z presses the key that gives "z").  The active group is tried
** first, then the others (locked for the length of the key).  A character
** the layout has only as a dead key ("^", "`", "~" under "de") is typed as
** that dead key and a space.  No key is ever remapped: a keysym the layout
** cannot type is skipped with the log line
**     Keyboard: no key types 'KEYSYM' in the current layout; the key is skipped
** and the call still succeeds.  Other keys (Return, Tab, arrows, function
** keys) keep Shift as a modifier.  The flags become modifiers: Shift,
** Control AND Command are Control (so the command flag of a keystroke is
** sent as Control, and Command-V pastes), Option is Alt; they go down before
** a key goes down and up when it comes up.  The event marker of typed and
** global events is dropped: X11 events carry no such field.
** Events cannot fail to be made, so the "Failed to create ..." failures do
** not occur.
**
** Activation (zeblo_send_keystroke, zeblo_focus_app, zeblo_launch_app).  The
** activation options are ignored: the last managed window of the process
** (in _NET_CLIENT_LIST order) is sent a _NET_ACTIVE_WINDOW request, raised
** and, when it is viewable, given the input focus.  A process with no
** managed window cannot be activated (zeblo_focus_app then fails with
** AppError 2; zeblo_send_keystroke does not check).
**
** Launching (zeblo_launch_app, zeblo_focus_app with shouldLaunch).  "" is
** refused.  A running application of exactly that name is activated instead
** (the answer is the activation's).  Otherwise, so that the name zeblo
** apps lists (an application's accessible name, "Chromium" or "Application
** Example", rarely its program's) launches it too, the command is the Exec
** line (split at blanks, field codes such as %U dropped) of the first
** desktop entry, in applications/ under XDG_DATA_HOME (or ~/.local/share),
** then XDG_DATA_DIRS (or /usr/local/share:/usr/share), files in name order,
** Hidden ones passed over, whose Name or Name in the locale's language equals
** NAME, or whose file name without ".desktop", StartupWMClass or Exec
** program (without its directory) equals it ignoring ASCII case; else the
** executable of a process the application list showed under NAME earlier in
** this process (up to 256 names remembered); else NAME itself, looked up in
** PATH.  Of the desktop entries that name it, the first that is the
** program's main entry (its command is the program alone with at most the
** files to open, it is not NoDisplay and no settings dialog) wins over an
** earlier one that is not ("mousepad" starts the editor, not the entry
** that runs "mousepad --preferences").  It is started
** detached through the helper (see Processes: a session of its own, adopted
** by init, standard input, output and error on /dev/null).  True when the
** program could be executed (the call waits up to 2 s to know).
**
** Processes (zeblo_launch_app, zeblo_focus_app, zeblo_paste_text).  The
** library never forks the host process: it starts its helper executable,
** zeblo-helper, with posix_spawn (signals at their defaults and unblocked,
** standard input, output and error on /dev/null, none of the host's
** descriptors inherited).  The helper puts itself in a session of its own,
** leaves a child that init adopts and ends; the call waits for that first
** process (at most 1 s, then kills it), so nothing is left for the host to
** wait for.  The child runs the launched program or is the clipboard holder.
** The helper is, in this order: the path in the environment variable
** ZEBLO_HELPER (read at the first launch or paste); zeblo-helper in the
** library's own directory (the build tree); the installed
** LIBEXECDIR/zeblo/zeblo-helper (libexec/zeblo/ beside lib/), found from the
** library's directory, or from the program's when the library is linked
** into the program.  Without it, launching fails and restored clipboard
** contents are served only during this process's pauses.
**
** Pasteboard (zeblo_paste_text).  The pasteboard is the CLIPBOARD selection.
** The save asks its owner for TARGETS, then for each target listed, and
** keeps each one's bytes with its property type and format.  Each answer is
** awaited up to 1 s (large data comes in pieces, the ICCCM's INCR protocol,
** each piece within 1 s).  SKIPPED: the meta targets TARGETS, MULTIPLE,
** TIMESTAMP, DELETE, SAVE_TARGETS and INSERT_*; data that names a resource
** of the owner (types PIXMAP, BITMAP, DRAWABLE, WINDOW, COLORMAP); what is
** refused or late; and what is over the LIMITS: 16 MiB for one target,
** 64 MiB for all of them, and 3 s for the whole save (targets not asked for
** by then are lost).  An owner that does not answer TARGETS is asked for
** UTF8_STRING and STRING.  While pasting, this process owns CLIPBOARD with
** the text (offered as UTF8_STRING, text/plain;charset=utf-8, STRING, TEXT
** and text/plain) and answers requests during the call's pauses (0.01 s
** before and 0.05 s after the Control-V), and after them until an
** application has asked for the text's data since the Control-V (and 0.02 s
** more, for one that asks for several types in a row), or the reply limit
** has passed since the Control-V: then the line
**     Paste: no application asked for the pasted text within N ms of the paste key; the clipboard is restored all the same
** is logged.  (GTK 4 asks after the 0.05 s pause when busy, and pasted the
** restored contents before.)  Afterwards, when anything was saved, this process
** owns CLIPBOARD again with every saved target under its own name, type and
** format, byte for byte (data over about 256 KiB is sent in INCR pieces),
** and starts a CLIPBOARD HOLDER (see Processes), a process with its own
** display connection that is handed the saved targets, takes the selection
** and serves them after the call returns, until another client takes the
** selection, and then exits.  The call waits up to 2 s for the holder to own
** the selection, answering requests meanwhile.  When nothing was saved,
** CLIPBOARD is left without owner.
**
** Focus (zeblo_is_in_text_field, zeblo_paste_into_focused_field).  The
** focused element is one in the focused state and shown (as in "What a user
** sees") inside the focused window of the process of the X active window;
** of several (Qt marks a page tab and a viewport focused beside its editor,
** and keeps the focus of a closed combo box's list), the first focusable
** one, the nearest to the window first.  When that window
** shows nothing focused, the X input focus is moved to the root window and
** back and the question is asked again for up to about 0.16 s (a window with
** nothing focusable pays this on every such call).  "AXSearchField" does not
** occur.  Values are written through the EditableText interface, so only
** editable text fields take them; a focused, editable field without that
** interface (a web page's input in Chromium) takes a value only while it is
** empty, by typing it key by key (characters of the US key table only), and
** otherwise fails with the log line
**     setAXValue: the field's text cannot be replaced, only typed into while it is empty
** (erasing by keys brings Chromium down while accessibility is on).
**
** Permission (zeblo_paste_into_focused_field).  There is none: the process
** counts as trusted when the accessibility registry answers, and no prompt
** is shown.
**
** Log.  Lines go to syslog (LOG_INFO, the line as given, never a format), and
** also to standard error when the environment variable ZEBLO_LOG_STDERR is 1.
**
** LINUX: WAYLAND
**
** Elements, actions and values go through AT-SPI2 as under X11.  What X11
** gives otherwise comes from the compositor's own interfaces, per
** compositor:
**   - GNOME (mutter): keys and the clipboard through mutter's remote
**     desktop interface (org.gnome.Mutter.RemoteDesktop on the session bus),
**     which asks the user nothing.  Keys are keysyms that mutter types on
**     its current layout, holding Shift or AltGr as needed; a character the
**     layout has only as a dead key is typed as the dead key and a space,
**     one it lacks altogether is skipped with the Keyboard line of the
**     Keyboard paragraph above.  A window is activated through its toolkit
**     (AT-SPI's grab_focus on its frame) or else with mutter's Shift+Alt+Tab
**     until it is active; closed with the Close button of its client-side
**     title bar (GTK), else with Alt+F4 when it is the active window.
**   - sway and other wlroots compositors: keys through a virtual keyboard
**     (zwp_virtual_keyboard_v1) that carries the library's own keymap (the
**     US keys), so typed text is right whatever the user's layout; the
**     clipboard through data control (zwlr_data_control_manager_v1);
**     focusing and closing windows (sway) through sway's IPC (SWAYSOCK).
**   - KDE (KWin): keys through KWin's fake input (org_kde_kwin_fake_input),
**     which KWin announces only to programs the user trusts with it: a
**     desktop file (e.g. in ~/.local/share/applications) whose Exec is the
**     HOST's executable and whose X-KDE-Wayland-Interfaces lists
**     org_kde_kwin_fake_input.  KWin types key codes on its own layout (its
**     first one), so each character is looked up there and typed with the
**     Shift and AltGr keys its level needs; one the layout has only as a
**     dead key is the dead key and a space, one it lacks is skipped with the
**     Keyboard line above.  The clipboard through data control, windows as
**     under mutter.
**   - Elsewhere, the desktop portal's remote desktop
**     (org.freedesktop.portal.RemoteDesktop, e.g. xdg-desktop-portal-kde for
**     a host KWin does not trust), which ASKS THE USER: the first keyboard
**     call opens the portal's session and its dialog, waits at most the
**     reply limit for the answer, and, unanswered, fails after the line
**         Keyboard: the desktop portal (org.freedesktop.portal.RemoteDesktop) asks the user to allow this program to send keys; nothing is typed until the user allows it in the portal's dialog
**     later keyboard calls go through once the user has allowed it (a
**     refusal is logged, and the next keyboard call asks again).  Keys are
**     keysyms typed on the compositor's layout, as under mutter.  That
**     portal (version 1, Debian 12) gives no clipboard: zeblo_paste_text
**     fails after the line
**         Pasteboard: the desktop portal gives no clipboard (org.freedesktop.portal.RemoteDesktop version 1); nothing is pasted and the clipboard is left untouched
**     with the description "Pasteboard cannot be read without asking the
**     user".
**   - Compositors with none of these (weston), and KWin for a host without
**     that desktop file where no portal offers a remote desktop: no way to
**     send keys; every keyboard function fails after the line
**         Keyboard: no way to send keys in this Wayland session: ...
**     (saying what was looked for, and under KWin which program to allow),
**     and zeblo_paste_text leaves the clipboard untouched.
** The first call of the process (for the portal: the first keyboard call
** after the user allowed keys) pauses about 0.15 s while the applications
** take the new keyboard; under mutter it presses a keysym no key gives to
** make the keyboard (mutter logs "No keycode found for keyval 0").  The
** frontmost application is the process of the frame in the active state
** (sway: else sway's focused window).  A paste keeps the clipboard until
** an application asks for the text, as under X11 (a request for the data
** of the library's own selection after the Control-V; mutter's own copy of
** each new clipboard, taken as soon as it is set, does not count).
** Restored clipboard contents are served after a paste by the clipboard
** holder through the same interface (zeblo-helper hold wayland or hold
** mutter).  mutter keeps a copy of the text of every clipboard owner and
** offers it again when the clipboard is left without one: to leave the
** clipboard empty, the library first sets it to an owner that offers only
** the type application/x-zeblo-nothing, then clears it.  Kept from the
** first call on, beside the accessibility bus: one compositor connection,
** and under mutter a remote desktop session on a bus connection of its own
** (the portal's session, on its own connection, from the first keyboard
** call on).
**
** LINUX: WHAT IS KEPT, AND THE LOCK
**
**   - From the first call until the process ends: one X display connection
**     with an unmapped 1x1 window of its own (it owns CLIPBOARD during a
**     paste), libatspi's connection to the accessibility bus with its cache
**     of objects, a private GLib main context that libatspi dispatches the
**     bus's signals on (libatspi's method call timeout is set to the reply
**     limit, with no longer grace period for new applications; both are
**     process-wide settings of libatspi, which a host that uses libatspi
**     itself shares), and the last name, child count and answering state of
**     each registered application (forgotten when it leaves the registry),
**     with whether it was asked for its content (below); the executable of
**     each name the list showed (at most 256 names, for launching by name).  Opening the display installs, for the whole
**     process, an Xlib error handler that ignores every error (a window that
**     has gone away is not worth ending the host for); a host that uses Xlib
**     itself and needs its own handler installs it again after its first
**     call.
**   - What the library changes for the whole session, at its first call:
**     the accessibility switch org.a11y.Status.IsEnabled (session bus,
**     org.a11y.Bus, /org/a11y/bus) is set to true when it is false, and
**     left on.  Applications built on Chromium (Chromium, Electron
**     applications) join the accessibility bus only when the switch is on
**     as they start; one already running without it cannot be read, and
**     the first call logs for each such main process
**         PROGRAM (process PID) started while accessibility was off and cannot be read: restart it
**     Applications the library launches also get ACCESSIBILITY_ENABLED=1
**     and QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 in their environment.
**   - Each registered application is asked once, when the list first sees
**     it answer, for its root object's attributes (GetAttributes): that is
**     what makes Chromium expose a page's content.  When one of them is
**     built on Chromium (its toolkit name says so), the call that asked
**     pauses 0.2 s, once in that application's life, for the content to come.
**   - One lock for the process (a recursive mutex) around libatspi and Xlib,
**     which are not thread-safe.  It is held by each step of the backend
**     (an attribute read, an action, a key event, a workspace or clipboard
**     operation, a log line, the release of an element), not for a whole
**     call; a pause takes it in slices of at most 10 ms and answers
**     CLIPBOARD requests in each.  A step waiting for a slow application
**     (at most the reply limit) holds up the other threads' steps.
**   - Looking an application up first runs up to 10,000 non-blocking
**     iterations of the library's private main context on the calling
**     thread, to handle queued accessibility-bus signals.  The host's own
**     GLib main contexts are never iterated.
**   - After a paste that saved anything, the clipboard holder process
**     (above), which is not a child of the host.
**   - Nothing else: element handles, the bulk reads of a walk
**     (docs/linux-backend.md) and key events die before the call returns,
**     and the modifier keys the library pressed are released with the key.
*/

#ifdef __cplusplus
extern "C" {
#endif

/* =========================================================================
** MENUS
** In all of these, appName is matched exactly: the first running
** application, in the workspace's order, whose name equals appName (case and
** spaces count; canonically equivalent Unicode forms count as equal); NULL /
** "" means the frontmost application.  A menu path is the titles from the
** menu bar down, e.g. {"File", "Save"}, each compared whole and exactly in
** the same way; NULL entries are skipped.  Where a level holds one single
** untitled item ("" or "(no title)"), that container's own items are
** searched instead, with the diagnostic line
**     Skipping container layer, searching in its children
** Nothing opens a menu, presses an intermediate item or waits.
** The errors are MenuError (see CONVENTIONS): 4 empty path (checked first,
** before the application is looked up), 2 no frontmost application, 0 no
** application of that name, 3 no readable menu bar, 1 a title not found at
** its level, 5 the item refused to be chosen.
** ========================================================================= */

/*
** zeblo_get_app_menus: the whole menu bar of an application.
**
** appName  optional; exact name, or NULL / "" for the frontmost application.
**
** Returns a pretty-printed JSON object (two blanks of indentation per level,
** one member or element per line, " : " between a key and its value, an
** empty array written as []):
**   { "app" : NAME, "menus" : [ ITEM, ... ] }
**   ITEM = { "title" : string   ("(no title)" when the item gives no text),
**            "path" : [ titles of the ancestors, from the menu bar item
**                       down to the parent; [] for a menu bar item ],
**            "enabled" : bool   (true when the item does not say),
**            "checked" : bool   (the item shows a mark),
**            "cmdChar" : string        (only when the item has a key
**                                       equivalent),
**            "cmdModifiers" : integer  (only when the item reports one:
**                                       1 Shift, 2 Option, 4 Control,
**                                       8 no Command),
**            "children" : [ ITEM, ... ] (only when the item has a submenu;
**                                       never empty) }
** The members come in that order.  NAME is appName as given, or the
** frontmost application's name ("Unknown" when it has none).  Below a single
** untitled container item its items are listed directly.  The whole tree is
** read, however deep; an item that is the same element as one of its
** ancestors or the menu bar (a submenu that leads back up, see CONVENTIONS)
** is left out, so the snapshot is that of the tree without the looping
** entry.  A menu bar that gives no item list at all gives the one-line text
** {"app": "NAME", "menus": []}; an empty item list gives the pretty
** layout.
**
** On failure: an error object with MenuError 2, 0 or 3.  Fallback "{}".
** Writes no failure line.  Diagnostic lines: for every item, one line
**     MenuItem 'TITLE' has attribute: NAME
** per attribute whose name contains "command" or "action" in any case (the
** standard menu item attributes, such as "AXMenuItemCmdChar", do not; on
** Linux no item has such an attribute, so no such line is written).
** Free the result with zeblo_free_string().
** Linux: see PLATFORMS, zeblo_get_app_menus.
*/
ZEBLO_API const char *zeblo_get_app_menus(const char *appName);

/*
** zeblo_menu_click: choose a menu item by its path of titles.
**
** appName        optional; exact name, or NULL / "" for the frontmost app.
** menuPath       the titles from the menu bar down, e.g. {"File", "Save"};
**                NULL, or a count of 0 or less, is the empty path.
** menuPathCount  number of entries in menuPath.
**
** Performs "AXPress" on the item, or "AXPick" when the press is refused.
** Returns true when the item accepted one of them.  A press or pick that
** gets no reply (kAXErrorCannotComplete: an item that opens a modal dialog
** holds its reply) counts as accepted, and nothing follows it.  On failure
** returns false and logs "zeblo_menu_click error: " and the description of
** MenuError 4, 2, 0, 3, 1 or 5.  Before a 5, when the item's actions can be
** read, it logs
**     Menu item execute failed. Available actions (N):
** and one line per action: two blanks and the action's name.
** Linux: a disabled item refuses (5); the action runs asynchronously.
*/
ZEBLO_API bool zeblo_menu_click(const char *appName, const char *const *menuPath,
                                int32_t menuPathCount);

/*
** zeblo_menu_item_exists: whether a menu path leads to an item.
**
** Arguments as zeblo_menu_click.  Nothing is pressed.
**
** Returns true when every title of the path is found, enabled or not.
** Returns false for an empty path, no such application, no frontmost
** application, no menu bar, a title not found, or any other failure.  Quiet:
** no failure line (only the container diagnostic line of MENUS).
*/
ZEBLO_API bool zeblo_menu_item_exists(const char *appName, const char *const *menuPath,
                                      int32_t menuPathCount);

/*
** zeblo_menu_item_enabled: whether the item at a menu path is enabled.
**
** Arguments as zeblo_menu_click.  Nothing is pressed.
**
** Returns true only when the item is found (as zeblo_menu_item_exists) and
** its "AXEnabled" reads as true.  Returns false when it is disabled, cannot
** be found, does not report its state as a boolean, or on any other failure.
** Quiet: no failure line (only the container diagnostic line of MENUS).
** Linux: enabled is the item's sensitive state.
*/
ZEBLO_API bool zeblo_menu_item_enabled(const char *appName, const char *const *menuPath,
                                       int32_t menuPathCount);

/* =========================================================================
** KEYBOARD AND TEXT
** Key events are posted at the HID event tap, where hardware events enter,
** so they go to whatever has the keyboard focus when they arrive.  Keys are
** named by the virtual key codes of a US keyboard, each standing for what it
** types on a US layout; the backend presses the keys of the current layout
** that type the same (PLATFORMS, macOS, KEYBOARD LAYOUT).  A true answer
** means the events were posted, not that an application took them.
** Keystroke failures are errors whose description is the text given in each
** block.  Linux: see PLATFORMS, Keyboard.
** ========================================================================= */

/*
** zeblo_send_keystroke: press one key, with modifiers, in an application.
**
** appName    optional; exact name (the first running application whose name
**            equals it; case counts, canonically equivalent forms are
**            equal), or NULL / "" for the frontmost application.
** keyChar    required; the whole text, fully lower-cased, names the key
**            (nothing is trimmed): a letter a-z, a digit, one of
**            ` - = [ ] \ ; ' , . /  a space, "\t" (Tab), "\n" (Return),
**            "\b" (Delete, i.e. backspace), "\x1b" (Escape), "f1".."f12",
**            "left", "right", "up", "down".  No other text names a key:
**            "return", "home", "pageup" and the shifted symbols ("!", "+")
**            fail; a shifted symbol is its unshifted key with bit 0 of
**            modifiers ("!" is "1" with Shift).  "\r" is not Return.
** modifiers  bit 0 Shift, bit 1 Control, bit 2 Option, bit 3 Command;
**            other bits are ignored.
**
** The key is checked first, then the application is looked up and
** activated (plain activation; its answer is not examined), and 0.05 s later
** the key goes down and up.  Both events carry exactly the chosen modifier
** flags (none when none is chosen, whatever keys are held), come from no
** event source and are not marked.
**
** Returns true when both events were posted.  On failure returns false and
** logs "zeblo_send_keystroke error: " and one of
**   "Invalid key character: KEY"       (KEY as given)
**   KeystrokeError 0 (no application of that name) or 1 (no frontmost
**   application), with the generic description
**   "Failed to create key down event", "Failed to create key up event"
** Linux: activation as in PLATFORMS, Activation; Command is sent as Control.
*/
ZEBLO_API bool zeblo_send_keystroke(const char *appName, const char *keyChar, int32_t modifiers);

/*
** zeblo_send_global_keystroke: press a chord of raw virtual key codes into
** whatever has the keyboard focus.
**
** keyCodes       the codes, pressed down in order, then released in reverse
**                order.
** keyCodesCount  number of codes; 0 presses nothing (and succeeds when an
**                event source can be made).
** modifierFlags  event flag mask; only Shift 0x20000, Control 0x40000,
**                Option 0x80000 and Command 0x100000 are kept.  When any of
**                them is given, every event carries exactly those flags;
**                with none, the events keep the flags their source gives
**                them (the modifier keys held at that moment).
**
** The events come from a new event source in the HID system state, and
** every one carries the marker 0x5A45424C4F ("ZEBLO" in ASCII) in event
** field 127, so that an event tap can tell them from the user's.
**
** Returns true when all events were posted.  On failure returns false and
** logs "zeblo_send_global_keystroke error: " and one of
**   "Failed to create event source"                      (nothing pressed)
**   "Failed to create key down event for keycode N"
**   "Failed to create key up event for keycode N"
** (after the last two, the events before have been posted: keys may be
** left down).
** Linux: no marker; the flags are pressed as modifier keys; codes without a
** keysym are skipped (PLATFORMS, Keyboard).
*/
ZEBLO_API bool zeblo_send_global_keystroke(const uint16_t *keyCodes, int32_t keyCodesCount,
                                           uint64_t modifierFlags);

/*
** zeblo_type_text: type text key by key, as on a US keyboard, into whatever
** has the keyboard focus.
**
** text        required; typed one user-perceived character (extended
**             grapheme cluster) at a time.  97 characters can be typed: the
**             printable ASCII characters U+0020 to U+007E, tab and line feed
**             (Return).
** markEvents  put the marker 0x5A45424C4F in event field 127 of every event.
**
** Letters, digits and unshifted symbols are one key press whose events keep
** the flags of their source.  Upper-case letters and the 21 shifted symbols
** ! @ # $ % ^ & * ( ) _ + { } | : " < > ? ~ are typed as the Shift key
** (code 56) down, the unshifted key down and up carrying exactly the Shift
** flag, and Shift up.  Each character is followed by a 0.005 s pause.  The
** events come from a new event source in the HID system state, made first
** (so an empty text fails too when none can be made).
**
** Returns true when the whole text was typed.  Stops at the first character
** that cannot be typed (e.g. "\r", CR LF, "\x08", an accented letter, an
** emoji); the characters before it have been typed.  On failure returns
** false and logs "zeblo_type_text error: " and one of
**   "Unsupported character: 'C'"          (C the character as given)
**   "Failed to create event source"       (nothing typed)
**   "Failed to create shift down event", "Failed to create key down event",
**   "Failed to create key up event", "Failed to create shift up event"
** Linux: no marker; each character is typed on the active layout's key for
** it, with that key's modifiers (PLATFORMS, Keyboard).
*/
ZEBLO_API bool zeblo_type_text(const char *text, bool markEvents);

/*
** zeblo_paste_text: paste any text into whatever has the keyboard focus,
** through the general pasteboard, and put the pasteboard back.
**
** text  required; any characters.
**
** Steps: every (type, data) pair of every pasteboard item whose data can be
** read is saved; the pasteboard is cleared and given the text as
** "public.utf8-plain-text"; pause 0.01 s; Command-V (key code 9, down and
** up, each carrying exactly the Command flag and the marker 0x5A45424C4F in
** field 127, from a new HID-state event source); pause 0.05 s; the pasteboard
** is cleared and, when anything was saved, every saved pair is written back
** on ONE item, in saved order (several items come back as one).  Takes at
** least 0.06 s.  Whether the focused application pasted is not known.
**
** Returns true when Command-V was posted.  On failure returns false and logs
** "zeblo_paste_text error: " and one of
**   "Failed to create event source", "Failed to create Cmd+V key down",
**   "Failed to create Cmd+V key up"
** and the pasteboard then holds the text alone: the saved contents are lost;
** or, before anything is written, when the pasteboard may not be read
** (macOS 15.4 and later: denied for good, or declined when the system asked;
** see PLATFORMS, macOS, PASTEBOARD), after the line
**   Pasteboard: this application may not read the pasteboard (System Settings > Privacy & Security)
** or
**   Pasteboard: the pasteboard could not be read (the user did not allow it)
** with the description
**   "Pasteboard cannot be read without asking the user"
** and the pasteboard is left exactly as it was.
** Linux: the CLIPBOARD selection, every target is saved and restored
** within limits, Control-V, and a clipboard holder process serves the
** restored contents after the call (PLATFORMS, Pasteboard and Processes).
*/
ZEBLO_API bool zeblo_paste_text(const char *text);

/*
** zeblo_paste_into_focused_field: set the value of the focused text field
** directly (no keystrokes, pasteboard untouched), then optionally press
** Return.
**
** text       required; becomes the field's whole value.
** sendEnter  press Return (key code 36, down and up, marked, from a new
**            HID-state event source) once the value is set; a Return that
**            cannot be made is not reported.
**
** First asks the system whether the process is trusted, with the prompt
** option: the first time, macOS may show its dialog offering to open the
** accessibility settings.  Then takes the focused element (the system-wide
** element's "AXFocusedUIElement") and sets its "AXValue" when its role is
** "AXTextField", "AXTextArea" or "AXSecureTextField" (password fields
** included) and the value is settable.  When that fails, its direct
** children are tried in order (never their children).  Diagnostic lines, for
** each element tried:
**   setAXValue: Could not get role
**   setAXValue: Skipping role 'ROLE' - not a text field
**   setAXValue: Found text field with role 'ROLE'
**   setAXValue: AXValue is not settable for role: ROLE
**   setAXValue: Successfully set AXValue for role: ROLE   (also when the
**                            write got no reply: kAXErrorCannotComplete)
**   setAXValue: Failed with error code N for role: ROLE
**
** Returns true when an element took the value.  On failure returns false and
** logs "zeblo_paste_into_focused_field error: " and one of
**   "Accessibility permission not granted"
**   "Could not get focused element: N"   (N the accessibility result code
**                                         of the read, 0 when it succeeded
**                                         without giving an element)
**   "Could not set value on focused element"
** Linux: no permission and no prompt; the focus and the writing of values as
** in PLATFORMS, Focus.
*/
ZEBLO_API bool zeblo_paste_into_focused_field(const char *text, bool sendEnter);

/* =========================================================================
** WINDOWS AND CONTROLS
** Applications.  appName NULL / "" means the frontmost application ("No
** frontmost application" when there is none).  Otherwise the first running
** application whose name equals appName byte for byte, anywhere in the
** workspace's order, is taken; failing that, the first whose name matches
** loosely ("Application 'NAME' not found. Check if the app is running.").
** (zeblo_get_window_titles matches loosely only.)
**
** Loose match.  Both texts are fully lower-cased and stripped of white
** space; they match when they are then equal, or when the text found on the
** desktop contains the wanted text as a run of whole characters (canonically
** equivalent forms counting as equal).  An empty wanted text matches only a
** found text that is empty or all white space.
**
** Windows.  windowName NULL / "" means the application's first window, in
** the order of its "AXWindows" list.  Otherwise the first window whose title
** matches windowName loosely is taken; windows whose title cannot be read are
** passed over.  Not found: "Window 'NAME' not found. Check if the window
** exists and is visible." (NAME "<focused>" for the first window).
**
** Controls.  A control is the first element, in pre-order (document order),
** of the wanted role whose title matches the given name loosely, searched in
** the window itself and its descendants down to 49 levels below it.  A
** child list longer than 9,999 elements is not entered, a child that is the
** same element as one the walk is inside is left out, and an attribute that
** cannot be read counts as absent (a read without a reply included).  Walks
** that collect (button titles, text lines) visit no further element once
** 1,000 results are collected.
**
** WINDOW LOOKUP LOG LINES.  Every function that looks a window up writes
** these diagnostic lines for each lookup, once the application is found, in
** this order and as far as the lookup gets (CODE is the accessibility result
** code of reading "AXWindows", 0 for success; the texts name macOS calls on
** every platform):
**   getWindow: Getting windows for app with PID N
**   getWindow: Calling AXUIElementCopyAttributeValue for kAXWindowsAttribute
**   getWindow: AXUIElementCopyAttributeValue result = CODE
** then, when the read failed (window not found)
**   getWindow: Failed to get windows attribute, result = CODE
** or, when it gave no list (window not found)
**   getWindow: windowsRef is nil
** or else
**   getWindow: Got windowsRef, casting to CFArray
**   getWindow: Getting array count
**   getWindow: Found N windows
**   getWindow: No windows found                     (when N is 0: not found)
** then, for a named window,
**   getWindow: Searching for window named 'NAME'
**   getWindow: Window I pointer is nil, skipping    (for each null entry)
**   getWindow: Found matching window 'TITLE'
** or, when none matches (not found),
**   getWindow: No matching window found for 'NAME'
** or, for the first window,
**   getWindow: Getting first window (focused)
**   getWindow: First window pointer is nil          (not found)
** or
**   getWindow: Using Unmanaged to get window reference
**   getWindow: Returning first window
** The functions that look a window up are zeblo_click_button,
** zeblo_click_checkbox, zeblo_set_checkbox_value, zeblo_get_window_buttons,
** zeblo_get_popup_menu_items, zeblo_get_window_text, zeblo_window_exists,
** zeblo_wait_for_window (conditions 0 and 1, at every poll) and
** zeblo_close_window (at every attempt and check).  The lines are written on
** success and failure alike, by the quiet functions too.
** ========================================================================= */

/*
** zeblo_click_button: press a button of a window.
**
** appName     optional; see WINDOWS AND CONTROLS.
** windowName  optional; see WINDOWS AND CONTROLS.
** buttonName  required; the title of a button (role "AXButton"), matched
**             loosely.
**
** Performs "AXPress" on the button, or "AXPick" when the press is refused.
** Returns true when the button accepted one of them; a press or pick without
** a reply (kAXErrorCannotComplete: a button that opens a modal dialog holds
** its reply) counts as accepted, and nothing follows it.  On failure returns
** false and logs "zeblo_click_button error: " and one of the window errors
** "No frontmost application", "Application 'NAME' not found. ...", "Window
** 'NAME' not found. ...", "Button 'NAME' not found in window", or "Failed to
** perform click action" (both actions refused).  Also writes the window
** lookup log lines.
** Linux: a disabled button refuses; the press runs asynchronously.
*/
ZEBLO_API bool zeblo_click_button(const char *appName, const char *windowName,
                                  const char *buttonName);

/*
** zeblo_click_checkbox: press (toggle) a checkbox of a window.
**
** appName       optional; see WINDOWS AND CONTROLS.
** windowName    optional; see WINDOWS AND CONTROLS.
** checkboxName  required; the title of a checkbox (role "AXCheckBox"),
**               matched loosely.
**
** Performs "AXPress" on the checkbox (there is no "AXPick" fallback); what
** the press does to its state is the application's business.
** Returns true when the checkbox accepted the press, or gave no reply to it
** (kAXErrorCannotComplete: delivered, not pressed again).  On failure returns
** false and logs "zeblo_click_checkbox error: " and one of the application
** and window lookup errors, "Checkbox 'NAME' not found in window", or
** "Failed to perform click action".  Also writes the window lookup log
** lines.
** Linux: check boxes and toggle buttons; a disabled one refuses.
*/
ZEBLO_API bool zeblo_click_checkbox(const char *appName, const char *windowName,
                                    const char *checkboxName);

/*
** zeblo_get_window_buttons: the titles of all titled buttons of a window.
**
** appName     optional; see WINDOWS AND CONTROLS.
** windowName  optional; see WINDOWS AND CONTROLS.
**
** Returns a JSON array of the non-empty titles of the window's buttons (role
** "AXButton"), in pre-order, duplicates kept, at most 1,000, e.g.
** ["OK","Cancel"].  On failure returns an error object with a SHORTER text
** than the other functions': {"error": "Application 'NAME' not found"},
** {"error": "Window 'NAME' not found"} or {"error": "No frontmost
** application"}.  Fallback "[]" (also when memory runs out while logging).
**
** Writes no failure line, but these diagnostic lines, in order (APP and
** WINDOW as given, "" for NULL):
**   zeblo_get_window_buttons called
**   Calling WindowOps.getWindowButtons(app: 'APP', window: 'WINDOW')
**   getWindowButtons called: app=APP, window=WINDOW
**   Got app: NAME                     (the application's name, or "unknown")
**   About to call getWindow...
**   (the window lookup log lines)
**   getWindow threw error: CASE       (window not found)
**   Successfully got window
**   Got window, collecting buttons...
**   getAllButtons: Starting collection
**   getAllButtons: Calling collectElements
**   collectElements: Found button 'TITLE'      (for each button)
**   collectElements: Hit max recursion depth   (each time the walk would go
**                                               below 49 levels)
**   collectElements: Hit max results count     (each element not visited
**                                               once 1,000 are collected)
**   getAllButtons: Collection complete, found N buttons
**   Found N buttons
**   Successfully got N buttons, serializing to JSON
**   Returning JSON: TEXT
** and, on failure, "WindowError caught: CASE", where CASE names the error
** and its name, e.g. appNotFound("Nope"), windowNotFound("<focused>") or
** noFrontmostApp (an unforeseen error logs "Unexpected error: ..." and gives
** an error object with its description).
** Free the result with zeblo_free_string().
*/
ZEBLO_API const char *zeblo_get_window_buttons(const char *appName, const char *windowName);

/*
** zeblo_set_checkbox_value: write a number into a checkbox's value.
**
** appName       optional; see WINDOWS AND CONTROLS.
** windowName    optional; see WINDOWS AND CONTROLS.
** checkboxName  required; the title of a checkbox (role "AXCheckBox"),
**               matched loosely.
** value         written into the checkbox's "AXValue" as a number, as it
**               stands (0, 1, 2...), even when the checkbox holds it already.
**
** Returns true when the checkbox accepted the value, or gave no reply to the
** write (kAXErrorCannotComplete: delivered).  On failure returns false and
** logs "zeblo_set_checkbox_value error: " and one of the application and
** window lookup errors, "Checkbox 'NAME' not found in window", or "Failed to
** perform click action" (the value was refused).
** Also writes the window lookup log lines.
** Linux: only 0 and 1; the checkbox is pressed when its state differs
** (PLATFORMS, zeblo_set_checkbox_value).
*/
ZEBLO_API bool zeblo_set_checkbox_value(const char *appName, const char *windowName,
                                        const char *checkboxName, int32_t value);

/*
** zeblo_get_popup_menu_items: open a popup button and list its menu's items.
**
** appName     optional; see WINDOWS AND CONTROLS.
** windowName  optional; see WINDOWS AND CONTROLS.
** popupName   required; the title of a popup button (role "AXPopUpButton"),
**             matched loosely.
**
** Performs "AXPress" on the popup button (its answer is not examined),
** pauses 0.05 s, then reads its menu: the popup's "AXMenu", else its first
** child of role "AXMenu".  The menu is left open.
** Returns a JSON array of the non-empty titles of the menu's direct children
** (submenus are not entered), e.g. ["Small","Medium","Large"], or [] when
** no menu is found.  On failure returns an error object: an application or
** window lookup error, or {"error": "Button 'NAME' not found in window"}
** when no popup button matches (it is reported as a button).  Fallback "[]".
** Writes no failure line; writes the window lookup log lines.
** Free the result with zeblo_free_string().
*/
ZEBLO_API const char *zeblo_get_popup_menu_items(const char *appName, const char *windowName,
                                                 const char *popupName);

/*
** zeblo_get_window_text: all text a window shows, as labelled lines.
**
** appName     optional; see WINDOWS AND CONTROLS.
** windowName  optional; see WINDOWS AND CONTROLS.
**
** Walks the window and its descendants in pre-order (with the limits of
** WINDOWS AND CONTROLS) and gives, for each element, with ROLE its "AXRole"
** ("Unknown" when it has none), these lines in this order:
**   "[ROLE] VALUE"               its "AXValue" when that is non-empty text
**   "[ROLE Title] TITLE"         its non-empty "AXTitle", unless a line
**                                collected so far contains it
**   "[ROLE Description] TEXT"    its non-empty "AXDescription", likewise
** e.g. "[AXStaticText] Saved", "[AXButton Title] OK", "[AXImage
** Description] Warning".  "Contains" is byte for byte, case-sensitive, in
** any earlier line of the whole window, its label included.  Values that
** are not text (numbers, such as a checkbox's) give no line.  No element is
** visited once 1,000 lines are collected, so there are at most 1,002.
** Returns a JSON array of the lines.  On failure returns an error object (an
** application or window lookup error).  Fallback "[]".  Writes no failure
** line; writes the window lookup log lines.
** Free the result with zeblo_free_string().
** Linux: see PLATFORMS, zeblo_get_window_text.
*/
ZEBLO_API const char *zeblo_get_window_text(const char *appName, const char *windowName);

/* =========================================================================
** APPLICATIONS
** ========================================================================= */

/*
** zeblo_get_frontmost_info: the frontmost application and its focused window.
**
** Returns {"app":"NAME","window":"TITLE"}: the frontmost application's name
** and the title of its focused window ("AXFocusedWindow"), each "" where
** unknown.  When no application is in front, returns the error object of
** AppError 1.  Fallback "{}".  Logs nothing.
** Free the result with zeblo_free_string().
** Linux: the process of the X active window (PLATFORMS, Applications).
*/
ZEBLO_API const char *zeblo_get_frontmost_info(void);

/*
** zeblo_get_running_apps: the names of the running applications.
**
** Returns a JSON array of strings in the workspace's order, background and
** hidden applications included, a name as often as applications of that
** name run; applications without a name, or with "", are left out.  "[]" at
** worst, never an error object.  Logs nothing.
** Free the result with zeblo_free_string().
** Linux: the applications on the accessibility bus, by program name.
*/
ZEBLO_API const char *zeblo_get_running_apps(void);

/*
** zeblo_focus_app: bring an application to the front and wait for a window.
**
** appName       optional; matched loosely (see WINDOWS AND CONTROLS) against
**               the running applications that are visible (not hidden) and
**               regular (activation policy 0); the first in the workspace's
**               order wins, even over an exact match later in it.  NULL / ""
**               does nothing and returns true.
** windowName    optional; see timeout.
** shouldSwitch  activate the application (with the option "ignoring other
**               apps"); a refusal is AppError 2.
** shouldLaunch  when no visible, regular application matches: ask the
**               system to launch appName as given (as zeblo_launch_app),
**               pause 0.5 s, then take the first application of any state
**               whose name matches loosely.  Without it, or when the launch
**               is refused or still nothing matches: AppError 0.
** timeout       milliseconds.  When windowName is neither NULL nor "" and
**               timeout is 1 or more, polls until the time is out: checks
**               that the frontmost application's name matches appName
**               loosely and its focused window's title matches windowName
**               loosely, then pauses 0.05 s; the time is checked before
**               every check.  A window that never comes is not an error.
**
** Returns true unless the application cannot be found or activated.  On
** failure returns false and logs "zeblo_focus_app error: " and the
** description of AppError 0 or 2.
** Linux: a regular application is one with a window; none is hidden;
** activation and launching as in PLATFORMS.
*/
ZEBLO_API bool zeblo_focus_app(const char *appName, const char *windowName, bool shouldSwitch,
                               bool shouldLaunch, int32_t timeout);

/*
** zeblo_launch_app: ask the system to launch an application by name.
**
** appName  required; an application's name (with or without ".app",
**          the name it is installed under or the name the list of running
**          applications shows) or a full path (PLATFORMS, macOS,
**          LAUNCHING).  An application that already runs is brought to the
**          front.
**
** Only the request: no lookup, no activation of its own; the call waits for
** the system's answer at most the reply limit.  Returns true when the system
** opened the application or has not answered within that time.  On failure
** returns false and logs "zeblo_launch_app error: " and the description of
** AppError 3, after the launch's own line (PLATFORMS, macOS, LAUNCHING).
** Linux: "" fails; see PLATFORMS, Launching.
*/
ZEBLO_API bool zeblo_launch_app(const char *appName);

/*
** zeblo_is_in_text_field: whether the keyboard focus is in a text field.
**
** Returns true when the element with the keyboard focus (the system-wide
** element's "AXFocusedUIElement") has the role "AXTextField",
** "AXTextArea", "AXComboBox" or "AXSearchField".  A password field
** ("AXSecureTextField") does not count.  Returns false otherwise and on any
** failure (nothing has focus, the role cannot be read, no permission).
** Quiet: logs nothing.  Shows no permission prompt.
** Linux: the focus as in PLATFORMS, Focus (can take about 0.16 s).
*/
ZEBLO_API bool zeblo_is_in_text_field(void);

/* =========================================================================
** WINDOWS, CONTINUED
** ========================================================================= */

/*
** zeblo_window_exists: whether the application runs and has the window.
**
** appName     optional; see WINDOWS AND CONTROLS.
** windowName  optional; NULL / "" asks whether the application has any
**             (first) window.
**
** Returns true when the application and the window are both found.  Returns
** false on any failure.  Quiet: no failure line, but writes the window lookup
** log lines.
*/
ZEBLO_API bool zeblo_window_exists(const char *appName, const char *windowName);

/*
** zeblo_get_window_titles: the titles of an application's windows.
**
** appName  optional; matched LOOSELY only (the first match in the
**          workspace's order), NULL / "" meaning the frontmost application.
**
** Returns a JSON array of the titles in the order of the application's
** "AXWindows" list, an empty title kept as "", e.g. ["Inbox","Untitled",""];
** windows whose title cannot be read as text are left out.  "[]" for every
** failure (no such application, no window list, more than 9,999 windows),
** never an error object.  Logs nothing.
** Free the result with zeblo_free_string().
*/
ZEBLO_API const char *zeblo_get_window_titles(const char *appName);

/*
** zeblo_wait_for_window: wait, polling every 0.05 s, for a condition.
**
** appName     optional; see WINDOWS AND CONTROLS.
** windowName  optional; see WINDOWS AND CONTROLS.
** condition   0: the window exists (as zeblo_window_exists);
**             1: it does not: the window or its application is gone (or
**                was never there; any lookup failure counts, except one
**                where the application gave no reply to reading its
**                windows or a window's title: kAXErrorCannotComplete);
**             2: the window is in front: the frontmost application's name
**                matches appName loosely (or appName is NULL / "") and the
**                title of its focused window matches windowName loosely (or
**                windowName is NULL / "").
**             Any other value returns false at once.
** timeout     milliseconds; 0 or less returns false without checking.
**
** Checks at once, then after every 0.05 s pause until the time is out; no
** check follows the pause on which the time ran out.  Returns true when the
** condition held at a check, false otherwise.  Quiet: no failure line;
** conditions 0 and 1 write the window lookup log lines at every check.
*/
ZEBLO_API bool zeblo_wait_for_window(const char *appName, const char *windowName,
                                     int32_t condition, int32_t timeout);

/*
** zeblo_close_window: press a window's close button.
**
** appName       optional; see WINDOWS AND CONTROLS.
** windowName    optional; see WINDOWS AND CONTROLS.
** retryTimeout  negative: one attempt.  0 or more: milliseconds of rounds
**               (see below); 0 only checks, once, that the window is gone.
**
** An attempt looks the window up, reads its close button ("AXCloseButton")
** and performs "AXPress" on it; whether the window then goes is not checked.
** With one attempt: returns true when the press was accepted or got no
** reply (kAXErrorCannotComplete: delivered, the window may be asking a
** question); on failure returns false and logs "zeblo_close_window error: "
** and an application or window lookup error, or "Failed to close window"
** (no close button, or the press refused).
** With a retry timeout: each round first looks the window up and returns
** true when that fails (the window or its application is gone, and equally
** when it never existed, e.g. a misspelled name); otherwise it makes one
** attempt (a failed attempt is tried again in the next round) and pauses
** 0.1 s.  A lookup where the application gave no reply (as for
** zeblo_wait_for_window) is neither success nor an attempt: the round only
** pauses.  When the time is out the window is looked up once more: true when
** it is gone, else false with the line "zeblo_close_window error: Operation
** timed out".
** Writes the window lookup log lines (twice per round).
** Linux: the press asks the window to close (PLATFORMS, zeblo_close_window).
*/
ZEBLO_API bool zeblo_close_window(const char *appName, const char *windowName,
                                  int32_t retryTimeout);

/* =========================================================================
** MEMORY
** ========================================================================= */

/*
** zeblo_free_string: release a string returned by any function above.
**
** ptr  a string returned by zeblo_get_app_menus, zeblo_get_window_buttons,
**      zeblo_get_popup_menu_items, zeblo_get_window_text,
**      zeblo_get_frontmost_info, zeblo_get_running_apps or
**      zeblo_get_window_titles, or NULL (which does nothing).
**
** Each string must be released exactly once, and nothing else may be passed.
** May be called from any thread.  Logs nothing.
*/
ZEBLO_API void zeblo_free_string(const char *ptr);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZEBLO_ZEBLO_H */
