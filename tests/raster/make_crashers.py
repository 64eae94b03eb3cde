#!/usr/bin/env python3
"""Writes the broken Targa, PNG and bitmap files of crashers/.

Each file is damaged in one way a reader must survive: truncation, sizes
that claim far more pixels than the file holds, broken run-length or deflate
streams, colour indices outside the palette, offsets past the end. Every one
must fail to read, cleanly and without leaking. Run it from anywhere; it
rewrites the files it owns and leaves any other file (fuzzer findings) alone.
"""

import os
import struct
import zlib

HERE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "crashers")


def tga(id_length=0, map_type=0, image_type=2, map_first=0, map_length=0, map_bits=0,
        width=2, height=2, depth=24, descriptor=0):
    return struct.pack("<BBBHHBHHHHBB", id_length, map_type, image_type, map_first, map_length,
                       map_bits, 0, 0, width, height, depth, descriptor)


def png_chunk(kind, data, crc=None):
    body = kind + data
    if crc is None:
        crc = zlib.crc32(body)
    return struct.pack(">I", len(data)) + body + struct.pack(">I", crc & 0xFFFFFFFF)


PNG_SIGNATURE = bytes([137, 80, 78, 71, 13, 10, 26, 10])


def png(width=2, height=2, depth=8, colour=2, extra=b"", idat=None, rows=None):
    out = PNG_SIGNATURE + png_chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, 0))
    out += extra
    if idat is None:
        idat = zlib.compress(rows if rows is not None else b"\0" * (height * (1 + width * 3)))
    out += png_chunk(b"IDAT", idat)
    return out + png_chunk(b"IEND", b"")


def bmp(width=2, height=2, bpp=24, compression=0, colours=0, header_size=40, offset=None, tail=b""):
    if offset is None:
        offset = 14 + header_size
    head = b"BM" + struct.pack("<IHHI", 0, 0, 0, offset)
    info = struct.pack("<IiiHHIIiiII", header_size, width, height, 1, bpp, compression, 0, 2835, 2835, colours, 0)
    return head + info + b"\0" * max(0, header_size - 40) + tail


