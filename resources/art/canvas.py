"""A small anti-aliasing painter: shapes are signed distances in pixels, paints are functions of a place.

Coordinates are pixels from the top left; pixel (x, y) is sampled at its centre. Colours are (red, green, blue) of 0 to
255, coverage and opacity 0 to 1. Nothing but the standard library is needed, so that the images can be drawn anywhere.
"""

import math
import struct
import zlib


# Shapes: functions of a place that answer its distance to the edge, negative inside.


def circle(cx, cy, radius):
    return lambda x, y: math.hypot(x - cx, y - cy) - radius


def box(left, top, width, height, radius=0.0):
    cx, cy = left + width / 2, top + height / 2
    half_w, half_h = width / 2 - radius, height / 2 - radius

    def distance(x, y):
        dx, dy = abs(x - cx) - half_w, abs(y - cy) - half_h
        return math.hypot(max(dx, 0.0), max(dy, 0.0)) + min(max(dx, dy), 0.0) - radius

    return distance


def line(x0, y0, x1, y1, width):
    """A stroke with round ends."""
    dx, dy = x1 - x0, y1 - y0
    length = dx * dx + dy * dy

    def distance(x, y):
        t = 0.0 if length == 0 else max(0.0, min(1.0, ((x - x0) * dx + (y - y0) * dy) / length))
        return math.hypot(x - x0 - t * dx, y - y0 - t * dy) - width / 2

    return distance


def arc(cx, cy, radius, start, sweep, width):
    """A stroke along a circle, round at its ends; `start` in degrees counted against the clock from the right."""
    middle, half = math.radians(start + sweep / 2), math.radians(abs(sweep) / 2)

    def distance(x, y):
        angle = math.atan2(cy - y, x - cx) - middle
        angle = abs((angle + math.pi) % (2 * math.pi) - math.pi)
        if angle <= half:
            return abs(math.hypot(x - cx, y - cy) - radius) - width / 2
        ends = []
        for end in (middle - half, middle + half):
            ends.append(math.hypot(x - cx - radius * math.cos(end), y - cy + radius * math.sin(end)))
        return min(ends) - width / 2

    return distance


def polygon(points, radius=0.0):
    """A filled polygon; with `radius` its corners are rounded, and it grows by as much."""
    edges = list(zip(points, points[1:] + points[:1]))

    def distance(x, y):
        nearest, inside = math.inf, False
        for (x0, y0), (x1, y1) in edges:
            dx, dy = x1 - x0, y1 - y0
            t = max(0.0, min(1.0, ((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy)))
            nearest = min(nearest, math.hypot(x - x0 - t * dx, y - y0 - t * dy))
            if (y0 > y) != (y1 > y) and x < x0 + (y - y0) * dx / dy:
                inside = not inside
        return (-nearest if inside else nearest) - radius

    return distance


def union(*shapes):
    return lambda x, y: min(shape(x, y) for shape in shapes)


def ring(shape, width):
    """The band of `width` just inside a shape's edge."""
    return lambda x, y: abs(shape(x, y) + width / 2) - width / 2


def inset(shape, by):
    return lambda x, y: shape(x, y) + by


# Paints: functions of a place that answer a colour and its opacity.


def solid(color, opacity=1.0):
    return lambda x, y: (color, opacity)


def mix(a, b, t):
    t = max(0.0, min(1.0, t))
    return tuple(p + (q - p) * t for p, q in zip(a, b))


def vertical(top, bottom, y0, y1, opacity=1.0):
    return lambda x, y: (mix(top, bottom, (y - y0) / (y1 - y0)), opacity)


def radial(inner, outer, cx, cy, radius, opacity=1.0):
    return lambda x, y: (mix(inner, outer, math.hypot(x - cx, y - cy) / radius), opacity)


def glow(color, cx, cy, radius, opacity):
    """Brightest in the middle, softly gone at `radius`."""

    def paint(x, y):
        t = max(0.0, 1.0 - math.hypot(x - cx, y - cy) / radius)
        return color, opacity * t * t * (3 - 2 * t)

    return paint


def beam(color, x0, y0, x1, y1, spread0, spread1, opacity):
    """Light thrown from one point towards another: `spread` is its half width at either end; it fades on the way."""
    dx, dy = x1 - x0, y1 - y0
    length = math.hypot(dx, dy)

    def paint(x, y):
        along = ((x - x0) * dx + (y - y0) * dy) / (length * length)
        if not 0.0 <= along <= 1.0:
            return color, 0.0
        across = abs((x - x0) * dy - (y - y0) * dx) / length
        reach = spread0 + (spread1 - spread0) * along
        edge = max(0.0, min(1.0, (reach - across) / (2.0 + reach * 0.35)))
        fade = (1.0 - along) ** 1.3
        return color, opacity * edge * edge * (3 - 2 * edge) * fade

    return paint


class Canvas:
    """Premultiplied pixels; painting lays colour over what is there."""

    def __init__(self, width, height):
        self.width, self.height = width, height
        self.rows = [[(0.0, 0.0, 0.0, 0.0)] * width for _ in range(height)]

    def paint(self, rect, paint, shape=None):
        """Paints `rect` (x, y, width, height), as far as `shape` covers it. Nothing is written outside."""
        left, top, width, height = rect
        for y in range(max(top, 0), min(top + height, self.height)):
            row = self.rows[y]
            for x in range(max(left, 0), min(left + width, self.width)):
                coverage = 1.0 if shape is None else max(0.0, min(1.0, 0.5 - shape(x + 0.5, y + 0.5)))
                if coverage == 0.0:
                    continue
                color, opacity = paint(x + 0.5, y + 0.5)
                alpha = coverage * opacity
                row[x] = tuple(c / 255 * alpha + old * (1 - alpha) for c, old in zip(color, row[x])) + (
                    alpha + row[x][3] * (1 - alpha),)

    def pixels(self):
        """Rows of (blue, green, red, alpha) bytes, no channel above its alpha."""
        result = []
        for row in self.rows:
            line_of = []
            for r, g, b, a in row:
                alpha = round(a * 255)
                line_of.append(bytes(min(alpha, round(c * 255)) for c in (b, g, r)) + bytes([alpha]))
            result.append(line_of)
        return result


def encode_tga(pixels):
    """Run-length TGA of 32 bits, bottom row first, packets within a row, with the format's footer."""
    out = bytearray(struct.pack("<BBBHHBHHHHBB", 0, 0, 10, 0, 0, 0, 0, 0, len(pixels[0]), len(pixels), 32, 8))
    for row in reversed(pixels):
        at = 0
        while at < len(row):
            run = 1
            while at + run < len(row) and run < 128 and row[at + run] == row[at]:
                run += 1
            if run > 1:
                out.append(127 + run)
                out += row[at]
                at += run
                continue
            raw = 1
            while at + raw < len(row) and raw < 128 and (at + raw + 1 == len(row) or row[at + raw] != row[at + raw + 1]):
                raw += 1
            out.append(raw - 1)
            out += b"".join(row[at:at + raw])
            at += raw
    return bytes(out) + struct.pack("<II", 0, 0) + b"TRUEVISION-XFILE.\0"


def encode_png(rows):
    """Opaque PNG of rows of (red, green, blue); for looking at."""
    raw = b"".join(b"\0" + bytes(c for pixel in row for c in pixel) for row in rows)

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")
