"""A PEP 517 build backend for the zeblo package, standard library only.

It builds the pure-Python wheel (the zeblo/ folder with py.typed), the
source archive, and editable installs (a .pth file naming this folder). The
version is the package's __version__.
"""
import base64
import hashlib
import io
import os
import re
import tarfile
import time
import zipfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
NAME = "zeblo"
SUMMARY = "Drive other running desktop applications the way a user would (libZEBLOui bindings)"
TAG = "py3-none-any"


def _version():
    with open(os.path.join(ROOT, NAME, "__init__.py"), encoding="utf-8") as f:
        return re.search(r'^__version__ = "([^"]+)"', f.read(), re.M).group(1)


def _metadata():
    return (f"Metadata-Version: 2.1\nName: {NAME}\nVersion: {_version()}\nSummary: {SUMMARY}\n"
            "Requires-Python: >=3.8\nLicense: MIT\nClassifier: Typing :: Typed\n")


def _package_files():
    out = []
    for folder, dirs, names in os.walk(os.path.join(ROOT, NAME)):
        dirs[:] = sorted(d for d in dirs if d != "__pycache__")
        for name in sorted(names):
            if name.endswith((".py", ".typed")):
                path = os.path.join(folder, name)
                out.append((os.path.relpath(path, ROOT).replace(os.sep, "/"), path))
    return out


def _write_wheel(directory, entries):
    """entries: (name inside the wheel, bytes). Adds the dist-info and RECORD."""
    dist_info = f"{NAME}-{_version()}.dist-info"
    entries = list(entries) + [
        (f"{dist_info}/METADATA", _metadata().encode()),
        (f"{dist_info}/WHEEL", f"Wheel-Version: 1.0\nGenerator: zeblo_build\nRoot-Is-Purelib: true\nTag: {TAG}\n".encode()),
    ]
    record = []
    name = f"{NAME}-{_version()}-{TAG}.whl"
    with zipfile.ZipFile(os.path.join(directory, name), "w", zipfile.ZIP_DEFLATED) as wheel:
        for arcname, data in entries:
            wheel.writestr(arcname, data)
            digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
            record.append(f"{arcname},sha256={digest},{len(data)}")
        record.append(f"{dist_info}/RECORD,,")
        wheel.writestr(f"{dist_info}/RECORD", "\n".join(record) + "\n")
    return name


def get_requires_for_build_wheel(config_settings=None):
    return []


def get_requires_for_build_sdist(config_settings=None):
    return []


def get_requires_for_build_editable(config_settings=None):
    return []


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    files = []
    for arcname, path in _package_files():
        with open(path, "rb") as f:
            files.append((arcname, f.read()))
    return _write_wheel(wheel_directory, files)


def build_editable(wheel_directory, config_settings=None, metadata_directory=None):
    return _write_wheel(wheel_directory, [(f"{NAME}.pth", (ROOT + "\n").encode())])


def build_sdist(sdist_directory, config_settings=None):
    base = f"{NAME}-{_version()}"
    name = f"{base}.tar.gz"
    with tarfile.open(os.path.join(sdist_directory, name), "w:gz") as sdist:
        members = [("pyproject.toml", os.path.join(ROOT, "pyproject.toml")),
                   ("build_backend/zeblo_build.py", os.path.abspath(__file__))] + _package_files()
        for arcname, path in members:
            sdist.add(path, arcname=f"{base}/{arcname}")
        info = tarfile.TarInfo(f"{base}/PKG-INFO")
        data = _metadata().encode()
        info.size, info.mtime = len(data), int(time.time())
        sdist.addfile(info, io.BytesIO(data))
    return name
