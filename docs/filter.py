#!/usr/bin/env python3
"""Doxygen's input filter: `docs/filter.py FILE` writes a header or page as Doxygen is to read it.

The headers' comments are plain. What stands before a declaration describes it and those that follow without a blank
line; what stands behind one, on its line, describes that one. Here they become Doxygen's, each class gets the example
that uses it, drawing operations their pictures, and every file its group. A name that was told of stays untouched.
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SUBSYSTEMS = 'core files net language skin draw windows wordtest service'.split()
ELSEWHERE = {'KXAutoLock': 'core', 'KXExport': 'core', 'KXCommonClass': 'core', 'KXLanguageItem': 'language',
             'KXEnglishWord': 'wordtest', 'KXMessages': 'windows'}
FAMILIES = {
    'text': 'CodePage String', 'files': 'File FileSystem StdioFile Shell', 'settings': 'Profile Registry',
    'gdi': 'Dc Gdi GdiObject Geometry', 'gdiplus': 'GdiPlus GdiPlusFlat GdiPlusTypes',
    'window': 'Input MessageBox MessageMap Object Window WindowPaint Wnd',
    'threads': 'Sync ThreadSafety', 'time': 'Clock OleDateTime Time', 'module': 'Module Version',
    'http': 'Internet', 'xml': 'Com Unknown Variant Xml', 'stream': 'Stream', 'crash': 'Crash',
    'services': 'ServiceManager Services', 'host': 'Host Debug', 'base': 'Error Exception Guid Types',
}
# Pictures that the program kx_pictures draws, beside the operation that draws them.
PICTURES = {
    'CKXBitmap': {'Draw': 'draw', 'TransparentDraw': 'transparent-draw', 'DrawFill': 'fill',
                  'TransparentDrawFill': 'transparent-fill', 'Pave': 'pave', 'DrawPart': 'part',
                  'TransparentDrawPart': 'transparent-part', 'CreateBitmapRgn': 'region', 'SetMultiState': 'states'},
    'CKXFrameBitmap': {'Draw': 'frame'},
    'CKXGdiplusImage': {'Render': 'render', 'GetFixRenderRect': 'fix-render', 'FixRender': 'fix-render'},
    'CKXGdiplusHelper': {'DrawLinearGradientRect': 'gradient'},
    'CKXEnglishWord': {'DrawTestWord': 'test-word', 'DrawTestWordResult': 'result-word'},
}
# The same on the page about skins, by the section of the keys.
SKIN_PICTURES = {'COLOR': 'skin-colors', 'SysButton': 'skin-titles', 'RoundCorner': 'skin-corner',
                 'Border': 'skin-backgrounds skin-tabs'}
# Which example shows a class that none names.
EXAMPLES = {'CKXBitmapHandle': 'bitmaps.cpp', 'KXLanguageItem': 'languages.cpp', 'CKXAutoResHandle': 'helpers.cpp'}
SCOPE = re.compile(r'\b(class|struct|union|enum|namespace)\b')
LABEL = re.compile(r'^\s*(public|protected|private):\s*$')


def group_of(path):
    stem = path.stem
    if path.parent.name == 'platform':
        return next('platform_' + family for family, files in FAMILIES.items() if stem in files.split())
    if stem in ELSEWHERE:
        return ELSEWHERE[stem]
    return next(folder for folder in SUBSYSTEMS if (ROOT / folder / (stem + '.cpp')).exists())


def example_of(name):
    """The short program that has most to do with a class."""
    if name in EXAMPLES or name.startswith('CKXSkin'):
        return EXAMPLES.get(name, 'skins.cpp')
    word = re.compile(r'\b%s\b' % name)
    counts = [(-len(word.findall(file.read_text())), file.name)
              for file in sorted((ROOT / 'examples/short').glob('*.cpp'))]
    best = min(counts)
    return best[1] if best[0] else None


def split_comment(line):
    """Code and trailing comment, which no string holds."""
    quoted = False
    for at, char in enumerate(line):
        if char == '"' and line[at - 1] not in "'\\":
            quoted = not quoted
        if not quoted and line.startswith('//', at):
            return line[:at].rstrip(), line[at + 2:].strip()
    return line.rstrip(), None


def escaped(text):
    """A comment's text, in which a backslash is one and a point between marks ends no sentence."""
    text = re.sub(r'([<>&#@])', r'\\\1', text.replace('\\', '\\\\'))

    def spelled(span):
        inside = span.group(1)
        if re.fullmatch(r'[.*?]+', inside):
            return '"%s"' % inside.replace('*', '\\*')
        if re.search(r'\W::|-\w+::', inside):  # no name with its class
            return '<tt>%s</tt>' % inside.replace('::', '\\::')
        return '<tt>%s</tt>' % inside if '\\' in inside else span.group()
    return re.sub(r'`([^`]*)`', spelled, text)