def crashers():
    files = {}
    # --- Targa ---------------------------------------------------------
    files["tga-truncated-header.tga"] = tga()[:10]
    files["tga-huge-size.tga"] = tga(width=65535, height=65535) + b"\0" * 64
    files["tga-huge-rle.tga"] = tga(image_type=10, width=65535, height=65535) + b"\xff\0\0\0" * 16
    files["tga-rle-overrun.tga"] = tga(image_type=10, width=3, height=1) + b"\xff\0\0\0" + b"\0" * 8
    files["tga-rle-truncated.tga"] = tga(image_type=10, width=300, height=1) + b"\x7f" * 12
    files["tga-bad-map-index.tga"] = tga(0, 1, 1, 0, 4, 24, 2, 1, 8) + b"\0" * 12 + b"\x01\x09"
    files["tga-map-below-first.tga"] = tga(0, 1, 1, 5, 4, 24, 2, 1, 8) + b"\0" * 12 + b"\x06\x02"
    files["tga-map-past-file.tga"] = tga(0, 1, 1, 0, 65535, 32, 2, 1, 8) + b"\0" * 40
    files["tga-undefined-type.tga"] = tga(image_type=7) + b"\0" * 12
    files["tga-bad-depth.tga"] = tga(depth=12) + b"\0" * 12
    files["tga-16-bit-indices.tga"] = tga(0, 1, 1, 0, 2, 24, 2, 1, 16) + b"\0" * 10
    files["tga-id-past-end.tga"] = tga(id_length=255) + b"\0" * 12
    files["tga-zero-width.tga"] = tga(width=0) + b"\0" * 12
    files["tga-interleaved.tga"] = tga(descriptor=0x40) + b"\0" * 12
    files["tga-no-map-for-mapped.tga"] = tga(0, 0, 1, 0, 0, 0, 2, 1, 8) + b"\0\0"
    files["tga-rle-map-runs-past-map.tga"] = tga(0, 1, 9, 0, 2, 24, 4, 1, 8) + b"\0" * 6 + b"\x83\x05"
    # --- PNG -------------------------------------------------------------
    files["png-truncated-signature.png"] = PNG_SIGNATURE[:5]
    files["png-truncated-header.png"] = png()[:20]
    files["png-corrupt-zlib.png"] = png(idat=b"\x78\x9c\xff\xff\xff\xff\xff\xff\x00\x00")
    files["png-truncated-zlib.png"] = png(width=64, height=64, idat=zlib.compress(b"\0" * (64 * 193))[:30])
    files["png-huge-dimensions.png"] = png(width=100000, height=100000, idat=zlib.compress(b"\0" * 1000))
    files["png-width-over-limit.png"] = png(width=0x7FFFFFFF, height=1, idat=zlib.compress(b"\0" * 100))
    files["png-zero-width.png"] = png(width=0)
    files["png-bad-crc.png"] = (PNG_SIGNATURE + png_chunk(b"IHDR", struct.pack(">IIBBBBB", 2, 2, 8, 2, 0, 0, 0), 1)
                                + png_chunk(b"IDAT", zlib.compress(b"\0" * 14)) + png_chunk(b"IEND", b""))
    files["png-index-past-palette.png"] = png(colour=3, extra=png_chunk(b"PLTE", b"\0\0\0\xff\xff\xff"),
                                              rows=b"\0\x01\x05\0\x00\x07")
    files["png-palette-missing.png"] = png(colour=3, rows=b"\0\0\0\0\0\0")
    files["png-bad-depth-for-colour.png"] = png(depth=4, colour=2)
    files["png-no-image-data.png"] = (PNG_SIGNATURE + png_chunk(b"IHDR", struct.pack(">IIBBBBB", 2, 2, 8, 2, 0, 0, 0))
                                      + png_chunk(b"IEND", b""))
    files["png-huge-chunk-length.png"] = (PNG_SIGNATURE + png_chunk(b"IHDR", struct.pack(">IIBBBBB", 2, 2, 8, 2, 0, 0, 0))
                                          + struct.pack(">I", 0x7FFFFFF0) + b"zTXt" + b"\0" * 32)
    files["png-rows-too-short.png"] = png(width=16, height=16, rows=b"\0" * 40)
    files["png-bad-filter.png"] = png(rows=b"\x09" + b"\0" * 6 + b"\x09" + b"\0" * 6)
    # --- Windows Bitmap --------------------------------------------------
    files["bmp-truncated-header.bmp"] = bmp()[:20]
    files["bmp-offset-past-end.bmp"] = bmp(offset=0xFFFFFF00, tail=b"\0" * 16)
    files["bmp-offset-inside-header.bmp"] = bmp(offset=20, tail=b"\0" * 16)
    files["bmp-huge-size.bmp"] = bmp(width=100000, height=100000, tail=b"\0" * 64)
    files["bmp-negative-width.bmp"] = bmp(width=-5, tail=b"\0" * 16)
    files["bmp-height-int-min.bmp"] = bmp(height=-0x80000000, tail=b"\0" * 16)
    files["bmp-bad-header-size.bmp"] = bmp(header_size=99, tail=b"\0" * 16)
    files["bmp-bad-depth.bmp"] = bmp(bpp=7, tail=b"\0" * 16)
    files["bmp-bad-mask.bmp"] = bmp(bpp=16, compression=3, offset=14 + 40 + 12,
                                    tail=struct.pack("<III", 0x0F0F, 0x00F0, 0x0000) + b"\0" * 8)
    files["bmp-rle8-literal-past-end.bmp"] = bmp(4, 1, 8, 1, 2, offset=14 + 40 + 8,
                                                 tail=b"\0" * 8 + b"\x00\x40\x01\x01")
    files["bmp-rle-top-down.bmp"] = bmp(4, -1, 8, 1, 2, offset=14 + 40 + 8, tail=b"\0" * 8 + b"\x04\x01\x00\x01")
    files["bmp-rle-huge.bmp"] = bmp(16000, 16000, 8, 1, 2, offset=14 + 40 + 8, tail=b"\0" * 8 + b"\x00\x01")
    files["bmp-index-past-palette.bmp"] = bmp(4, 1, 8, 0, 2, offset=14 + 40 + 8, tail=b"\0" * 8 + b"\x00\x01\xc8\x00")
    files["bmp-too-many-colours.bmp"] = bmp(2, 1, 8, 0, 1000, offset=14 + 40 + 16, tail=b"\0" * 20)
    files["bmp-palette-missing.bmp"] = bmp(2, 1, 8, 0, 0, tail=b"\0" * 4)
    files["bmp-jpeg-inside.bmp"] = bmp(compression=4, tail=b"\0" * 16)
    files["bmp-rows-past-end.bmp"] = bmp(64, 64, 32, tail=b"\0" * 1000)
    files["bmp-rle4-as-8-bit.bmp"] = bmp(4, 1, 8, 2, 2, offset=14 + 40 + 8, tail=b"\0" * 8 + b"\x00\x01")
    return files


def main():
    os.makedirs(HERE, exist_ok=True)
    for name, data in crashers().items():
        with open(os.path.join(HERE, name), "wb") as out:
            out.write(data)


if __name__ == "__main__":
    main()
