"""The skin sheet, the banner and the third image, piece by piece.

Each piece fills one source rectangle that the controls and panels name. Middles are one pixel wide and are stretched,
so nothing in them varies along the stretch. The light is one idea throughout: a lamp that throws a beam.
"""

import math

from canvas import (Canvas, arc, beam, box, circle, glow, inset, line, mix, polygon, radial, ring, solid, union,
                    vertical)

BACKGROUND = (50, 51, 51)  # the window's own colour; backgrounds fade into it
WELL = (34, 35, 36)        # what is sunk: boxes, the bar's track
EDGE = (104, 109, 115)
ACCENT = (39, 129, 216)    # the links' underline
BRIGHT = (46, 152, 255)    # the links' text
DEEP = (22, 88, 156)
GLASS = (150, 206, 255)
WHITE = (255, 255, 255)
AMBER = (245, 176, 65)
CORAL = (232, 96, 82)


def bottom_bar(sheet):
    """Three columns of 68: a hairline of light, then a shade darker than the window."""
    for x in (1, 2, 3):
        sheet.paint((x, 0, 1, 68), vertical((40, 41, 42), (33, 34, 35), 0, 68))
        sheet.paint((x, 0, 1, 1), solid((26, 27, 28)))
        sheet.paint((x, 1, 1, 1), solid((66, 68, 70)))


def strips(sheet):
    """Column 0 holds the strips of the conflicts and failure panels, which overlap."""
    sheet.paint((0, 15, 1, 72), vertical((62, 66, 72), BACKGROUND, 15, 87))


def box_mark(sheet, x, y, hover, checked, round_one):
    """A check box or radio button of 15 by 15."""
    rect = (x, y, 15, 15)
    outline = circle(x + 7.5, y + 7.5, 7) if round_one else box(x + 0.5, y + 0.5, 14, 14, 3)
    if checked:
        top, bottom = (mix(BRIGHT, WHITE, 0.12), BRIGHT) if hover else (BRIGHT, ACCENT)
        sheet.paint(rect, vertical(top, bottom, y, y + 15), outline)
        sheet.paint(rect, solid(GLASS, 0.8 if hover else 0.45), ring(outline, 1))
    else:
        sheet.paint(rect, vertical((26, 27, 28), WELL, y, y + 10), outline)
        sheet.paint(rect, solid(BRIGHT if hover else (138, 144, 151)), ring(outline, 1.2))
    if checked and round_one:
        sheet.paint(rect, solid((10, 40, 78), 0.35), circle(x + 7.5, y + 8.2, 3.2))
        sheet.paint(rect, solid(WHITE), circle(x + 7.5, y + 7.5, 2.9))
    elif checked:
        tick = [(3.9, 7.7, 6.5, 10.4), (6.5, 10.4, 11.2, 4.8)]
        for offset, paint in ((0.8, solid((10, 40, 78), 0.35)), (0.0, solid(WHITE))):
            stroke = union(*(line(x + a, y + b + offset, x + c, y + d + offset, 2.0) for a, b, c, d in tick))
            sheet.paint(rect, paint, stroke)


def marks(sheet):
    for hover in (False, True):
        for checked in (False, True):
            box_mark(sheet, 19 if hover else 4, 15 if checked else 0, hover, checked, False)
            box_mark(sheet, 17 if hover else 2, 155 if checked else 140, hover, checked, True)


def restart_icon(sheet, x, y):
    """A turning arrow of 13 by 13."""
    cx, cy = x + 6.5, y + 6.8
    arrow = union(arc(cx, cy, 4.4, 100, 285, 1.7), polygon([(cx + 0.2, y + 0.2), (cx + 4.0, y + 2.5), (cx + 0.2, y + 4.8)]))
    sheet.paint((x, y, 13, 13), solid(AMBER), arrow)


def conflict_icon(sheet, x, y):
    """A disc with a cross of 13 by 13: this program has to close."""
    disc = circle(x + 6.5, y + 6.5, 6)
    sheet.paint((x, y, 13, 13), vertical(mix(CORAL, WHITE, 0.12), CORAL, y, y + 13), disc)
    cross = union(line(x + 4.4, y + 4.4, x + 8.6, y + 8.6, 1.7), line(x + 8.6, y + 4.4, x + 4.4, y + 8.6, 1.7))
    sheet.paint((x, y, 13, 13), solid(WHITE), cross)


def lamp(sheet, rect, cx, cy, radius, halo=1.55):
    """The emblem: a lens that glows, with the sign for play."""
    sheet.paint(rect, glow(BRIGHT, cx, cy, radius * halo, 0.75))
    disc = circle(cx, cy, radius)
    sheet.paint(rect, radial(mix(BRIGHT, WHITE, 0.45), DEEP, cx - radius * 0.35, cy - radius * 0.5, radius * 1.9), disc)
    sheet.paint(rect, vertical(GLASS, BRIGHT, cy - radius, cy + radius, 0.55), ring(disc, max(1.0, radius * 0.08)))
    half = radius * 0.42
    left = cx - half * 0.72
    soft = radius * 0.09

    def sign(dy):
        points = [(left, cy - half + dy), (left + half * 1.75, cy + dy), (left, cy + half + dy)]
        return polygon(points, soft)

    sheet.paint(rect, solid((6, 34, 70), 0.45), sign(radius * 0.09))
    sheet.paint(rect, solid(WHITE), sign(0.0))


