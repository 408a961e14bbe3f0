"""The package on the simulated example desktop: values, errors, arguments,
and (in child processes, each with a desktop of its own) the side effects."""
import json
import os
import subprocess
import sys
import textwrap

import pytest

import zeblo


def run_child(code, **env):
    """Runs code in a fresh interpreter (the desktop is read once per process)."""
    full = dict(os.environ, **{k: str(v) for k, v in env.items()})
    return subprocess.run([sys.executable, "-c", textwrap.dedent(code)], env=full,
                          capture_output=True, text=True, timeout=60)


def test_reads_return_python_values():
    assert zeblo.running_apps() == ["Finder", "Quick Notes", "Mail", "Sync Helper"]
    assert zeblo.frontmost_info() == {"app": "Quick Notes", "window": "Groceries \u2014 Edited"}
    menus = zeblo.app_menus("Quick Notes")
    assert [m["title"] for m in menus["menus"]] == ["Quick Notes", "File", "Edit", "View"]
    save_as = menus["menus"][1]["children"][3]
    assert save_as == {"title": "Save As\u2026", "path": ["File"], "enabled": True, "checked": False,
                       "cmdChar": "S", "cmdModifiers": 1}
    assert zeblo.window_titles("Quick Notes") == ["Groceries \u2014 Edited", "Settings"]
    assert zeblo.window_buttons("Quick Notes", "groceries") == ["Save", "Share\u2026"]
    assert zeblo.popup_menu_items("Quick Notes", None, "font size") == ["Small", "Medium", "Large"]
    assert "[AXStaticText] Lunch on Friday?" in zeblo.window_text("Mail", "inbox")
    assert zeblo.menu_item_exists("Quick Notes", ("File", "Revert to Saved"))
    assert not zeblo.menu_item_enabled("Quick Notes", ["File", "Revert to Saved"])
    assert zeblo.window_exists("Mail", "INBOX \u2013 3")
    assert zeblo.is_in_text_field() is True


def test_error_objects_raise_with_the_library_text():
    with pytest.raises(zeblo.ZebloError) as error:
        zeblo.window_text("Nowhere")
    assert str(error.value) == "Application 'Nowhere' not found. Check if the app is running."
    with pytest.raises(zeblo.ZebloError, match=r"ZEBLOui\.MenuError error 0"):
        zeblo.app_menus("Nowhere")
    with pytest.raises(zeblo.ZebloError, match="Button 'Colour' not found in window"):
        zeblo.popup_menu_items("Quick Notes", None, "Colour")
    # Failures of the acting functions are False, not exceptions.
    assert zeblo.menu_click("Quick Notes", []) is False
    assert zeblo.click_button("Quick Notes", "groceries", "No Such Button") is False


def test_bad_arguments_are_refused_before_the_call():
    with pytest.raises(TypeError):
        zeblo.menu_click("Quick Notes", "File")  # a str is not a path
    with pytest.raises(TypeError):
        zeblo.window_text(42)
    with pytest.raises(ValueError):
        zeblo.send_global_keystroke([0, 70000])
    with pytest.raises(ValueError):
        zeblo.set_checkbox_value("Quick Notes", None, "spelling", 2**31)
    with pytest.raises(ValueError):
        zeblo.wait_for_window("Mail", None, timeout=float("nan"))
    # Text that is not valid UTF-8 on the Python side still reaches the library.
    assert zeblo.window_exists("Mail", "inbox\udc80") is False


def test_actions_in_the_trace(tmp_path):
    trace = tmp_path / "trace.jsonl"
    child = run_child("""
        import zeblo
        results = [
            zeblo.menu_click("Quick Notes", ["File", "Export as PDF\u2026"]),
            zeblo.click_checkbox("Quick Notes", None, "spelling"),
            zeblo.type_text("Hi", mark_events=True),
            zeblo.send_global_keystroke([55, 9], zeblo.Flag.COMMAND),
            zeblo.paste_text("caf\u00e9 \u2713"),
            zeblo.wait_for_window("Quick Notes", "export complete", zeblo.Condition.EXISTS, timeout=1),
            zeblo.close_window("Quick Notes", "export complete", retry_for=0.5),
        ]
        print(results)
    """, ZEBLO_TRACE=trace)
    assert child.returncode == 0, child.stderr
    assert child.stdout.strip() == "[True, True, True, True, True, True, True]"
    entries = [json.loads(line) for line in trace.read_text(encoding="utf-8").splitlines()]
    actions = [(e["action"], e.get("result")) for e in entries if "action" in e]
    assert actions[:2] == [("AXPress", -25206), ("AXPick", 0)]  # the export item refuses AXPress
    assert {"action": "AXPress", "element": "spell-check", "result": 0} in entries
    pasted = [e for e in entries if "pasteboard" in e and "end" not in e]
    assert any("caf\u00e9 \u2713" in json.dumps(e, ensure_ascii=False) for e in pasted)
    end = entries[-1]["end"]
    assert end["liveHandles"] == 0
    assert end["pasteboard"][0]["public.utf8-plain-text"] == "what the user copied"


