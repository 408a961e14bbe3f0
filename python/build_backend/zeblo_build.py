"""A PEP 517 build backend for the zeblo package, standard library only.

The wheel holds the package and the native code it drives: libZEBLOui and
libZEBLOuiPlus, their simulated twins (zeblo/simulated/) and, on Linux, the library's helper
executable, all beside the package's modules, where the package looks first.
They are taken from an existing build of the repository when one is named
(the config setting build-dir, or ZEBLO_BUILD_DIR), and otherwise built with
CMake from the repository around this folder into a scratch folder. So
`pip install ./python` needs nothing from a package index.

The metadata is the [project] table of pyproject.toml; the version, which it
leaves dynamic, is the library's (include/zeblo/zeblo.h), written into the
wheel's zeblo/_version.py. The source archive and editable installs (a .pth
file naming this folder) hold the Python code only.
"""
import base64
import hashlib
import io
import json
import os
import re
import shutil
import stat
import subprocess
import sys
import sysconfig
import tarfile
import tempfile
import time
import zipfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
REPOSITORY = os.path.dirname(ROOT)
NAME = "zeblo"
sys.path.insert(0, os.path.join(ROOT, NAME))
import _version  # noqa: E402  (the package's own reading of the version)

del sys.path[0]


# --- pyproject.toml -------------------------------------------------------------

def _toml_value(text):
    """A value of the small TOML subset pyproject.toml uses: strings, arrays of
    strings and inline tables of strings."""
    text = text.strip()
    if text.startswith('"'):
        return json.loads(text)  # a basic string is written as in JSON
    if text.startswith("["):
        return [_toml_value(v) for v in re.findall(r'"(?:[^"\\]|\\.)*"', text)]
    if text.startswith("{"):
        return {k: _toml_value(v) for k, v in re.findall(r'(\w[\w-]*)\s*=\s*("(?:[^"\\]|\\.)*")', text)}
    raise ValueError(f"pyproject.toml: cannot read {text!r}")


def _project():
    """The [project] table."""
    path = os.path.join(ROOT, "pyproject.toml")
    try:
        import tomllib
    except ImportError:  # Python before 3.11
        tomllib = None
    if tomllib is not None:
        with open(path, "rb") as f:
            return tomllib.load(f)["project"]
    project, table, pending = {}, None, ""
    with open(path, encoding="utf-8") as f:
        for line in f:
            line = line.split("#", 1)[0] if '"' not in line else line
            if not pending and line.strip().startswith("["):
                table = line.strip()
                continue
            if table != "[project]" or not (pending or line.strip()):
                continue
            pending += line
            if pending.count("[") > pending.count("]") or pending.count("{") > pending.count("}"):
                continue
            key, value = pending.split("=", 1)
            project[key.strip()] = _toml_value(value)
            pending = ""
    return project


def _metadata():
    project = _project()
    lines = ["Metadata-Version: 2.1", f"Name: {project['name']}", f"Version: {_version.VERSION}"]
    if "description" in project:
        lines.append(f"Summary: {project['description']}")
    if "requires-python" in project:
        lines.append(f"Requires-Python: {project['requires-python']}")
    license_ = project.get("license")
    if isinstance(license_, dict) and "text" in license_:
        lines.append(f"License: {license_['text']}")
    lines += [f"Classifier: {c}" for c in project.get("classifiers", [])]
    lines += [f"Keywords: {','.join(project['keywords'])}"] if project.get("keywords") else []
    return "\n".join(lines) + "\n"


# --- the native code ----------------------------------------------------------------

def _native_files(build_dir):
    """(name inside the package, path) of the libraries and the helper in a build."""
    names = {}
    for stem in ("ZEBLOuiPlus", "ZEBLOui"):
        if sys.platform == "darwin":
            names.update({f"lib{stem}.dylib": f"lib{stem}.dylib", f"simulated/lib{stem}.dylib": f"simulated/lib{stem}.dylib"})
        else:
            soname = f"lib{stem}.so.{_version.ABI}"
            names.update({soname: f"lib{stem}.so", f"simulated/{soname}": f"simulated/lib{stem}.so"})
    out = []
    for inside, built in names.items():
        path = os.path.join(build_dir, built)
        if not os.path.exists(path):
            raise RuntimeError(f"{path} is missing: build the library first (cmake --build {build_dir})")
        out.append((inside, os.path.realpath(path)))
    helper = os.path.join(build_dir, "zeblo-helper")
    if os.path.exists(helper):
        out.append(("zeblo-helper", helper))
    return out


def _build_native(scratch):
    """Builds the libraries (and the helper) from the repository into `scratch`."""
    if not os.path.exists(os.path.join(REPOSITORY, "CMakeLists.txt")):
        raise RuntimeError("the zeblo wheel needs libZEBLOui: name a build of it with ZEBLO_BUILD_DIR "
                           "(or --config-settings build-dir=...), or build from the repository's python/ folder")
    configure = ["cmake", "-S", REPOSITORY, "-B", scratch, "-DCMAKE_BUILD_TYPE=Release",
                 "-DZEBLO_BUILD_TESTS=OFF", "-DZEBLO_BUILD_BENCH=OFF"]
    if shutil.which("ninja"):
        configure += ["-G", "Ninja"]
    for launcher in ("C", "CXX"):
        if shutil.which("ccache"):
            configure.append(f"-DCMAKE_{launcher}_COMPILER_LAUNCHER=ccache")
    subprocess.run(configure, check=True, stdout=sys.stderr)
    subprocess.run(["cmake", "--build", scratch, "--target", "ZEBLOui", "ZEBLOui_simulated", "ZEBLOuiPlus", "ZEBLOuiPlus_simulated", "--parallel",
                    str(os.cpu_count() or 1)], check=True, stdout=sys.stderr)


