"""Ember: charcoal with an orange glow, square and flat. Its files are spelled in cases of all kinds."""

from .canvas import Canvas, circle, polygon, polyline, rounded, strip, vertical
from .controls import BUTTON_STATES, Controls, Look


class Ember(Controls):
    name = 'Ember'
    accent, on_accent, check_mark = '#f28c28', '#2a1a08', '#ffab4f'
    ring = '#1c1c1f'
    ground, page = '#2d2d31', '#222226'
    sheet, sheet_edge, receive = '#e4dcd2', '#8d8277', '#6f9f3c'
    radius, gloss = 0, 0.1
    looks = {
        'normal': Look('#4b4b51', '#3c3c42', '#65656d', '#eadfd2'),
        'hot': Look('#6a5640', '#543f2a', '#f28c28', '#ffd9ae'),
        'pressed': Look('#b35a0c', '#d97a1e', '#ffb366', '#fff3e4'),
        'disabled': Look('#36363a', '#313135', '#47474c', '#6d6d74'),
        'default': Look('#4b4b51', '#3c3c42', '#17171a', '#eadfd2'),
    }
    # The frame, active and not: its face from top to bottom, and the stripe.
    frames = (('#47474d', '#2b2b2f', '#f28c28'), ('#3a3a3e', '#303034', '#77706a'))
    edge_line = '#0f0f11'

    def title(self):
        """A stripe along the top, and embers that rise from it on the left."""
        cells = []
        for top, bottom, stripe in self.frames:
            cell = Canvas(160, 28)
            cell.fill(rounded((0, 0, 160, 28)), self.edge_line)
            cell.fill(rounded((1, 1, 159, 28)), vertical(top, bottom, 3, 28))
            cell.fill(rounded((1, 1, 159, 3)), stripe)
            for n in range(5):
                x = 1 + n * 9
                cell.fill(polygon((x + 6, 3), (x + 10, 3), (x + 4, 12), (x, 12)), stripe, 0.5 - n * 0.1)
            cell.fill(rounded((1, 27, 159, 28)), self.edge_line)
            cells.append(cell)
        return strip(cells, horizontal=False)

    def edge(self, right):
        cells = []
        for _, bottom, stripe in self.frames:
            cell = Canvas(4, 48)
            cell.fill(rounded((0, 0, 4, 48)), bottom)
            cell.fill(rounded((3, 0, 4, 48) if right else (0, 0, 1, 48)), self.edge_line)
            cell.fill(rounded((0, 0, 1, 48) if right else (3, 0, 4, 48)), self.edge_line)
            cell.fill(rounded((1, 0, 3, 10)), vertical(stripe, bottom, 0, 10))
            cells.append(cell)
        return strip(cells)

    def bottom(self):
        """The line below ends in a grip."""
        cells = []
        for _, bottom, stripe in self.frames:
            cell = Canvas(80, 6)
            cell.fill(rounded((0, 0, 80, 6)), self.edge_line)
            cell.fill(rounded((1, 1, 79, 5)), bottom)
            cell.fill(rounded((60, 2, 78, 4)), stripe)
            cells.append(cell)
        return strip(cells, horizontal=False)

    def caption_button(self, glyph):
        cells = []
        for top, bottom, stripe in self.frames:
            active = stripe == self.accent
            title = vertical(top, bottom, -2, 23)  # what is behind it there
            faces = {'normal': title, 'hot': '#5a5a61', 'pressed': '#b35a0c', 'disabled': title}
            if glyph == 'close':
                faces |= {'hot': '#e2571f', 'pressed': '#a83a0c'}
            for state in BUTTON_STATES:
                cell = Canvas(26, 20)
                cell.fill(rounded((0, 0, 26, 20)), faces[state])
                if state == 'hot':
                    cell.fill(rounded((0, 18, 26, 20)), '#ffb366')
                bright = active or state in ('hot', 'pressed')
                mark = '#77777e' if state == 'disabled' else '#f3e8db' if bright else '#b7ada3'
                cell.fill(GLYPHS[glyph], mark)
                cells.append(cell)
        return strip(cells)

    def tab_vert(self):
        return strip([self._tab(state, 26, upright=False) for state in BUTTON_STATES])

    def tab_horz(self):
        return strip([self._tab(state, 24, upright=True) for state in BUTTON_STATES])

    def _tab(self, state, height, upright):
        cell, look = Canvas(48, height), self.looks[state]
        if state == 'pressed':
            cell.fill(rounded((0, 0, 48, height)), self.page)
            cell.fill(rounded((0, 0, 48, 3) if upright else (0, 0, 3, height)), self.accent)
        else:
            cell.fill(rounded((0, 0, 48, height)), vertical(look.top, look.bottom, 0, height))
            cell.fill(rounded((47, 0, 48, height) if upright else (0, height - 1, 48, height)),
                      self.edge_line)
            if state == 'hot':
                cell.fill(rounded((0, 0, 48, 1) if upright else (0, 0, 1, height)), self.accent)
        return cell

    def main_tab(self):
        cells = []
        for state in BUTTON_STATES:
            cell, look = Canvas(108, 28), self.looks[state]
            chosen = state == 'pressed'
            slope = polygon((0, 0), (98, 0), (108, 10), (108, 28), (0, 28))
            cell.fill(slope, '#5a5a61' if chosen else self.edge_line)
            inner = polygon((1, 1), (97.6, 1), (107, 10.4), (107, 28), (1, 28))
            cell.fill(inner, '#38383d' if chosen else vertical(look.top, look.bottom, 0, 28))
            if chosen or state == 'hot':
                cell.fill(rounded((1, 1, 97, 4 if chosen else 2)), self.accent)
            cells.append(cell)
        return strip(cells)

    def background(self):
        """A weave of slanted threads, in a tile that meets itself on all sides."""
        tile = Canvas(48, 48)
        tile.fill(rounded((0, 0, 48, 48)), self.ground)
        for start in range(-48, 48, 8):
            tile.fill(polyline([(start - 1, 49), (start + 49, -1)], 1.2), '#343439')
        for x, y in ((8, 12), (32, 36)):
            tile.fill(circle(x, y, 1.4), self.accent, 0.22)
        return tile

    def background_top(self):
        band = Canvas(96, 64)
        band.fill(rounded((0, 0, 96, 64)), vertical('#4d3a27', self.ground, 0, 64))
        return band

    def background_bottom(self):
        """Coals, glowing from below."""
        band = Canvas(96, 40)
        band.fill(rounded((0, 0, 96, 40)), vertical(self.ground, '#6b3a12', 0, 40))
        for n in range(9):
            x, r = n * 12, (9, 12, 7, 10)[n % 4]
            warm = vertical('#8a4a14', '#241610', 38 - r, 42)
            band.fill(circle(x, 42, r), warm)
            band.fill(circle(x, 42, r).outline(1.2), self.accent, 0.7)
        return band

    colours = {
        'BackColor': (34, 34, 38), 'TextColor': (234, 223, 210), 'TitleColor': (255, 216, 168),
        'MainTabClient': (56, 56, 61), 'MainTabBkg': (45, 45, 49), 'MainTabBorderLine': (90, 90, 97),
        'TabBorderLine': (242, 140, 40), 'CommonBorderLine': (90, 90, 97),
        'ControlBarBk1': (58, 58, 63), 'ControlBarBk2': (40, 40, 44),
        'MenuBorderNormal': (78, 78, 84), 'MenuBorderSelect': (242, 140, 40),
        'MenuBorderPress': (255, 179, 102), 'MenuSelectBk': (94, 66, 36), 'PopMenuBk': (45, 45, 49),
        'PopMenuLeftBk': (34, 34, 38), 'PopMenuSelBk': (112, 68, 26), 'PopMenuSelBorder': (242, 140, 40),
        'FileTransHotBk1': (84, 63, 42), 'FileTransHotBk2': (56, 48, 42),
    }
    border = {
        'DrawType': 0, 'Title_Left_Width': 56, 'Title_Right_Width': 16, 'Left_Top_Height': 12,
        'Left_Bottom_Height': 12, 'Right_Top_Height': 12, 'Right_Bottom_Height': 12,
        'Bottom_Left_Width': 12, 'Bottom_Right_Width': 28,
    }
    caption = {
        'AutoAlign': True, 'MinButton_Offset': 58, 'MaxButton_Offset': 31, 'CloseButton_Offset': 4,
        'MinButton_Top': 5, 'MaxButton_Top': 5, 'CloseButton_Top': 5, 'Button_Space': 1,
        'SysMenu_Top': 8, 'SysMenu_Left': 52, 'TitleText_Top': 2, 'TitleText_Left': 76,
        'AlwaysShowMinButton': True,
    }
    backdrop = {'BackColor': (61, 50, 40), 'BkgType': 'SingleBmp'}
    fixed_ends = {
        'PushButton': 4, 'TabBtnVert': 4, 'TabBtnHorz': 4, 'ListViewHeader': 4, 'GroupBtn': 4,
        'SliderCtrlTrack': 4, 'SliderCtrlThumb': 2, 'OutlookCtrlBar': 6, 'FileTransProgressBar': 6,
    }


GLYPHS = {
    'min': rounded((8, 12, 18, 14)),
    'max': rounded((8, 5, 18, 14)).outline(1) | rounded((8, 5, 18, 7)),
    'restore': rounded((7, 8, 15, 15)).outline(1) |
               (rounded((10, 5, 18, 12)).outline(1) - rounded((7, 8, 15, 15))),
    'close': polyline([(9, 6), (17, 14)], 1.6) | polyline([(17, 6), (9, 14)], 1.6),
}
