"""Harbour: cool blue on a light ground, round corners, a gloss on everything."""

from math import pi, sin

from .canvas import Canvas, below, mix, polyline, rounded, strip, vertical
from .controls import BUTTON_STATES, Controls, Look


class Harbour(Controls):
    name = 'Harbour'
    accent, on_accent, check_mark = '#2f86d2', '#ffffff', '#1f6fb5'
    ring = '#ffffff'
    ground, page = '#eef5fb', '#ffffff'
    sheet, sheet_edge, receive = '#dcebf8', '#7fa4c6', '#2e9e6b'
    radius, gloss = 5, 0.7
    looks = {
        'normal': Look('#fbfdff', '#d6e7f5', '#86aecf', '#245a8c'),
        'hot': Look('#ffffff', '#b9defb', '#3d8fd1', '#1c6bb0'),
        'pressed': Look('#a6cdee', '#cde5f8', '#2b6ca3', '#123f68'),
        'disabled': Look('#f5f7f9', '#e9eef2', '#c6d1da', '#a9b6c1'),
        'default': Look('#fbfdff', '#cfe4f6', '#2b6ca3', '#245a8c'),
    }
    # The frame, active and not: its light and its dark, and its outline.
    frames = (('#79bdf0', '#2f7dc6', '#1c5893'), ('#b7cbdb', '#8fa9be', '#6f8ca3'))

    def title(self):
        cells = []
        for light, dark, edge in self.frames:
            cell = Canvas(140, 32)
            cell.fill(rounded((0, 0, 140, 40), (9, 9, 0, 0)), edge)
            shine = vertical(mix(light, '#ffffff', 0.5), light, 1, 4)
            cell.fill(rounded((1, 1, 139, 40), (8, 8, 0, 0)), shine)
            cell.fill(rounded((1, 3, 139, 40), (7, 7, 0, 0)), vertical(light, dark, 3, 32))
            cell.fill(rounded((4, 31, 136, 32)), edge, 0.6)
            cells.append(cell)
        return strip(cells, horizontal=False)

    def edge(self, right):
        cells = []
        for _, dark, edge in self.frames:
            cell = Canvas(5, 48)
            cell.fill(rounded((0, 0, 5, 48)), dark)
            cell.fill(rounded((4, 0, 5, 48) if right else (0, 0, 1, 48)), edge)
            cell.fill(rounded((0, 0, 1, 48) if right else (4, 0, 5, 48)), edge, 0.6)
            cell.fill(rounded((3, 0, 4, 48) if right else (1, 0, 2, 48)), '#ffffff', 0.25)
            cells.append(cell)
        return strip(cells)

    def bottom(self):
        cells = []
        for _, dark, edge in self.frames:
            cell = Canvas(80, 7)
            cell.fill(rounded((0, -20, 80, 7), (0, 0, 5, 5)), edge)
            face = vertical(dark, mix(dark, '#000000', 0.12), 0, 6)
            cell.fill(rounded((1, -20, 79, 6), (0, 0, 4, 4)), face)
            cell.fill(rounded((4, 0, 76, 1)), edge, 0.6)
            cells.append(cell)
        return strip(cells, horizontal=False)

    def caption_button(self, glyph):
        cells = []
        for light, dark, edge in self.frames:
            for state in BUTTON_STATES:
                cell = Canvas(26, 18)
                base = '#d9534a' if glyph == 'close' and state in ('hot', 'pressed') else dark
                share = {'normal': 0.25, 'hot': 0.45, 'pressed': 0.0, 'disabled': 0.1}[state]
                top = mix(base, '#ffffff' if state != 'pressed' else '#000000', share or 0.2)
                cell.fill(rounded((0, 0, 26, 18), 4), mix(base, '#000000', 0.35))
                rim = mix(base, '#ffffff', 0.5 if state != 'pressed' else 0.1)
                cell.fill(rounded((1, 1, 25, 17), 3), rim)
                cell.fill(rounded((1, 2, 25, 17), 3), vertical(top, base, 2, 16))
                cell.fill(GLYPHS[glyph], '#ffffff', 0.4 if state == 'disabled' else 1)
                cells.append(cell)
        return strip(cells)

    def tab_vert(self):
        return strip([self._tab(state, 26, (4, 0, 0, 4)) for state in BUTTON_STATES])

    def tab_horz(self):
        return strip([self._tab(state, 24, (5, 5, 0, 0)) for state in BUTTON_STATES])

    def _tab(self, state, height, radii):
        cell, look = Canvas(48, height), self.looks[state]
        inner = tuple(max(r - 1, 0) for r in radii)
        cell.fill(rounded((0, 0, 48, height), radii), look.border)
        across = radii[1] == 0
        box = (1, 1, 48 if across else 47, height - 1 if across else height)
        if state == 'pressed':  # the chosen one is open to the page
            cell.fill(rounded(box, inner), self.page)
            cell.fill(rounded((1, 3, 4, height - 3) if across else (3, 0, 45, 3), 1), self.accent)
        else:
            cell.fill(rounded(box, inner), vertical(look.top, look.bottom, 1, height))
            if not across:
                cell.fill(rounded((0, height - 1, 48, height)), self.looks['normal'].border)
        return cell

    def main_tab(self):
        cells = []
        for state in BUTTON_STATES:
            cell, look = Canvas(104, 30), self.looks[state]
            top = 0 if state == 'pressed' else 3
            border = '#5f9bcb' if state == 'pressed' else look.border
            cell.fill(rounded((0, top, 104, 30), (8, 8, 0, 0)), border)
            light, dark = ('#ffffff', '#eaf3fb') if state == 'pressed' else (look.top, look.bottom)
            cell.fill(rounded((1, top + 1, 103, 30), (7, 7, 0, 0)), vertical(light, dark, top, 30))
            if state == 'pressed':
                cell.fill(rounded((9, 1, 95, 3), 1), self.accent)
            cells.append(cell)
        return strip(cells)

    def background(self):
        """Ripples, in a tile that meets itself on all sides."""
        tile = Canvas(64, 48)
        tile.fill(rounded((0, 0, 64, 48)), '#e4f0fa')
        for row in range(-1, 5):
            line = [(x, row * 12 + 6 + 2.2 * sin(x * pi / 16 + (row % 2) * pi)) for x in range(-4, 69, 2)]
            tile.fill(polyline(line, 1.3), '#cfe3f4')
        return tile

    def background_top(self):
        band = Canvas(96, 72)
        band.fill(rounded((0, 0, 96, 72)), vertical('#cfe5f7', self.ground, 0, 72))
        return band

    def background_bottom(self):
        """Waves, one of them as long as the band, which meets itself at its ends."""
        band = Canvas(96, 56)
        band.fill(rounded((0, 0, 96, 56)), self.ground)
        waves = ((14, 5, 0, '#dfeefa'), (26, 4, 2, '#cfe4f6'), (38, 4, 4, '#bddaf1'))
        for top, swell, shift, colour in waves:
            band.fill(below(lambda x: top + swell * sin(x * pi / 48 + shift), (0, 0, 96, 56)), colour)
        return band

    colours = {
        'BackColor': (255, 255, 255), 'TextColor': (27, 58, 87), 'TitleColor': (255, 255, 255),
        'MainTabClient': (234, 243, 251), 'MainTabBkg': (207, 229, 247),
        'MainTabBorderLine': (95, 155, 203),
        'TabBorderLine': (134, 174, 207), 'CommonBorderLine': (134, 174, 207),
        'ControlBarBk1': (247, 251, 255), 'ControlBarBk2': (205, 226, 243),
        'MenuBorderNormal': (206, 226, 243), 'MenuBorderSelect': (61, 143, 209),
        'MenuBorderPress': (43, 108, 163), 'MenuSelectBk': (215, 235, 252), 'PopMenuBk': (252, 254, 255),
        'PopMenuLeftBk': (222, 236, 248), 'PopMenuSelBk': (205, 229, 250),
        'PopMenuSelBorder': (61, 143, 209),
        'FileTransHotBk1': (241, 248, 255), 'FileTransHotBk2': (200, 225, 247),
    }
    border = {
        'DrawType': 1, 'Title_Left_Width': 20, 'Title_Right_Width': 20, 'Left_Top_Height': 8,
        'Left_Bottom_Height': 8, 'Right_Top_Height': 8, 'Right_Bottom_Height': 8,
        'Bottom_Left_Width': 12, 'Bottom_Right_Width': 12,
    }
    caption = {
        'AutoAlign': False, 'MinButton_Offset': 64, 'MaxButton_Offset': 36, 'CloseButton_Offset': 8,
        'MinButton_Top': 6, 'MaxButton_Top': 6, 'CloseButton_Top': 6, 'Button_Space': 2,
        'SysMenu_Top': 8, 'SysMenu_Left': 9, 'TitleText_Top': 1, 'TitleText_Left': 32,
        'AlwaysShowMinButton': False,
    }
    backdrop = {'BackColor': (214, 232, 247), 'BkgType': 'multibmp'}
    fixed_ends = {
        'PushButton': 8, 'TabBtnVert': 8, 'TabBtnHorz': 8, 'ListViewHeader': 4, 'GroupBtn': 8,
        'SliderCtrlTrack': 6, 'SliderCtrlThumb': 4, 'OutlookCtrlBar': 8, 'FileTransProgressBar': 8,
    }


GLYPHS = {
    'min': rounded((8, 11, 18, 13), 1),
    'max': rounded((8, 5, 18, 13), 1.5).outline(1.6) | rounded((8, 5, 18, 7.4), 1),
    'restore': rounded((7, 7, 15, 13.5), 1).outline(1.5) |
               (rounded((10.5, 4, 19, 10.5), 1).outline(1.5) - rounded((6, 6, 16, 14))),
    'close': polyline([(9.6, 5.6), (16.4, 12.4)], 2) | polyline([(16.4, 5.6), (9.6, 12.4)], 2),
}