def _build_dir(config_settings):
    given = (config_settings or {}).get("build-dir") or os.environ.get("ZEBLO_BUILD_DIR")
    return os.path.abspath(given) if given else None


# --- archives -------------------------------------------------------------------------

def _package_files():
    out = []
    for folder, dirs, names in os.walk(os.path.join(ROOT, NAME)):
        dirs[:] = sorted(d for d in dirs if d != "__pycache__")
        for name in sorted(names):
            if name.endswith((".py", ".typed")):
                path = os.path.join(folder, name)
                out.append((os.path.relpath(path, ROOT).replace(os.sep, "/"), path))
    return out


def _tag(native):
    if not native:
        return "py3-none-any"
    return "py3-none-" + re.sub(r"[-.]", "_", sysconfig.get_platform())


def _write_wheel(directory, entries, native=False):
    """entries: (name inside the wheel, bytes, executable). Adds the dist-info and RECORD."""
    project = _project()
    dist_info = f"{project['name']}-{_version.VERSION}.dist-info"
    wheel_info = (f"Wheel-Version: 1.0\nGenerator: zeblo_build\nRoot-Is-Purelib: {'false' if native else 'true'}\n"
                  f"Tag: {_tag(native)}\n")
    entries = list(entries) + [
        (f"{dist_info}/METADATA", _metadata().encode(), False),
        (f"{dist_info}/WHEEL", wheel_info.encode(), False),
    ]
    record = []
    name = f"{project['name']}-{_version.VERSION}-{_tag(native)}.whl"
    with zipfile.ZipFile(os.path.join(directory, name), "w", zipfile.ZIP_DEFLATED) as wheel:
        for arcname, data, executable in entries:
            info = zipfile.ZipInfo(arcname, time.localtime()[:6])
            info.external_attr = (stat.S_IFREG | (0o755 if executable else 0o644)) << 16
            info.compress_type = zipfile.ZIP_DEFLATED
            wheel.writestr(info, data)
            digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
            record.append(f"{arcname},sha256={digest},{len(data)}")
        record.append(f"{dist_info}/RECORD,,")
        wheel.writestr(f"{dist_info}/RECORD", "\n".join(record) + "\n")
    return name


def _python_entries():
    """The package's modules, its _version.py holding the version itself."""
    entries = []
    for arcname, path in _package_files():
        if arcname == f"{NAME}/_version.py":
            data = (f'"""The library\'s version, as this wheel was built with it."""\n'
                    f'VERSION = "{_version.VERSION}"\nABI = "{_version.ABI}"\n').encode()
        else:
            with open(path, "rb") as f:
                data = f.read()
        entries.append((arcname, data, False))
    return entries


def get_requires_for_build_wheel(config_settings=None):
    return []


def get_requires_for_build_sdist(config_settings=None):
    return []


def get_requires_for_build_editable(config_settings=None):
    return []


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    """The wheel's dist-info alone, so that pip learns the metadata without a
    build of the native code."""
    project = _project()
    dist_info = f"{project['name']}-{_version.VERSION}.dist-info"
    os.makedirs(os.path.join(metadata_directory, dist_info), exist_ok=True)
    with open(os.path.join(metadata_directory, dist_info, "METADATA"), "w", encoding="utf-8") as f:
        f.write(_metadata())
    return dist_info


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    entries = _python_entries()
    with tempfile.TemporaryDirectory(prefix="zeblo-native-") as scratch:
        build_dir = _build_dir(config_settings)
        if build_dir is None:
            _build_native(scratch)
            build_dir = scratch
        for inside, path in _native_files(build_dir):
            with open(path, "rb") as f:
                entries.append((f"{NAME}/{inside}", f.read(), inside == "zeblo-helper"))
    return _write_wheel(wheel_directory, entries, native=True)


def build_editable(wheel_directory, config_settings=None, metadata_directory=None):
    return _write_wheel(wheel_directory, [(f"{NAME}.pth", (ROOT + "\n").encode(), False)])


def build_sdist(sdist_directory, config_settings=None):
    base = f"{_project()['name']}-{_version.VERSION}"
    name = f"{base}.tar.gz"
    with tarfile.open(os.path.join(sdist_directory, name), "w:gz") as sdist:
        members = [("pyproject.toml", os.path.join(ROOT, "pyproject.toml")),
                   ("build_backend/zeblo_build.py", os.path.abspath(__file__))] + _package_files()
        for arcname, path in members:
            if arcname == f"{NAME}/_version.py":
                continue
            sdist.add(path, arcname=f"{base}/{arcname}")
        for arcname, data in ((f"{NAME}/_version.py", _python_entries_version()),
                              ("PKG-INFO", _metadata().encode())):
            info = tarfile.TarInfo(f"{base}/{arcname}")
            info.size, info.mtime = len(data), int(time.time())
            sdist.addfile(info, io.BytesIO(data))
    return name


def _python_entries_version():
    return next(data for arcname, data, _ in _python_entries() if arcname == f"{NAME}/_version.py")
