"""Pictures of a display without a window manager, with the frames that one would draw."""
import html
import pathlib
import re
import subprocess
import tempfile
import time

TITLE_HEIGHT = 28
BACKDROP = "xc:#6f9aab"
LOOK = 0.1
PAINTED_WITHIN = 1.5
# A child of the root in xwininfo's tree: its number, its title, its size, and where it is on the screen.
WINDOW = re.compile(r'^ {5}(0x[0-9a-f]+) (?:"(.*)"|\(has no name\)): \(.*\)  '
                    r'(\d+)x(\d+)\+-?\d+\+-?\d+  \+(-?\d+)\+(-?\d+)')


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


class Window:
    def __init__(self, number, title, width, height, x, y):
        self.number, self.title = int(number, 16), title or ""
        self.width, self.height, self.x, self.y = int(width), int(height), int(x), int(y)


def windows():
    """Those on the screen, the lowest first."""
    shown = {int(number) for number in output_of("xdotool", "search", "--onlyvisible", "--name", "").split()}
    lines = output_of("xwininfo", "-root", "-tree").splitlines()
    found = [Window(*match.groups()) for match in map(WINDOW.match, lines) if match]
    return [window for window in reversed(found) if window.number in shown and window.width > 1]


def frame(window):
    """ImageMagick's words for one window: its shadow, its title bar, its content, its edge."""
    x, y, w, h = window.x, window.y, window.width, window.height
    top = y - TITLE_HEIGHT if window.title else y
    words = ["(", "-size", "%dx%d" % (w, y + h - top), "xc:black", "-background", "black", "-shadow", "55x9+0+0",
             ")", "-geometry", "%+d%+d" % (x - 18, top - 14), "-composite"]
    if window.title:
        words += ["-fill", "#34434d", "-draw", "roundrectangle %d,%d %d,%d 7,7" % (x - 1, top, x + w, y + 12),
                  "-fill", "#f2f5f6", "-font", "DejaVu-Sans-Bold", "-pointsize", "12", "-gravity", "NorthWest",
                  "-annotate", "%+d%+d" % (x + 12, top + 7), window.title]
    words += ["(", "mpr:root", "-crop", "%dx%d%+d%+d" % (w, h, x, y), "+repage", ")",
              "-geometry", "%+d%+d" % (x, y), "-composite"]
    return words + ["-fill", "none", "-stroke", "#34434d", "-draw",
                    "rectangle %d,%d %d,%d" % (x - 1, y - 1, x + w, y + h), "-stroke", "none"]


def picture(path):
    subprocess.run(["import", "-window", "root", "-depth", "8", path], check=True)


def still_picture(path):
    """The screen once all is painted, which is when two looks show the same; what turns or blinks does so for ever."""
    end = time.monotonic() + PAINTED_WITHIN
    before = None
    while time.monotonic() < end:
        picture(path)
        now = pathlib.Path(path).read_bytes()
        if now == before:
            return
        before = now
        time.sleep(LOOK)


class Album:
    def __init__(self, folder):
        self._folder = pathlib.Path(folder)
        self._pictures = []

    def add(self, name, caption, look):
        name = "%02d-%s.png" % (len(self._pictures) + 1, name)
        with tempfile.TemporaryDirectory() as folder:
            # Its form without compression is the quickest to write and to compare.
            root = folder + "/root.ppm"
            look(root)
            size = output_of("identify", "-format", "%wx%h", root)
            words = ["convert", root, "-write", "mpr:root", "+delete", "-size", size, BACKDROP]
            for window in windows():
                words += frame(window)
            subprocess.run([*words, "-depth", "8", str(self._folder / name)], check=True)
        self._pictures.append((name, caption))
        print("%2d  %s" % (len(self._pictures), caption), flush=True)

    def write_page(self):
        figures = "\n".join('<figure id="%d"><figcaption><b>%d</b> %s</figcaption><img src="%s" alt="%s"></figure>'
                            % (number, number, html.escape(caption), name, html.escape(caption))
                            for number, (name, caption) in enumerate(self._pictures, 1))
        page = self._folder / "index.html"
        page.write_text("""<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><meta name="viewport" content="width=device-width">
<title>Vorrano Setup: the tour</title><style>
body { font-family: sans-serif; max-width: 1100px; margin: 2em auto; padding: 0 1em; background: #f4f6f7;
       color: #23303a; line-height: 1.4 }
figure { margin: 0 0 3em } img { display: block; width: 100%%; border-radius: 6px }
figcaption { margin: 0 0 .7em; font-size: 1.15em } figcaption b { color: #4a7485; margin-right: .4em }
</style></head><body><h1>Vorrano Setup: the tour</h1>
<p>The program, with a simulated Vorrano beside it, from the first sign-in to new firmware.</p>
%s
</body></html>
""" % figures, encoding="utf-8")
        return page
