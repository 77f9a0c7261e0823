"""How much longer vorranoctl takes for sixteen Vorranos than for one. scripts/bench runs it:

usage: PYTHONPATH=bench/ctl tests/e2e/run.py BUILD_FOLDER measure_ctl Sixteen
"""
import time

from harness.tool import ToolWorld as WORLD  # noqa: F401
from harness.world import situation

LIMIT = 1.2
RUNS = 5


def seconds(world, *devices):
    """The shortest of some runs: what else the computer does only makes a run longer."""
    times = []
    for _ in range(RUNS):
        begun = time.monotonic()
        ended = world.run("wifi", "--ssid", "Home", "--security", "WPA2", "--password-file", "-", *devices,
                          given=b"secret")
        times.append(time.monotonic() - begun)
        assert ended.returncode == 0, ended
    return min(times)


@situation(vorranos=16)
def Sixteen(world):
    one, all_of_them = seconds(world, "--port", world.vorranos[0].path), seconds(world, "--all")

    print("the Wi-Fi setup of one: %.3f s, of sixteen: %.3f s, ratio %.2f, at most %.2f"
          % (one, all_of_them, all_of_them / one, LIMIT), flush=True)
    assert all_of_them <= LIMIT * one
