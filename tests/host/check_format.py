#!/usr/bin/python3
"""check_format.py [--update] CLIP DOCUMENT...: the hexdump blocks of the documents against the sample clip.

A line of such a block is an offset and bytes in hexadecimal, then what they are; a text that ends in `= NUMBER` is
compared with the bytes as a big-endian number, signed when the text says so. Lines follow each other without a gap
unless `...` stands between them. --update writes the clip's bytes into the documents.
"""
import argparse
import pathlib
import re
import sys

BLOCK = re.compile(r"```hexdump\n(.*?)```", re.DOTALL)
LINE = re.compile(r"([0-9a-f]{6})  ((?:[0-9a-f]{2} )*[0-9a-f]{2})( +)(\S.*)")
NUMBER = re.compile(r" = (-?\d+)$")


def faults(lines, clip):
    follows = None  # where the next line must begin, if anywhere
    for line in lines:
        match = LINE.fullmatch(line)
        if line == "...":
            follows = None
        elif not match:
            yield f"not a line of a dump: {line}"
        else:
            offset, shown = int(match[1], 16), bytes.fromhex(match[2])
            there = clip[offset : offset + len(shown)]
            if follows not in (None, offset):
                yield f"a gap before: {line}"
            if there != shown:
                yield f"the clip has {there.hex(' ')}, not: {line}"
            number = NUMBER.search(match[4])
            if number and int(number[1]) != int.from_bytes(there, "big", signed=number[1].startswith("-")):
                yield f"the clip has another number: {line}"
            follows = offset + len(shown)


def updated(line, clip):
    match = LINE.fullmatch(line)
    if not match:
        return line
    offset, size = int(match[1], 16), len(bytes.fromhex(match[2]))
    return f"{match[1]}  {clip[offset : offset + size].hex(' ')}{match[3]}{match[4]}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--update", action="store_true")
    parser.add_argument("clip", type=pathlib.Path)
    parser.add_argument("documents", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()
    clip = arguments.clip.read_bytes()
    found = []
    for document in arguments.documents:
        text = document.read_text()
        if arguments.update:
            lines = BLOCK.sub(lambda block: "\n".join(updated(line, clip) for line in block[0].split("\n")), text)
            document.write_text(lines)
            text = lines
        blocks = [block[1].splitlines() for block in BLOCK.finditer(text)]
        if not blocks:
            found.append(f"{document}: no dumps")
        found += [f"{document}: {fault}" for lines in blocks for fault in faults(lines, clip)]
    print("\n".join(found))
    sys.exit(1 if found else 0)


main()
