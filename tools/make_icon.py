#!/usr/bin/env python3
"""Joins drawings of an icon, as PNG of several sizes, into one file for Windows.

    tools/make_icon.py ICON PNG...
"""
import struct
import sys

# The numbers of a file of icons: a header, a record for each picture, and the pictures.
HEADER = struct.Struct("<HHH")
RECORD = struct.Struct("<BBBBHHII")
IS_ICON = 1


def main(icon, names):
    pictures = [open(name, "rb").read() for name in names]
    at = HEADER.size + RECORD.size * len(pictures)
    out = HEADER.pack(0, IS_ICON, len(pictures))
    for picture in pictures:
        width, height = struct.unpack_from(">II", picture, 16)
        # 256 does not fit into its byte, and is written as 0.
        out += RECORD.pack(width % 256, height % 256, 0, 0, 1, 32, len(picture), at)
        at += len(picture)
    with open(icon, "wb") as file:
        file.write(out + b"".join(pictures))


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2:])
