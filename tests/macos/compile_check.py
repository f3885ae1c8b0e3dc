"""usage: compile_check.py --build FOLDER --architecture arm64|x86_64 [--all]

Configures the tree as for a Mac (cmake/toolchains/macos-check.cmake) and compiles the sources that differ there, without
making anything of them. Then looks at the application's information file as CMake made it.

  --all   every source file of src/: minutes instead of seconds"""
import argparse
import concurrent.futures
import json
import os
import pathlib
import plistlib
import re
import shlex
import struct
import subprocess
import sys

REPOSITORY = pathlib.Path(__file__).resolve().parent.parent.parent
PARTS = ["src/platform/macos/", "src/platform/posix/", "src/base/", "src/app/"]
ADAPTERS = REPOSITORY / "src/platform/macos"


def configure(build, architecture):
    subprocess.run(
        ["cmake", "--fresh", "-S", REPOSITORY, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
         f"-DCMAKE_TOOLCHAIN_FILE={REPOSITORY}/cmake/toolchains/macos-check.cmake",
         f"-DVELMORA_MACOS_ARCHITECTURE={architecture}", "-DVELMORA_BUILD_TESTS=OFF", "-DVELMORA_WERROR=ON"],
        check=True, stdout=subprocess.DEVNULL)


def chosen(build, parts):
    entries = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    return [entry for entry in entries
            if any(entry["file"].startswith(str(REPOSITORY / part)) for part in parts)]


def compiled(entry):
    """What the compiler said, and None when it took the file."""
    command = shlex.split(entry["command"])
    if pathlib.Path(command[0]).name == "ccache":
        del command[0]
    at = command.index("-o")
    del command[at:at + 2]
    done = subprocess.run([*command, "-fsyntax-only"], cwd=entry["directory"], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True)
    return None if done.returncode == 0 else done.stdout


def compile_sources(build, parts):
    entries = chosen(build, parts)
    taken = {pathlib.Path(entry["file"]) for entry in entries}
    left_out = [path for path in ADAPTERS.iterdir() if path.suffix in (".cpp", ".mm") and path not in taken]
    assert not left_out, f"CMake builds nothing of {left_out}"
    failures = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for entry, output in zip(entries, pool.map(compiled, entries)):
            if output is not None:
                failures += 1
                print(f"{entry['file']}:\n{output}")
    print(f"{len(entries) - failures} of {len(entries)} sources compile")
    assert not failures
    return len(entries)


def check_bundle(build):
    contents = build / "bin/Velmora.app/Contents"
    with open(contents / "Info.plist", "rb") as file:
        information = plistlib.load(file)
    version = re.search(r"^CMAKE_PROJECT_VERSION:STATIC=(.*)$", (build / "CMakeCache.txt").read_text(), re.M).group(1)
    expected = {
        "CFBundleIdentifier": "com.velmora.app", "CFBundleName": "Velmora", "CFBundlePackageType": "APPL",
        "CFBundleExecutable": "Velmora", "CFBundleIconFile": "Velmora.icns", "CFBundleShortVersionString": version,
        "CFBundleVersion": version, "LSMinimumSystemVersion": "12.0", "LSUIElement": True,
    }
    for key, value in expected.items():
        assert information.get(key) == value, f"{key}: {information.get(key)!r} instead of {value!r}"
    rules = (build / "build.ninja").read_text(encoding="utf-8")
    assert "Velmora.app/Contents/Resources/Velmora.icns" in rules
    assert f"Velmora.app/Contents/MacOS/{information['CFBundleExecutable']}" in rules
    for flag in ("-mmacosx-version-min=12.0", "-fobjc-arc", "-Wunguarded-availability"):
        assert flag in rules, flag


def check_icon():
    data = (REPOSITORY / "packaging/macos/Velmora.icns").read_bytes()
    magic, length = struct.unpack(">4sI", data[:8])
    assert (magic, length) == (b"icns", len(data))
    sides, at = {}, 8
    while at < len(data):
        name, length = struct.unpack(">4sI", data[at:at + 8])
        picture = data[at + 8:at + length]
        assert picture[:8] == b"\x89PNG\r\n\x1a\n", name
        sides[name.decode()] = struct.unpack(">II", picture[16:24])
        at += length
    pixels = {"ic07": 128, "ic08": 256, "ic09": 512, "ic11": 32, "ic12": 64, "ic13": 256, "ic14": 512, "ic10": 1024}
    assert sides == {name: (side, side) for name, side in pixels.items()}, sides


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--architecture", choices=("arm64", "x86_64"), required=True)
    parser.add_argument("--all", action="store_true")
    arguments = parser.parse_args()
    configure(arguments.build, arguments.architecture)
    check_bundle(arguments.build)
    check_icon()
    compile_sources(arguments.build, ["src/"] if arguments.all else PARTS)


if __name__ == "__main__":
    sys.exit(main())
