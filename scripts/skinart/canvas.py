"""A small drawing surface: shapes by their distance, filled with a paint, their edges sampled finely."""

from dataclasses import dataclass
from math import ceil, floor, hypot
from typing import Callable

KEY = (255, 0, 255)  # what the client leaves out when it draws with the mask colour
SAMPLES = [(i + 0.5) / 4 for i in range(4)]


@dataclass(frozen=True)
class Shape:
    """`distance` of a point is below 0 inside; `box` (left, top, right, bottom) holds all of the inside."""

    box: tuple
    distance: Callable

    def __or__(self, other):
        (a, b, c, d), (e, f, g, h) = self.box, other.box
        return Shape((min(a, e), min(b, f), max(c, g), max(d, h)),
                     lambda x, y: min(self.distance(x, y), other.distance(x, y)))

    def __and__(self, other):
        return Shape(self.box, lambda x, y: max(self.distance(x, y), other.distance(x, y)))

    def __sub__(self, other):
        return Shape(self.box, lambda x, y: max(self.distance(x, y), -other.distance(x, y)))

    def outline(self, width=1.0):
        """The rim of that width, inside of the shape's own edge."""
        return Shape(self.box, lambda x, y: max(self.distance(x, y), -self.distance(x, y) - width))


def rounded(box, radius=0.0):
    """A rectangle; `radius` is one number, or four for the corners from the upper left clockwise."""
    left, top, right, bottom = box
    radii = radius if isinstance(radius, tuple) else (radius,) * 4
    cx, cy = (left + right) / 2, (top + bottom) / 2

    def distance(x, y):
        r = radii[(0 if x < cx else 1) if y < cy else (3 if x < cx else 2)]
        dx = abs(x - cx) - (right - left) / 2 + r
        dy = abs(y - cy) - (bottom - top) / 2 + r
        return hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - r

    return Shape(box, distance)


def circle(cx, cy, r):
    return Shape((cx - r, cy - r, cx + r, cy + r), lambda x, y: hypot(x - cx, y - cy) - r)


def polyline(points, width):
    """Strokes of that width with round ends, through the points."""
    def distance(x, y):
        nearest = 1e9
        for (ax, ay), (bx, by) in zip(points, points[1:]):
            ux, uy = bx - ax, by - ay
            t = ((x - ax) * ux + (y - ay) * uy) / (ux * ux + uy * uy)
            t = min(max(t, 0), 1)
            nearest = min(nearest, hypot(x - ax - t * ux, y - ay - t * uy))
        return nearest - width / 2

    xs, ys = zip(*points)
    return Shape((min(xs) - width, min(ys) - width, max(xs) + width, max(ys) + width), distance)


def polygon(*points):
    """A convex polygon, its corners clockwise as seen on the screen."""
    sides = list(zip(points, points[1:] + points[:1]))

    def distance(x, y):
        return max(((x - ax) * (by - ay) - (y - ay) * (bx - ax)) / hypot(bx - ax, by - ay)
                   for (ax, ay), (bx, by) in sides)

    xs, ys = zip(*points)
    return Shape((min(xs), min(ys), max(xs), max(ys)), distance)


def below(curve, box):
    """What lies below y = curve(x) in the box."""
    return Shape(box, lambda x, y: curve(x) - y)


def rgb(text):
    return tuple(int(text[i:i + 2], 16) for i in (1, 3, 5))


def mix(a, b, share):
    """The colour `share` of the way from `a` to `b`, all in "#rrggbb"."""
    return '#%02x%02x%02x' % tuple(round(p + (q - p) * share) for p, q in zip(rgb(a), rgb(b)))


def vertical(top, bottom, y0, y1):
    """A paint that goes from one colour to another between two heights."""
    a, b = rgb(top), rgb(bottom)

    def paint(_, y):
        share = min(max((y - y0) / (y1 - y0), 0), 1)
        return tuple(p + (q - p) * share for p, q in zip(a, b))

    return paint


class Canvas:
    """Pixels of straight colour (0 to 255) and opacity (0 to 1), clear at first."""

    def __init__(self, width, height):
        self.width, self.height = width, height
        self.rows = [[(0, 0, 0, 0.0)] * width for _ in range(height)]

    def fill(self, shape, paint, opacity=1.0):
        """`paint` is "#rrggbb" or a function of x and y."""
        if isinstance(paint, str):
            colour = rgb(paint)
            paint = lambda x, y: colour
        left, top, right, bottom = shape.box
        for y in range(max(floor(top), 0), min(ceil(bottom), self.height)):
            for x in range(max(floor(left), 0), min(ceil(right), self.width)):
                covered = coverage(shape.distance, x, y)
                if covered > 0:
                    self._blend(x, y, paint(x + 0.5, y + 0.5), covered * opacity)

    def paste(self, other, x0, y0):
        for y, row in enumerate(other.rows):
            self.rows[y0 + y][x0:x0 + other.width] = row

    def _blend(self, x, y, colour, alpha):
        *under, below_alpha = self.rows[y][x]
        rest = below_alpha * (1 - alpha)
        total = alpha + rest
        self.rows[y][x] = tuple((c * alpha + u * rest) / total for c, u in zip(colour, under)) + (total,)

    def keyed(self, ground=None):
        """Rows of colours without opacity, the key where there's little or nothing. A rim lies on `ground`,
        so that it fades into what the client has there; without one it is there or not."""
        def flat(pixel):
            *colour, alpha = pixel
            if alpha < (0.12 if ground else 0.5):
                return KEY
            if not ground:
                return tuple(round(c) for c in colour)
            return tuple(round(c * alpha + b * (1 - alpha)) for c, b in zip(colour, rgb(ground)))

        return [[flat(pixel) for pixel in row] for row in self.rows]

    def straight(self):
        """Rows of red, green, blue and opacity, as bytes."""
        return [[tuple(round(c) for c in p[:3]) + (round(p[3] * 255),) for p in row] for row in self.rows]


def coverage(distance, x, y):
    """How much of a pixel lies in a shape. Far from the edge one sample tells."""
    middle = distance(x + 0.5, y + 0.5)
    if abs(middle) > 1:
        return 1.0 if middle < 0 else 0.0
    return sum(distance(x + i, y + j) <= 0 for j in SAMPLES for i in SAMPLES) / 16


def strip(cells, horizontal=True):
    """One canvas of equal ones, side by side or stacked."""
    width, height = cells[0].width, cells[0].height
    count = len(cells)
    all_of_them = Canvas(width * count, height) if horizontal else Canvas(width, height * count)
    for n, cell in enumerate(cells):
        all_of_them.paste(cell, n * width if horizontal else 0, 0 if horizontal else n * height)
    return all_of_them
