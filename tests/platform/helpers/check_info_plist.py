#!/usr/bin/env python3
"""Writes the macOS bundle's Info.plist the way the build does and reads it back with plistlib.

    check_info_plist.py CMAKE MODULE TEMPLATE WORKDIR
"""
import os
import plistlib
import subprocess
import sys

cmake, module, template, workdir = sys.argv[1:5]
os.makedirs(workdir, exist_ok=True)
failures = []


def write(name, **settings):
    output = os.path.join(workdir, name)
    definitions = dict(TEMPLATE=template, OUTPUT=output, EXECUTABLE="Vistrel", IDENTIFIER="com.vistrel.Vistrel",
                       SHORT_VERSION="1.4.0", BUILD_VERSION="140", MINIMUM_SYSTEM="14.0")
    definitions.update(settings)
    subprocess.run([cmake] + [f"-D{key}={value}" for key, value in definitions.items()] + ["-P", module],
                   check=True)
    with open(output, "rb") as file:
        return plistlib.load(file)


def expect(what, actual, expected):
    if actual != expected:
        failures.append(f"{what}: {actual!r}, expected {expected!r}")


plain = write("plain.plist")
expect("no Dock icon", plain.get("LSUIElement"), True)
expect("executable", plain.get("CFBundleExecutable"), "Vistrel")
expect("process name the window list reports", plain.get("CFBundleName"), "Vistrel")
expect("identifier", plain.get("CFBundleIdentifier"), "com.vistrel.Vistrel")
expect("short version", plain.get("CFBundleShortVersionString"), "1.4.0")
expect("build", plain.get("CFBundleVersion"), "140")
expect("minimum system", plain.get("LSMinimumSystemVersion"), "14.0")
expect("an application", plain.get("CFBundlePackageType"), "APPL")
expect("no feed without a URL", "SUFeedURL" in plain, False)
expect("no key without one", "SUPublicEDKey" in plain, False)

feed = "https://updates.example.org/vistrel/appcast.xml?channel=stable&os=macos"
key = "pfIShU4dEXqPd5ObYNfDBiQWcXozk7estwzTnF9BamQ="
sparkle = write("sparkle.plist", FEED_URL=feed, PUBLIC_ED_KEY=key)
expect("feed, with its & intact", sparkle.get("SUFeedURL"), feed)
expect("public key", sparkle.get("SUPublicEDKey"), key)
expect("still no Dock icon", sparkle.get("LSUIElement"), True)

blank = write("blank.plist", FEED_URL="   ", PUBLIC_ED_KEY="")
expect("a blank feed is none", "SUFeedURL" in blank, False)

try:
    write("refused.plist", IDENTIFIER="")
    expect("an empty identifier stops the build", "written", "refused")
except subprocess.CalledProcessError:
    pass

for failure in failures:
    print("FAIL:", failure)
sys.exit(1 if failures else 0)
