"""The pictures of controls that both skins draw in one way, each in its own colours and roundness."""

from dataclasses import dataclass

from .canvas import Canvas, circle, mix, polygon, polyline, rounded, strip, vertical

BUTTON_STATES = ('normal', 'hot', 'pressed', 'disabled')


@dataclass(frozen=True)
class Look:
    """A control's colours in one state: its face from top to bottom, its border, the mark on it."""

    top: str
    bottom: str
    border: str
    mark: str


def inset(box, by):
    left, top, right, bottom = box
    return (left + by, top + by, right - by, bottom - by)


def arrow(cx, cy, size, direction):
    """A triangle that points up, down or right."""
    s, h = size, size * 0.6
    return {
        'up': polygon((cx - s, cy + h), (cx, cy - h), (cx + s, cy + h)),
        'down': polygon((cx - s, cy - h), (cx + s, cy - h), (cx, cy + h)),
        'right': polygon((cx - h, cy - s), (cx + h, cy), (cx - h, cy + s)),
    }[direction]


def tick(x, y, size, width):
    """A check mark in a square."""
    return polyline([(x + size * 0.16, y + size * 0.52), (x + size * 0.4, y + size * 0.76),
                     (x + size * 0.84, y + size * 0.24)], width)


def left_right(name, length):
    """The two keys of a picture's fixed ends, equally long."""
    return {f'{name}Left': length, f'{name}Right': length}