def logo(sheet):
    """47 by 71 at the top left of every panel: the lamp, and its light falling. The failure panel's warning lies under
    the light, so that is thin."""
    rect = (34, 0, 47, 71)
    sheet.paint(rect, beam(GLASS, 57.5, 8, 57.5, 71, 8, 25, 0.34))
    lamp(sheet, rect, 57.5, 13.5, 11.5, 1.9)


def track(sheet):
    """The progress bar's track: caps of 4, a middle of 1, height 33."""
    rect = (4, 44, 9, 33)
    outline = box(4, 44, 9, 33, 3.5)
    sheet.paint(rect, vertical((24, 25, 26), WELL, 44, 77), outline)
    sheet.paint(rect, vertical((70, 73, 77), (88, 92, 97), 44, 77), ring(outline, 1))


def fill(sheet):
    """The bar's fill, a cap of 1, a middle of 1 and a cap of 2, height 29: it grows inside the track's edge."""
    rect = (2, 77, 4, 29)
    outline = box(2, 77, 4, 29, 1.4)
    sheet.paint(rect, vertical(mix(BRIGHT, WHITE, 0.1), (30, 108, 188), 77, 106), outline)
    sheet.paint((2, 77, 4, 1), solid(GLASS, 0.55), outline)
    sheet.paint((2, 78, 4, 1), solid(GLASS, 0.18), outline)


def focus_ring(sheet):
    """A nine-slice of 7, 1, 7 both ways; its middle is clear."""
    rect = (13, 44, 15, 15)
    outline = box(13, 44, 15, 15, 5)
    sheet.paint(rect, solid(BRIGHT, 0.35), ring(outline, 3.2))
    sheet.paint(rect, solid(GLASS), ring(inset(outline, 0.7), 1.4))


BUTTON_LOOKS = (
    # x, top, bottom, edge at the top, edge at the bottom, shine
    (6, (55, 56, 57), (52, 53, 54), (68, 69, 71), (64, 65, 67), 0.0),      # disabled
    (13, (80, 86, 94), (64, 69, 76), (118, 126, 136), (92, 99, 107), 0.10),  # normal
    (20, (52, 150, 244), (33, 116, 200), (136, 200, 255), (70, 156, 238), 0.22),  # hover
    (27, (24, 92, 164), (30, 108, 188), (18, 66, 120), (60, 142, 222), 0.0),  # pressed
)


def buttons(sheet):
    """Caps of 3, a middle of 1, height 33; four looks side by side."""
    for x, top, bottom, edge_top, edge_bottom, shine in BUTTON_LOOKS:
        rect = (x, 77, 7, 33)
        outline = box(x, 77, 7, 33, 3)
        sheet.paint(rect, vertical(top, bottom, 77, 110), outline)
        sheet.paint((x, 78, 7, 1), solid(WHITE, shine), inset(outline, 1))
        sheet.paint(rect, vertical(edge_top, edge_bottom, 77, 110), ring(outline, 1))


def warning(sheet):
    """33 by 30 for the failure panel."""
    x, y = 0, 110
    rect = (x, y, 33, 30)
    triangle = polygon([(x + 16.5, y + 4.2), (x + 28.8, y + 25.4), (x + 4.2, y + 25.4)], 3.4)
    sheet.paint(rect, solid((20, 20, 20), 0.35), lambda px, py: triangle(px, py - 0.9))
    sheet.paint(rect, vertical(mix(AMBER, WHITE, 0.25), (228, 148, 34), y, y + 30), inset(triangle, 0.4))
    sheet.paint(rect, solid((54, 38, 12)), union(line(x + 16.5, y + 10.6, x + 16.5, y + 17.8, 3.2),
                                                 circle(x + 16.5, y + 23.0, 1.9)))


def side_image(sheet):
    """42 by 49, kept for the auto-update panel."""
    rect = (39, 71, 42, 49)
    sheet.paint(rect, beam(GLASS, 60, 90, 60, 120, 12, 20, 0.3))
    lamp(sheet, rect, 60, 90, 13)


def small_background(sheet):
    """Behind the update and uninstall panels: 1, 120, 1 by 1, 50, 1, opaque, stretched both ways."""
    sheet.paint((33, 123, 122, 52), vertical((64, 67, 72), BACKGROUND, 123, 175))


