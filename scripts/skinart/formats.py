"""Pictures as the bytes of a file. A picture is its rows from the top, each a list of colours."""

import struct
import zlib


def bmp(rows):
    """A BMP file: 8 bits a pixel with a palette where 256 colours do, else 24."""
    colours = sorted({colour for row in rows for colour in row})
    width, height = len(rows[0]), len(rows)
    if len(colours) <= 256:
        index = {colour: n for n, colour in enumerate(colours)}
        depth, palette = 8, b''.join(bytes((b, g, r, 0)) for r, g, b in colours)
        lines = [bytes(index[colour] for colour in row) for row in rows]
    else:
        depth, palette = 24, b''
        lines = [b''.join(bytes((b, g, r)) for r, g, b in row) for row in rows]
    pixels = b''.join(line + bytes(-len(line) % 4) for line in reversed(lines))
    start = 14 + 40 + len(palette)
    return (struct.pack('<2sIHHI', b'BM', start + len(pixels), 0, 0, start) +
            struct.pack('<IiiHHIIiiII', 40, width, height, 1, depth, 0, len(pixels), 2835, 2835,
                        len(palette) // 4, 0) + palette + pixels)


def png(rows):
    """A PNG file of 8 bits a channel with opacity."""
    def chunk(kind, data):
        return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))

    header = struct.pack('>IIBBBBB', len(rows[0]), len(rows), 8, 6, 0, 0, 0)
    lines = b''.join(b'\0' + b''.join(bytes(pixel) for pixel in row) for row in rows)
    return (b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', header) + chunk(b'IDAT', zlib.compress(lines, 9)) +
            chunk(b'IEND', b''))


def ico(rows):
    """An icon file of one entry of 32 bits, whose mask hides what is more clear than not."""
    width, height = len(rows[0]), len(rows)
    colours = b''.join(bytes((b, g, r, a)) for row in reversed(rows) for r, g, b, a in row)
    mask = b''
    for row in reversed(rows):
        bits = ''.join('1' if a < 128 else '0' for *_, a in row).ljust((width + 31) // 32 * 32, '0')
        mask += int(bits, 2).to_bytes(len(bits) // 8, 'big')
    image = struct.pack('<IiiHHIIiiII', 40, width, height * 2, 1, 32, 0, len(colours) + len(mask), 0, 0,
                        0, 0) + colours + mask
    return struct.pack('<HHH', 0, 1, 1) + struct.pack('<BBBBHHII', width, height, 0, 0, 1, 32, len(image),
                                                      22) + image