def test_a_desktop_file_that_cannot_be_read_gives_an_empty_desktop(tmp_path):
    bad = tmp_path / "bad.json"
    bad.write_text("{ not json", encoding="utf-8")
    for path in (bad, tmp_path / "missing.json"):
        child = run_child("import zeblo; print(zeblo.running_apps(), zeblo.window_exists('Mail'))",
                          ZEBLO_SIMULATE=path, ZEBLO_LOG_STDERR=1)
        assert child.returncode == 0, child.stderr
        assert child.stdout.strip() == "[] False"
        assert child.stderr.count("ZEBLO_SIMULATE: cannot read desktop") == 1, child.stderr


def test_the_simulated_library_is_required_when_simulating(tmp_path):
    # With ZEBLO_SIMULATE set and no simulated library to be found (none on
    # the system, none beside the package), loading fails rather than falling
    # back to the real desktop.
    env = {k: v for k, v in os.environ.items() if k not in ("ZEBLO_LIBRARY", "LD_LIBRARY_PATH")}
    code = ("import zeblo, zeblo._native as n\n"
            "n._system_folders = lambda: []\n"
            "n.__file__ = '/nowhere/_native.py'\n"  # nothing beside the package either
            "try:\n    zeblo.running_apps()\nexcept zeblo.LibraryNotFound as e:\n    print('refused:', e)\n")
    child = subprocess.run([sys.executable, "-c", code], env=env, capture_output=True, text=True, timeout=60)
    assert "refused: ZEBLO_SIMULATE is set" in child.stdout, child.stdout + child.stderr


def test_elements_by_reference_and_the_last_failure():
    if not zeblo._native.has_elements():
        pytest.skip("the loaded library is libZEBLOui, without the element interface")
    (settings,) = zeblo.tree("Quick Notes", "Settings")
    assert settings.role == "window" and settings.name == "Settings"
    assert [(e.role, e.name) for e in settings.children][1:3] == [("checkbox", "Autosave notes"),
                                                                  ("textfield", "Author")]
    author = zeblo.find("Quick Notes", "Settings", role="textfield", name="author")[0]
    author.set_value("Ada")
    assert author.refresh().value == "Ada"
    box = zeblo.find("Quick Notes", "Settings", role="checkbox", checked=False)[0]
    assert box.check() is True and box.check() is False
    with pytest.raises(zeblo.ElementError) as failure:
        zeblo.find("Quick Notes", "Settings", role="button", name="Done")[0].set_value("x")
    assert (failure.value.kind, failure.value.case) == ("action", "notEditable")
    assert zeblo.click_button("Quick Notes", "Settings", "Nope") is False
    why = zeblo.last_failure()
    assert (why.function, why.kind, why.case) == ("zeblo_click_button", "window", "buttonNotFound")
    assert zeblo.window_exists("Mail") is True and zeblo.last_failure() is None
def test_an_installed_package_carries_its_libraries():
    # What pip installs works on its own: the simulated library (and the real
    # one) inside the package, the metadata of pyproject.toml, the library's
    # version.
    from conftest import FROM_SOURCE, REPO
    if FROM_SOURCE or "ZEBLO_LIBRARY" in os.environ:
        pytest.skip("the package is not an installed one")
    import importlib.metadata
    import re
    package = os.path.dirname(zeblo.__file__)
    # The superset library first: it holds the 25 functions too.
    assert zeblo.library_path().startswith(os.path.join(package, "simulated", "libZEBLOuiPlus"))
    native = sorted(n for n in os.listdir(package) if n.startswith("libZEBLOui"))
    assert [n.split(".")[0] for n in native] == ["libZEBLOui", "libZEBLOuiPlus"]
    header = (REPO / "include" / "zeblo" / "zeblo.h").read_text(encoding="utf-8")
    assert zeblo.__version__ == re.search(r'ZEBLO_VERSION_STRING "([^"]+)"', header).group(1)
    metadata = importlib.metadata.metadata("zeblo")
    assert metadata["Version"] == zeblo.__version__
    assert metadata.get_all("Classifier") == ["Typing :: Typed", "Operating System :: POSIX :: Linux",
                                              "Operating System :: MacOS"]
    assert metadata["Requires-Python"] == ">=3.8"