def splash_background(sheet):
    """Behind the splash: 1, 412, 1 by 173, 1, 1, opaque. Only the width and the last rows are stretched."""
    left, fade = 155, 172

    def haze(x, y):
        reach = max(0.0, 1.0 - math.hypot((x - left - 96) / 260, (y - 60) / 130))
        return (104, 146, 190), 0.22 * reach * reach * max(0.0, 1.0 - y / fade)

    sheet.paint((left, 0, 414, 175), solid(BACKGROUND))
    sheet.paint((left, 0, 414, fade), lambda x, y: ((68, 72, 78), (1.0 - y / fade) ** 1.3))
    sheet.paint((left, 0, 414, fade), haze)
    sheet.paint((left, 0, 414, 1), solid((82, 87, 94)))


def skin_sheet():
    sheet = Canvas(569, 175)
    for piece in (strips, bottom_bar, marks, logo, track, fill, focus_ring, buttons, warning, side_image,
                  small_background, splash_background):
        piece(sheet)
    restart_icon(sheet, 5, 30)
    conflict_icon(sheet, 20, 30)
    return sheet


# The word mark is drawn, not set: strokes on a grid where small letters are 1 high and capitals CAPITAL.
CAPITAL = 1.42
GLYPHS = {
    "L": (0.78, [("line", 0, CAPITAL, 0, 0), ("line", 0, 0, 0.78, 0)]),
    "P": (0.86, [("line", 0, 0, 0, CAPITAL), ("line", 0, CAPITAL, 0.45, CAPITAL), ("arc", 0.45, CAPITAL - 0.41, 0.41, -90, 180),
                 ("line", 0.45, CAPITAL - 0.82, 0, CAPITAL - 0.82)]),
    "l": (0.0, [("line", 0, CAPITAL, 0, 0)]),
    "u": (0.9, [("line", 0, 1, 0, 0.45), ("arc", 0.45, 0.45, 0.45, 180, 180), ("line", 0.9, 1, 0.9, 0)]),
    "m": (1.52, [("line", 0, 0, 0, 1), ("arc", 0.38, 0.62, 0.38, 0, 180), ("line", 0.76, 0.62, 0.76, 0),
                 ("arc", 1.14, 0.62, 0.38, 0, 180), ("line", 1.52, 0.62, 1.52, 0)]),
    "e": (1.0, [("line", 0, 0.5, 1.0, 0.5), ("arc", 0.5, 0.5, 0.5, 0, 318)]),
    "n": (0.9, [("line", 0, 0, 0, 1), ("arc", 0.45, 0.55, 0.45, 0, 180), ("line", 0.9, 0.55, 0.9, 0)]),
    "a": (1.0, [("arc", 0.5, 0.5, 0.5, 0, 360), ("line", 1.0, 1, 1.0, 0)]),
    "y": (0.9, [("line", 0, 1, 0.46, 0.02), ("line", 0.9, 1, 0.27, -0.42)]),
    "r": (0.52, [("line", 0, 0, 0, 1), ("arc", 0.44, 0.56, 0.44, 65, 115)]),
    " ": (0.3, []),
}


def word(canvas, text, x, baseline, size, weight, paint, gap=0.36):
    """Draws `text`; the answer is where it ends."""
    for letter in text:
        width, strokes = GLYPHS[letter]
        shapes = []
        for kind, *v in strokes:
            if kind == "line":
                shapes.append(line(x + v[0] * size, baseline - v[1] * size, x + v[2] * size, baseline - v[3] * size, weight))
            else:
                shapes.append(arc(x + v[0] * size, baseline - v[1] * size, v[2] * size, v[3], v[4], weight))
        if shapes:
            rect = (int(x - weight), int(baseline - 1.6 * size), int(width * size + 2 * weight) + 2, int(2.2 * size) + 2)
            canvas.paint(rect, paint, union(*shapes))
        x += (width + gap) * size
    return x


def banner():
    """460 by 130, of which panels show 400 by 130: the lamp throws its light behind the product's name."""
    canvas = Canvas(460, 130)
    everything = (0, 0, 460, 130)
    canvas.paint(everything, beam(GLASS, 48, 65, 402, 65, 20, 62, 0.24))
    canvas.paint(everything, beam(BRIGHT, 48, 65, 340, 65, 12, 38, 0.16))
    lamp(canvas, everything, 48, 65, 30)
    for dy, paint in ((1.6, solid((12, 16, 20), 0.5)), (0.0, vertical(WHITE, (212, 224, 236), 48, 80))):
        end = word(canvas, "Lumen", 102, 78 + dy, 21.4, 3.8, paint)
        word(canvas, "Player", end + 7, 78 + dy, 21.4, 2.5, paint)
    return canvas


def third_image():
    """72 by 44: the lamp and its light, small."""
    canvas = Canvas(72, 44)
    everything = (0, 0, 72, 44)
    canvas.paint(everything, beam(GLASS, 20, 22, 72, 22, 10, 24, 0.34))
    lamp(canvas, everything, 20, 22, 13)
    return canvas


IMAGES = {"skin.tga": skin_sheet, "banner.tga": banner, "third.tga": third_image}
