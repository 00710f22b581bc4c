#!/usr/bin/python3
"""Checks the KWin end-to-end desktop itself: KWin's own picture of each output at its native pixels and
scale, and its screenshot permission check in force: the granted interpreter is answered, the system's
python3, which no entry grants, is refused."""
import json
import os
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
ORACLE = os.path.join(HERE, "helpers", "kwin_screenshot.py")
failures = []

for name, scale in [("Virtual-0", 1.0), ("Virtual-1", 2.0)]:
    path = os.path.join(os.environ["TMPDIR"], name + ".png")
    taken = subprocess.run([os.environ["VISTREL_E2E_KWIN_PYTHON"], ORACLE, name, path], capture_output=True, text=True)
    reply = json.loads(taken.stdout or "{}")
    expected = {"screen": name, "width": 1280, "height": 720, "scale": scale}
    if taken.returncode != 0 or {key: reply.get(key) for key in expected} != expected:
        failures.append(f"{name}: KWin answered {reply} {taken.stderr.strip()}, expected {expected}")

refused = subprocess.run(["/usr/bin/python3", ORACLE, "Virtual-0", os.path.join(os.environ["TMPDIR"], "no.png")],
                         capture_output=True, text=True)
if refused.returncode == 0 or "NoAuthorized" not in refused.stderr:
    failures.append(f"an executable no entry grants was not refused: {refused.returncode} {refused.stderr.strip()}")

for failure in failures:
    print("FAIL:", failure)
print("kwin session:", "failed" if failures else "passed")
sys.exit(1 if failures else 0)
