"""Colours and fonts that a person may have chosen."""
import pathlib

# As the desktop whose settings Qt reads by itself has them. Nothing named: Qt's own.
LIGHT = {}
DARK = {"Window": "42,46,50", "View": "27,30,32", "Button": "49,54,59", "Selection": "61,174,233",
        "text": "252,252,252"}
CONTRAST = {"Window": "0,0,0", "View": "0,0,0", "Button": "0,0,0", "Selection": "255,255,0", "text": "255,255,255",
            "selected": "0,0,0"}


def desktop_settings(folder, colours, points=10):
    """Writes them down as that desktop does, and gives what a program needs to find them."""
    lines = ["[KDE]", "widgetStyle=Fusion", "[General]", "font=DejaVu Sans,%d,-1,5,50,0,0,0,0,0" % points]
    for part in ("Window", "View", "Button", "Selection") if colours else ():
        text = colours.get("selected", colours["text"]) if part == "Selection" else colours["text"]
        lines += ["[Colors:%s]" % part, "BackgroundNormal=%s" % colours[part], "ForegroundNormal=%s" % text,
                  "ForegroundInactive=%s" % text, "ForegroundLink=%s" % text, "ForegroundVisited=%s" % text]
        lines += ["BackgroundAlternate=%s" % colours[part]]
    pathlib.Path(folder, "kdeglobals").write_text("\n".join(lines) + "\n", encoding="utf-8")
    return {"XDG_CURRENT_DESKTOP": "KDE", "KDE_SESSION_VERSION": "5", "XDG_CONFIG_DIRS": folder}
