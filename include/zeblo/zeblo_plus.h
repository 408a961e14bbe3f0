/*
** ZEBLOui Plus: the 25 functions of zeblo.h and the element interface.
**
** libZEBLOuiPlus is a second library built from the same code as libZEBLOui:
** the same 25 functions, with the same behaviour (zeblo.h is their
** reference), plus the functions below.  A process loads one of the two,
** never both.  A simulated twin lies beside the simulated libZEBLOui
** (build/simulated/, LIBDIR/zeblo/simulated/), read from ZEBLO_SIMULATE.
**
** CONVENTIONS (beyond those of zeblo.h, which all hold)
**
** JSON in and out.  Queries are JSON objects given as text (NULL or "" is
** {}); results are JSON text that the caller frees with zeblo_free_string.
** An element function that fails returns an ERROR OBJECT
**     {"error":{"kind":KIND,"case":CASE,"message":TEXT}}
** KIND is one of
**     "usage"      a query, reference, action or key name that cannot be read
**     "app"        no such application (appNotFound), none in front
**                  (noFrontmostApp)
**     "window"     no such window (windowNotFound)
**     "stale"      the reference no longer leads to the element it was made
**                  for (staleReference): nothing was done
**     "notFound"   nothing matches
**     "action"     the element cannot take the action (disabled,
**                  notCheckable, notEditable, notExpandable, noMenu,
**                  noSuchItem), refused it (refused), or it showed no effect
**                  (noEffect)
**     "timeout"    a wait ran out (waitTimedOut)
**     "unanswered" the application did not answer within the reply limit
**     "internal"   anything else
** and CASE names the check that failed.
**
** THE LAST FAILURE.  Every function of this library, the 25 included,
** records on the calling thread whether it failed, and why:
** zeblo_last_failure gives the record of the thread's previous call (of any
** function but zeblo_last_failure and zeblo_free_string).  So a false from
** zeblo_click_button can be explained: {"function":"zeblo_click_button",
** "kind":"window","case":"buttonNotFound","message":"Button 'Cancel' not
** found in window","detail":"Button 'Cancel' is not visible"}.  A quiet
** function's "no" (zeblo_window_exists answering false for a window that is
** not there) is not a failure.  libZEBLOui records nothing.
**
** ELEMENTS.  A NODE is
**     {"ref":"1234:0.3.1~9f2c","role":"button","name":"OK","value":"...",
**      "description":"...","states":["focused",...],"actions":["press",...],
**      "children":[NODE,...],"more":N}
** with the members that do not apply left out:
**   role         the element's role in lower case, without "AX"
**                ("button", "checkbox", "textfield", "popupbutton",
**                "menuitem", "statictext", "window"...);
**   name         what a user calls it: its title, a label's text, else its
**                description, else, for a field, its accessible label, the
**                label drawn beside it (to its left on its row, or just
**                above it) or the hint it shows while empty;
**   value        a text's contents, a slider's position; a check box's state
**                is in states instead;
**   states       those that hold, of "disabled", "hidden", "focused",
**                "checked", "mixed", "selected", "expanded" / "collapsed"
**                (for elements that expand), "editable";
**   actions      what the element offers ("press", "showmenu",
**                "increment"...);
**   more         children left out by a limit.
** Texts longer than maxText user-perceived characters (default 200) are cut
** to that many, never inside one, and end in U+2026 (an ellipsis).
**
** REFERENCES.  "PID:W.I.J...~CHECK": the process, the window's index in its
** application's window list ("m": the menu bar), the index path among the
** children a user sees, and 16 bits of a hash of the element's role and name
** in hexadecimal.  The library keeps nothing between calls: a reference is
** resolved afresh and its check verified before every use; when the element
** there has changed or gone, the call fails with kind "stale" and acts on
** nothing.  A reference stays good while the elements before it keep their
** places and it keeps its role and name.
*/
#ifndef ZEBLO_ZEBLO_PLUS_H
#define ZEBLO_ZEBLO_PLUS_H