class Controls:
    """A skin derives from this: it sets `looks` by state, `accent`, `ground` (what lies beneath the
    controls), `page` (what lies in lists and boxes), `radius` and so on, and draws its own frame and tabs.
    Its values for the file are `colours`, `border`, `caption`, `backdrop`, and `fixed_ends` by control."""

    @property
    def ini(self):
        """The sections of the skin's file, each with its keys and values."""
        def ends(*controls, separator='_'):
            return {key: length for control in controls
                    for key, length in left_right(control + separator, self.fixed_ends[control]).items()}

        return {
            'COLOR': self.colours, 'Border': self.border, 'SysButton': self.caption,
            'Background': {
                **self.backdrop, **left_right('Bkg_bmp_', 0), **left_right('BkgTop_bmp_', 16),
                **left_right('BkgMid_bmp_', 16), **left_right('BkgBtm_bmp_', 0),
            },
            'Button': {
                **ends('PushButton', 'TabBtnVert', 'TabBtnHorz'), **ends('ListViewHeader', separator=''),
                'MainTabBtn_Mask': 'RGB(255,0,255)', 'MainTabBtnIntersect_Height': 1,
            },
            'IMList': ends('GroupBtn'),
            'OtherCtrl': ends('SliderCtrlTrack', 'SliderCtrlThumb', 'OutlookCtrlBar', 'FileTransProgressBar'),
        }

    def background_middle(self):
        band = Canvas(96, 16)
        band.fill(rounded((0, 0, 96, 16)), self.ground)
        return band

    def face(self, canvas, box, look, radius):
        canvas.fill(rounded(box, radius), look.border)
        inner = inset(box, 1)
        soft = max(radius - 1, 0)
        canvas.fill(rounded(inner, soft), vertical(mix(look.top, '#ffffff', self.gloss), look.top, 0, 3))
        canvas.fill(rounded((inner[0], inner[1] + 1, inner[2], inner[3]), soft),
                    vertical(look.top, look.bottom, inner[1], inner[3]))

    def push_button(self):
        cells = []
        for state in BUTTON_STATES + ('default',):
            cell = Canvas(48, 24)
            self.face(cell, (0, 0, 48, 24), self.looks[state], self.radius)
            if state == 'default':
                cell.fill(rounded((1, 1, 47, 23), max(self.radius - 1, 0)).outline(1), self.accent, 0.8)
            cells.append(cell)
        return strip(cells)

    # Off, on and in between, each in the four states.
    def check_box(self):
        size, radius = 14, self.radius * 0.6
        cells = []
        for value in ('off', 'on', 'mixed'):
            for state in BUTTON_STATES:
                cell, look = Canvas(size, size), self.looks[state]
                self.box(cell, rounded((0, 0, size, size), radius),
                         rounded((1, 1, size - 1, size - 1), max(radius - 1, 0)), state)
                mark = look.mark if state == 'disabled' else self.check_mark
                if value == 'on':
                    cell.fill(tick(1, 1, 12, 2.2), mark)
                elif value == 'mixed':
                    cell.fill(rounded((4, 4, 10, 10), radius / 2), mark)
                cells.append(cell)
        return strip(cells)

    # Off and on, each in the four states.
    def radio_button(self):
        cells = []
        for value in (False, True):
            for state in BUTTON_STATES:
                cell, look = Canvas(14, 14), self.looks[state]
                self.box(cell, circle(7, 7, 7), circle(7, 7, 6), state)
                if value:
                    cell.fill(circle(7, 7, 3.2), look.mark if state == 'disabled' else self.check_mark)
                cells.append(cell)
        return strip(cells)

    def box(self, cell, outside, inside, state):
        """What a check or radio mark stands in: the page's colour, tinted where the pointer is."""
        look = self.looks[state]
        tint = {'normal': 0.0, 'hot': 0.16, 'pressed': 0.4, 'disabled': 0.0}[state]
        cell.fill(outside, look.border)
        cell.fill(inside, look.bottom if state == 'disabled' else mix(self.page, self.accent, tint))

    # The upper button in the four states, then the lower one.
    def spin_button(self):
        cells = []
        for direction in ('up', 'down'):
            for state in BUTTON_STATES:
                cell, look = Canvas(16, 10), self.looks[state]
                self.face(cell, (0, 0, 16, 10), look, self.radius * 0.4)
                cell.fill(arrow(8, 5, 3.2, direction), look.mark)
                cells.append(cell)
        return strip(cells)

    def combo_button(self):
        cells = []
        for state in BUTTON_STATES:
            cell, look = Canvas(18, 20), self.looks[state]
            self.face(cell, (0, 0, 18, 20), look, self.radius * 0.6)
            cell.fill(arrow(9, 10.5, 4, 'down'), look.mark)
            cells.append(cell)
        return strip(cells)

    # Each state ends in the line between two columns.
    def list_view_header(self):
        cells = []
        for state in BUTTON_STATES:
            cell, look = Canvas(32, 22), self.looks[state]
            cell.fill(rounded((0, 0, 32, 22)), vertical(look.top, look.bottom, 0, 22))
            cell.fill(rounded((0, 21, 32, 22)), look.border)
            cell.fill(rounded((31, 4, 32, 18)), look.border, 0.7)
            if state != 'disabled':
                cell.fill(rounded((0, 0, 32, 1)), mix(look.top, '#ffffff', self.gloss))
            cells.append(cell)
        return strip(cells)

    # Up, down, thumb and track.
    def scroll_bar(self):
        look, cells = self.looks['normal'], []
        for part in ('up', 'down', 'thumb', 'track'):
            cell = Canvas(16, 16)
            cell.fill(rounded((0, 0, 16, 16)), mix(self.ground, look.border, 0.12))
            if part == 'thumb':
                self.face(cell, (2, 0, 14, 16), look, self.radius * 0.8)
                for y in (5, 8, 11):
                    cell.fill(rounded((5, y - 0.5, 11, y + 0.5)), look.border)
            elif part != 'track':
                cell.fill(arrow(8, 8, 3.6, part), look.mark)
            cells.append(cell)
        return strip(cells)

    def group_button(self):
        cells = []
        for state in ('normal', 'hot', 'pressed'):
            cell, look = Canvas(40, 22), self.looks[state]
            self.face(cell, (0, 0, 40, 22), look, self.radius * 0.6)
            cells.append(cell)
        return strip(cells)

    # Two people.
    def team_button(self):
        cells = []
        for state in ('normal', 'hot', 'pressed'):
            cell, look = Canvas(22, 20), self.looks[state]
            if state != 'normal':
                self.face(cell, (0, 0, 22, 20), look, self.radius * 0.6)
            back = mix(self.accent, self.ground, 0.4) if state == 'normal' else look.border
            front = look.mark if state == 'pressed' else self.accent
            for x, y, colour in ((13.5, 6.5, back), (8.5, 8, front)):
                cell.fill(circle(x, y, 2.6), colour)
                cell.fill(rounded((x - 4.5, y + 3, x + 4.5, y + 8.5), (4, 4, 1, 1)), colour)
            cells.append(cell)
        return strip(cells)

    def icon(self, direction):
        canvas = Canvas(16, 16)
        canvas.fill(circle(8, 8, 7.2), self.ring)
        canvas.fill(circle(8, 8, 6.2), vertical(mix(self.accent, '#ffffff', 0.35), self.accent, 2, 14))
        canvas.fill(arrow(8.4 if direction == 'right' else 8, 8.4, 3.2, direction), self.on_accent)
        return canvas

    def slider_track(self):
        canvas = Canvas(32, 6)
        canvas.fill(rounded((0, 0, 32, 6), min(self.radius, 3)), self.looks['normal'].border)
        canvas.fill(rounded((1, 1, 31, 5), min(self.radius, 2)), mix(self.page, self.accent, 0.15))
        return canvas

    def slider_thumb(self):
        canvas = Canvas(12, 20)
        self.face(canvas, (0, 0, 12, 20), self.looks['normal'], self.radius * 0.8)
        canvas.fill(rounded((5, 5, 7, 15), 1), self.accent)
        return canvas

    def outlook_bar(self):
        cells = []
        for state in ('normal', 'hot', 'pressed'):
            cell, look = Canvas(48, 26), self.looks[state]
            self.face(cell, (0, 0, 48, 26), look, self.radius * 0.5)
            stripe = rounded((1, 1, 4, 25), min(self.radius * 0.5, 2))
            cell.fill(stripe, self.accent, 1 if state == 'pressed' else 0.55)
            cells.append(cell)
        return strip(cells)

    def menu_check(self):
        canvas = Canvas(16, 16)
        canvas.fill(tick(2, 2, 12, 2.4), self.check_mark)
        return canvas

    # Empty and filled.
    def progress_bar(self):
        box, border = (0, 0, 32, 14), self.looks['normal'].border
        radius = min(self.radius, 6)
        empty, full = Canvas(32, 14), Canvas(32, 14)
        for cell in (empty, full):
            cell.fill(rounded(box, radius), border)
        inside = rounded(inset(box, 1), max(radius - 1, 0))
        empty.fill(inside, vertical(mix(self.page, border, 0.25), self.page, 1, 8))
        full.fill(inside, vertical(mix(self.accent, '#ffffff', 0.45), self.accent, 1, 12))
        full.fill(rounded((3, 2.5, 29, 5), min(self.radius, 1)), '#ffffff', 0.3)
        return strip([empty, full])

    def file_image(self, sends):
        """A sheet with a folded corner on a soft shadow, and an arrow that goes away from it or into it."""
        canvas = Canvas(32, 32)
        for n in range(4):
            canvas.fill(rounded((4 - n, 4 - n, 24 + n, 31 + n), 3 + n), '#000000', 0.08)
        canvas.fill(rounded((4, 2, 23, 29), 2), self.sheet_edge)
        canvas.fill(rounded((5, 3, 22, 28), 1), vertical('#ffffff', self.sheet, 3, 28))
        canvas.fill(polygon((17, 2), (23, 8), (17, 8)), self.sheet_edge)
        for y in (11, 15, 19):
            canvas.fill(rounded((8, y, 19, y + 1.4)), self.sheet_edge, 0.8)
        colour = self.accent if sends else self.receive
        canvas.fill(circle(22, 22, 8.5), '#ffffff')
        canvas.fill(circle(22, 22, 7.5), vertical(mix(colour, '#ffffff', 0.3), colour, 14, 30))
        tip, tail, wing = (18, 26.5, 21.5) if sends else (26, 17.5, 22.5)
        canvas.fill(polyline([(22, tail), (22, tip)], 2.4) |
                    polyline([(18.5, wing), (22, tip), (25.5, wing)], 2.4), '#ffffff')
        return canvas