def implied(code):
    """What a declaration says by itself."""
    if '= delete' in code:
        return 'Not copyable.'
    if '= default' in code:
        if '~' in code:
            return 'Ends the object.'
        return 'A copy.' if 'const' in code and '&' in code else 'An empty object.'
    return None


class Filter:
    def __init__(self, path):
        self.path = path
        self.out = []
        self.scopes = []    # 'class', 'enum', 'namespace' or 'body' for each open brace
        self.names = []     # of the classes among them
        self.parens = 0
        self.pending = []   # the comment that stands before
        self.run = []       # the comment of the run of declarations
        self.fresh = True   # whether a declaration begins with the next code
        self.named = ''     # what the named part of a class that is open says
        self.trail = None   # the column of a trailing comment that may go on
        self.shown = set()
        self.macro = False  # whether the line before goes on

    def in_scope(self):
        return 'body' not in self.scopes and not self.parens

    def close_named(self):
        if self.named:
            self.out.append('/// @}')
        self.named = ''

    def braces(self, code, statement):
        """Follows braces and parentheses of a line."""
        code = re.sub(r'"(\\.|[^"\\])*"|\'(\\.|[^\'\\])*\'', '', code)
        for at, char in enumerate(code):
            if char == '(':
                self.parens += 1
            elif char == ')':
                self.parens -= 1
            elif char == '{':
                head = statement + code[:at]
                kind = SCOPE.search(head)
                plain = kind and '=' not in re.sub(r'<[^<>]*>', '', head) and '(' not in re.sub(r'__\w+\(.*?\)|KX_\w+\(.*?\)', '', head)
                self.scopes.append(kind.group(1) if plain else 'body')
                if plain and kind.group(1) in ('class', 'struct'):
                    self.names.append(re.sub(r'\s*[:{].*', '', head.split(kind.group(1), 1)[1]).split()[-1])
                if plain:
                    self.run = []
            elif char == '}' and self.scopes:
                ended = self.scopes.pop()
                if ended in ('class', 'struct') and self.names:
                    self.names.pop()
                if ended != 'body':
                    self.run = []

    def describe(self, code, trailing):
        """The comment of a declaration that begins with this line."""
        if self.pending:
            self.run = self.pending
        lines = [escaped(trailing).rstrip('.') + '.'] if trailing else []
        if lines and lines[0][:1].islower():
            lines[0] = lines[0][0].upper() + lines[0][1:]
        if self.run:
            lines += [''] * bool(lines) + self.run
        if not lines:
            said = implied(code) or self.named
            lines = [said] if said else []
        lines += self.extras(code)
        indent = re.match(r'\s*', code).group()
        self.out += [f'{indent}/// {line}'.rstrip() for line in lines]
        self.pending = []

    def extras(self, code):
        kind = re.match(r'(?:template.*>\s*)?(class|struct)\b.*?(\w+)(?: final)?(?:\s*:[^:].*)?$', code)
        if kind and not self.names and self.path.name.startswith('KX'):
            example = example_of(kind.group(2))
            return ['', f'@par Example: {example}', f'@include {example}'] if example else []
        name = re.search(r'(\w+)\(', code)
        key = (self.names[-1], name.group(1)) if self.names and name else None
        picture = PICTURES.get(key[0], {}).get(key[1]) if key else None
        if not picture or key in self.shown:
            return []
        self.shown.add(key)
        return ['', f'@image html {picture}.png']

    def comment(self, text):
        section = re.match(r'-{4} (.*)', text)
        if section:
            self.close_named()
            self.out += [f'/// @name {section.group(1)}', '/// @{']
            self.named = escaped(section.group(1)) + '.'
            self.depth = len(self.scopes)
            self.run = self.pending = []
        else:
            self.pending = self.pending + [escaped(text)]

    def line(self, line):
        stripped = line.strip()
        if stripped.startswith('//') and not self.macro:
            if self.trail is not None and line.index('//') == self.trail and self.trail > 8:
                return self.continue_trailing(stripped[2:].strip())
            self.trail = None
            if self.in_scope():
                self.comment(re.sub(r'^// ?', '', stripped))
            return self.out.append('')
        self.trail = None
        if not stripped and not self.macro:
            if self.pending and not self.scopes:  # of the file
                self.out += ['/// @file', *(f'/// {text}'.rstrip() for text in self.pending)]
            self.pending, self.run = [], []
            return self.out.append('')
        if self.macro or stripped.startswith('#define'):
            if not self.macro and self.in_scope():
                self.describe(stripped, None)
            self.macro = stripped.endswith('\\')
            return self.out.append(line)
        if LABEL.match(line) or (self.in_scope() and stripped.startswith('}')):
            if self.named and self.depth == len(self.scopes):
                self.close_named()
            self.pending, self.run = [], []
        code, trailing = split_comment(line)
        if self.in_scope() and self.fresh and not stripped.startswith(('#', '}', '{')) and not LABEL.match(line):
            self.trail = line.index('//', len(code)) if trailing else None
            self.at = len(self.out)
            self.describe(code, trailing)
            self.statement = ''
        self.out.append(code)
        self.follow(code)

    def continue_trailing(self, text):
        """More lines of a trailing comment: they go on behind its first one."""
        first = self.out[self.at].rstrip('.')
        self.out[self.at] = f'{first} {escaped(text)}'.rstrip('.') + '.'
        self.out.append('')

    def follow(self, code):
        if code.strip().startswith('#') or LABEL.match(code):
            return
        was = 'body' in self.scopes
        self.braces(code, getattr(self, 'statement', ''))
        self.statement = getattr(self, 'statement', '') + ' ' + code
        enum = self.scopes[-1:] == ['enum']
        done = code.endswith((';', '}', '{')) or (enum and code.endswith(',')) or re.match(r'\s*(ON_|DECLARE_)', code)
        self.fresh = self.in_scope() and bool(done) and (not was or code.endswith(('}', ';')))
        if self.fresh:
            self.statement = ''

    def write(self):
        lines = self.path.read_text().split('\n')
        text = re.sub(r'(?ms)^template <>\nstruct std::hash.*?^};', lambda m: '\n' * m.group().count('\n'), '\n'.join(lines))
        # Several names of one type, each with its line.
        text = re.sub(r'(?m)^( +)(\w+) (\w+(?:, \w+)+);$',
                      lambda m: '\n'.join(f'{m[1]}{m[2]} {name};' for name in m[3].split(', ')), text)
        lines = text.split('\n')
        last = max((n for n, line in enumerate(lines) if line.startswith('#include')), default=1)
        for n, line in enumerate(lines):
            self.line(line)
            if n == last:
                self.out += [f'/// @addtogroup {group_of(self.path)}', '/// @{']
        self.close_named()
        print('\n'.join(self.out + ['/// @}']))


def with_skin_pictures(text):
    """The page about skins with a picture beside each file, and below the headings of keys."""
    def with_files(row):
        files = re.sub(r'`(\w+)(\.\w+)`,?', r'`\1\2`<br>![\1](skin-\1.png)<br>', row.group(1))
        return files + row.group(2)
    text = re.sub(r'(?m)^(\| `\w+\.(?:bmp|ico|png)`.*?)( \|)', with_files, text)
    for heading, pictures in SKIN_PICTURES.items():
        shown = ''.join('\n\n![](%s.png)' % picture for picture in pictures.split())
        text = re.sub(r'(?m)^### `\[%s\]`.*' % heading, lambda m: m.group() + shown, text)
    return text


def main():
    path = Path(sys.argv[1]).resolve()
    if path.suffix == '.h':
        Filter(path).write()
    else:
        text = path.read_text()
        print(with_skin_pictures(text) if path.name == 'skins.md' else text, end='')


main()
