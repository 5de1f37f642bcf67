"""An X server without a screen, a GIMP on it, and hands and eyes: keys, mouse and screenshots."""
import os
import pathlib
import re
import subprocess
import time

from PIL import Image, ImageChops

from gimpSession import CALL, quoted

CURSOR = 3  # width of what blinks in an entry
WAIT = 240  # seconds until something is taken to be missing: machines may be busy


class Desktop:
    def __init__(self, session, scale=1, width=1280, height=860):
        """scale: of the desktop's fonts, which is how this toolkit serves fine screens."""
        self.session, self.scale = session, scale
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", f"{width * scale}x{height * scale}x24", "-nolisten", "tcp",
             "-noreset"],
            pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as told:  # to the end of the line: the server does not outlive a closed pipe
            display = told.readline().strip()
        self.environment = {**session.environment, "DISPLAY": ":" + display}
        subprocess.run(["xprop", "-root", "-format", "RESOURCE_MANAGER", "8s", "-set", "RESOURCE_MANAGER",
                        f"Xft.dpi: {96 * scale}\n"], env=self.environment, check=True)
        self.gimp = None

    def start(self, script):
        """GIMP with a window, and Script-Fu that it runs; not waited for."""
        path = self.session.work / "dialog.scm"
        path.write_text(CALL + script)
        with open(self.session.work / "gimp.log", "w") as log:
            self.gimp = subprocess.Popen(
                ["gimp-2.10", "-d", "-f", "-s", "--new-instance", "-b", f"(load {quoted(path)})"],
                env=self.environment, stdout=log, stderr=subprocess.STDOUT)

    def close(self):
        # It would ask about unsaved pictures, and its plug-ins go with it.
        for process in (self.gimp, self.server):
            if process:
                process.kill()
                process.wait()

    def xdotool(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=self.environment, text=True, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout

    def until(self, what, probe, seconds=WAIT):
        """What probe() gives once it gives something."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            found = probe()
            if found:
                return found
            time.sleep(0.25)
        self.screenshot("missing")
        raise AssertionError("in vain waited for " + what)

    def window(self, title="^Portrait$"):
        """The window of the dialog: (id, x, y, width, height)."""
        def probe():
            for window in self.xdotool("search", "--onlyvisible", "--name", title).split():
                told = dict(re.findall(r"(\w+)=(-?\d+)", self.xdotool("getwindowgeometry", "--shell", window)))
                if int(told.get("WIDTH", 0)) > 50:
                    return (window, int(told["X"]), int(told["Y"]), int(told["WIDTH"]), int(told["HEIGHT"]))
            return None
        return self.until("a window " + title, probe)

    def screenshot(self, name, window=None):
        path = self.session.work / f"{name}.png"
        if path.exists():
            path.unlink()
        subprocess.run(["import", "-window", window or "root", str(path)], env=self.environment, check=True,
                       timeout=WAIT)  # a window that is gone would be waited for
        return Image.open(path).convert("RGB")

    def settle(self, window, seconds=WAIT, still=1.5):
        """Waits until nothing has moved in the window for a while, and gives what it shows."""
        state = {"last": None, "since": time.monotonic()}

        def probe():
            now = self.screenshot("settling", window)
            box = ImageChops.difference(now, state["last"]).getbbox() if state["last"] else (0, 0, *now.size)
            if box and box[2] - box[0] > CURSOR * self.scale:
                state.update(last=now, since=time.monotonic())
            return now if time.monotonic() - state["since"] > still else None
        return self.until("a still window", probe, seconds)

    def click(self, x, y, button=1):
        self.xdotool("mousemove", x, y, "click", button)

    def drag(self, start, end):
        self.xdotool("mousemove", *start, "mousedown", 1)
        for step in range(1, 6):
            self.xdotool("mousemove", *(round(a + (b - a) * step / 5) for a, b in zip(start, end)))
            time.sleep(0.05)
        self.xdotool("mouseup", 1)

    def keys(self, *keys):
        self.xdotool("key", *keys)

    def type(self, text):
        self.xdotool("type", "--delay", 20, text)