#include "zeblo/zeblo.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
** zeblo_element_tree: what a window (or an application) shows, as nodes.
**
** query  {"app": NAME            optional; as in zeblo.h's WINDOWS AND
**                                CONTROLS; "" the frontmost application
**         "window": TITLE        optional; loose match, "" the first
**                                window; absent: every window
**         "ref": REF             optional; the tree under that element
**                                instead
**         "menuBar": false       the application's menu bar instead (its
**                                items' references start "PID:m")
**         "maxNodes": 500        nodes listed, at most
**         "maxDepth": 30         levels listed below the root
**         "maxChildren": 100     children listed under one node
**         "maxText": 200
**         "hidden": false}       also list what a user cannot see ("hidden"
**                                state, no reference)
** Returns {"app","pid","window"?,"nodes":N,"truncated"?:{"omitted":N},
** "tree":[NODE,...]}: one root per window.  Containers that only arrange
** others (no name, value or action) are left out and their children listed
** in their place.  The walk is breadth first, so a limit cuts the deepest
** levels first; "omitted" counts the children left out.
*/
ZEBLO_API const char *zeblo_element_tree(const char *query);

/*
** zeblo_element_find: the elements that match a query.
**
** query  the scope of zeblo_element_tree ("app", "window", "ref") and any of
**         "role": "button"       the role, in any case, with or without "AX"
**         "name": TEXT           loose match of the name
**         "text": TEXT           loose match of name, value or description
**         "value": TEXT          loose match of the value
**         "state": {"enabled": true, "checked": false, ...}
**         "limit": 20            matches listed
**         "maxScan": 5000        elements examined
** Returns {"app","pid","count":N,"truncated"?:{"matches":N,"unsearched":N},
** "matches":[NODE,...]} (nodes without children), in document order.
*/
ZEBLO_API const char *zeblo_element_find(const char *query);

/*
** zeblo_element_get: an element afresh, by its reference.
** Returns {"app","pid","element":NODE} (without children).
*/
ZEBLO_API const char *zeblo_element_get(const char *ref);

/*
** zeblo_element_act: act on an element by its reference.
**
** action  "press", "toggle", "check", "uncheck" (both do nothing, with
**         "changed":false, when the element already is so), "focus",
**         "set_value" (text fields: the text; check boxes: true / false;
**         pop-up buttons: the item to choose; sliders: a number),
**         "select", "expand", "collapse", "open_menu" (menu buttons,
**         popovers, context menus: the items then shown come back as
**         "menu"), "scroll_into_view", "increment", "decrement".
** value   for set_value; NULL otherwise.
** Returns {"ok":true,"action":ACTION,"ref":REF,"changed"?:BOOL,
** "menu"?:[NODE,...]}.  A disabled element takes no action but focus and
** scroll_into_view.  Checking, focusing and expanding count as done once the
** element shows it (within about a second).
*/
ZEBLO_API const char *zeblo_element_act(const char *ref, const char *action, const char *value);

/*
** zeblo_element_wait: wait until a query holds.
**
** query  a query of zeblo_element_find, and
**         "until": "appears"     (default) an element matches; "disappears"
**                                none does; "enabled" a match is enabled;
**                                "value" a match's value equals "equals"
**         "timeout": 5000        milliseconds (at most 600000)
** Polls every 0.1 s.  Returns {"ok":true,"element"?:NODE}, or the error kind
** "timeout".
*/
ZEBLO_API const char *zeblo_element_wait(const char *query);

/*
** zeblo_press_keys: press keys by name into an application.
**
** appName  optional; as for windows; the application is brought to the
**          front first.  NULL / "": the frontmost application, as it is.
** keys     chords separated by blanks: modifiers ("ctrl", "shift", "alt" /
**          "option", "cmd" / "primary": Command on macOS, Control elsewhere)
**          and a key joined by "+": "ctrl+shift+t", "home", "pageup",
**          "return", "+", "ctrl+a backspace".  Keys: letters, digits and
**          punctuation (shifted ones hold Shift), return / enter, tab,
**          space, backspace, delete, escape, home, end, pageup, pagedown,
**          left, right, up, down, f1 to f17, and plus, minus, comma...
** The keys are the library's US key codes, typed as the active layout types
** their characters (see zeblo.h, KEYBOARD LAYOUT).  Every chord is checked
** before any key is pressed.  Returns {"ok":true,"app":NAME,"chords":N}.
*/
ZEBLO_API const char *zeblo_press_keys(const char *appName, const char *keys);

/*
** zeblo_last_failure: why the calling thread's previous call failed.
** Returns {"function"?,"kind","case","message","detail"?}, or null when it
** did not fail.
*/
ZEBLO_API const char *zeblo_last_failure(void);

#ifdef __cplusplus
}
#endif

#endif /* ZEBLO_ZEBLO_PLUS_H */
