#!/usr/bin/python3
"""check_verify.py CLIPINFO MAKE-CLIP [all|SEED]: clipinfo verify finds every damage to the structures of a clip.

The files are taken apart here, byte by byte, without the library. Each field of each structure is damaged in several
ways, one at a time; each damaged clip must have a finding, and each undamaged one none. Without `all` a random sample
is taken, the same for the same seed.
"""
import json
import os
import random
import subprocess
import sys
import tempfile

CLIPINFO, MAKE_CLIP = sys.argv[1:3]
MODE = sys.argv[3] if len(sys.argv) > 3 else '20260101'
SAMPLE = 500
BATCH = 50
LAYOUTS = {'per-partition': ['--units', '30'], 'in-header': ['--header-index', '--units', '26'],
           'no-random-index': ['--no-rip'], 'data': ['--partitions', '1', '--data-bytes', '100'],
           'slices': ['--slices', '2', '--units', '14']}
FILL = '060e2b34010101xx0301021001000000'
failures = []


def fail(text):
    failures.append(text)
    print('failed:', text)


def run(*arguments):
    return subprocess.run([CLIPINFO, 'verify', *arguments], capture_output=True, text=True, timeout=60)


class Field:
    def __init__(self, name, offset, size):
        self.name, self.offset, self.size = name, offset, size


def packets(data):
    """(key, offset, value offset, length) of each packet of the file."""
    at = 0
    while at < len(data):
        key, form = data[at:at + 16], data[at + 16]
        count = form - 0x80 if form > 0x80 else 0
        length = int.from_bytes(data[at + 17:at + 17 + count], 'big') if count else form
        value = at + 17 + count
        yield key.hex(), at, value, length
        at = value + length


def is_fill(key):
    return key[:14] + 'xx' + key[16:] == FILL


def numbers(name, offset, sizes):
    """Fields one behind the other."""
    for size, part in sizes:
        if part:
            yield Field(f'{name} {part}', offset, size)
        offset += size


def set_fields(data, name, value, length, tag_size=2):
    """Tag, length and, where a reader follows it, value of each item of a local set."""
    followed = {0x3C0A, 0x3B03, 0x3B06, 0x3B09, 0x1901, 0x1902, 0x4403, 0x4701, 0x4801, 0x4802, 0x4803, 0x4B02, 0x1001,
                0x1101, 0x1102, 0x1201, 0x0202, 0x2701, 0x3F01, 0x3F06, 0x3F07, 0x3006, 0x3F05, 0x3F08, 0x3F0B, 0x3F0C,
                0x3F0D, 0x3F0E, 0x4B01}
    at = value
    while at < value + length:
        tag, size = int.from_bytes(data[at:at + 2], 'big'), int.from_bytes(data[at + 2:at + 4], 'big')
        item = f'{name} {tag:04X}'
        yield Field(f'{item} tag', at, 2)
        yield Field(f'{item} length', at + 2, 2)
        # What is in a sequence or track of its own; a material package's UMID has nothing that refers to it.
        if tag in followed and not (tag == 0x3C0A and (name.startswith('preface') or name.startswith('index'))):
            if size > 16 and tag not in (0x1101, 0x2701):
                yield from numbers(item, at + 4, [(4, 'count'), (4, 'item size')])
                for i in range((size - 8) // 16):
                    yield Field(f'{item} reference {i}', at + 12 + 16 * i, 16)
            else:
                yield Field(item, at + 4, size)
        if tag == 0x3F09:
            yield from numbers(item, at + 4, [(4, 'count'), (4, 'entry size')])
            for i in range((size - 8) // 6):
                yield from numbers(f'{item} delta {i}', at + 12 + 6 * i, [(1, 'pos table'), (1, 'slice'), (4, 'delta')])
        if tag == 0x3F0A:
            yield from numbers(item, at + 4, [(4, 'count'), (4, 'entry size')])
            entry = int.from_bytes(data[at + 8:at + 12], 'big')
            for i in range((size - 8) // entry):
                slices = [(4, f'slice offset {s}') for s in range((entry - 11) // 4)]
                yield from numbers(f'{item} entry {i}', at + 12 + entry * i,
                                   [(1, 'temporal'), (1, 'key frame'), (1, ''), (8, 'stream offset')] + slices)
        at += 4 + size


def fields(data):
    """Every field that verify is to check, by the name of its structure."""
    package = 0
    for key, offset, value, length in packets(data):
        tail = key[16:]
        names = {'0d01020101020400': 'header partition', '0d01020101030400': 'body partition',
                 '0d01020101040400': 'footer partition', '0d01020101110100': 'random index',
                 '0d01020101050100': 'primer', '0d01020101100100': 'index segment',
                 '0d01030104010100': 'system pack', '0d01030104010200': 'system set'}
        name = names.get(tail) or ('fill' if is_fill(key) else 'essence' if tail.startswith('0d010301') else 'set ' + tail)
        if tail == '0d01010101012f00':
            name = 'preface'
        name = f'{name} at {offset}'
        yield Field(f'{name} key', offset, 4)
        if not is_fill(key):
            yield Field(f'{name} key kind', offset + 12, 3)
        yield Field(f'{name} length form', offset + 16, 1)
        yield Field(f'{name} length', offset + 17, value - offset - 17)
        if 'partition' in name:
            yield from numbers(name, value, [(2, 'major'), (2, 'minor'), (4, 'KAG'), (8, 'this'), (8, 'previous'),
                                             (8, 'footer'), (8, 'header bytes'), (8, 'index bytes'), (4, 'index SID'),
                                             (8, 'body offset'), (4, 'body SID'), (16, 'pattern'), (4, 'labels'),
                                             (4, 'label size'), (16, 'label')])
        elif name.startswith('random'):
            for i in range(length // 12):
                yield from numbers(f'{name} entry {i}', value + 12 * i, [(4, 'SID'), (8, 'offset')])
            yield Field(f'{name} overall length', value + length - 4, 4)
        elif name.startswith('primer'):
            yield from numbers(name, value, [(4, 'count'), (4, 'size')])
            for i in range((length - 8) // 18):
                yield from numbers(f'{name} item {i}', value + 8 + 18 * i, [(2, 'tag'), (7, 'label')])
        elif name.startswith(('set', 'preface', 'index')):
            yield from set_fields(data, name, value, length)
        elif name.startswith('system pack'):
            yield from numbers(name, value, [(1, 'bitmap'), (1, 'rate'), (1, 'type'), (2, 'channel'), (2, 'continuity'),
                                             (16, 'label')])


def damages(data, field):
    """Other contents of a field: the least change, each bit of a byte, and what a reader must not follow."""
    old = data[field.offset:field.offset + field.size]
    number, most = int.from_bytes(old, 'big'), 256 ** field.size - 1
    wanted = {number + 1, number - 1, number ^ 0x80, number ^ (1 << (8 * field.size - 1)), 0, most, most // 2, number * 2}
    for value in sorted(wanted):
        if 0 <= value <= most and value != number:
            yield value.to_bytes(field.size, 'big')


def is_legal(field, new, data, first_linked):
    """Changes that leave a clip as good as another: a partition's status; the number of a track of the material package
    or of a timecode track, which nothing refers to; where the file begins in a sequence of files."""
    if 'partition' in field.name and field.name.endswith('key kind'):
        return new[:2] == data[field.offset:field.offset + 2] and 1 <= new[2] <= 4
    if field.name.startswith('set 0e15') and field.name.endswith((' 1201', ' 3C0A')):
        return True
    if '016e00' in field.name and field.name.endswith('key kind'):  # any kind of sub-descriptor
        return new[:2] == b'\x01\x01'
    if field.name.endswith((' 3F0B', ' 4B01')):
        return new == b'\x00\x00\x00\x32\x00\x00\x00\x02'  # 50/2 is 25
    return field.name.endswith(' 4801') and field.offset < first_linked


def check_whole(name, path):
    result = run(path)
    if result.returncode != 0 or ': whole' not in result.stdout:
        fail(f'{name} is not whole:\n{result.stdout[:2000]}{result.stderr}')


def check_damages(data, layout, scratch, cases):
    """Damaged clips, as many as a run may take."""
    paths = [os.path.join(scratch, f'damaged-{i}.mxf') for i in range(len(cases))]
    for path, (field, new) in zip(paths, cases):
        with open(path, 'wb') as file:
            file.write(data[:field.offset] + new + data[field.offset + field.size:])
    clips = json.loads(run('--json', *paths).stdout)['clips']
    for clip, (field, new) in zip(clips, cases):
        # At the clip's end a temporal offset may lead behind it, which is told as a note.
        if 'error' not in clip and clip['status'] == 'whole' and 'open-end' not in clip['counts']:
            fail(f'{layout}: {field.name} at {field.offset}: {new.hex()} is whole')
    if [clip['path'] for clip in clips] != paths:
        fail(f'{layout}: not the clips that were asked for')


def sweep(scratch, layout, path):
    with open(path, 'rb') as file:
        data = file.read()
    source = next(p[1] for p in packets(data) if p[0].endswith('0d01010101013700'))
    linked = [p[1] for p in packets(data) if p[0].endswith('0d01010101013b00') and p[1] > source][1]
    cases = [(field, new) for field in fields(data) for new in damages(data, field)
             if not is_legal(field, new, data, linked)]
    if MODE != 'all':
        cases = random.Random(f'{MODE} {layout}').sample(cases, min(len(cases), SAMPLE // len(LAYOUTS)))
    for first in range(0, len(cases), BATCH):
        check_damages(data, layout, scratch, cases[first:first + BATCH])
    print(f'{layout}: {len(cases)} damages')
    return data


def check_cuts(scratch, data):
    """A file that ends early, and one with a hole, is not whole; it is told where."""
    for size in (len(data) - 1, len(data) - 100, len(data) // 2, 3000, 40, 0):
        path = os.path.join(scratch, 'cut.mxf')
        with open(path, 'wb') as file:
            file.write(data[:size])
        result = run(path)
        if result.returncode not in (1, 2):
            fail(f'cut at {size} gave {result.returncode}')
    body = [p for p in packets(data) if p[0].endswith('0d01030115010500')][5]
    with open(path, 'wb') as file:
        file.write(data[:body[1]] + bytes(20) + data[body[1] + 20:])
    result = run(path)
    if result.returncode != 1 or 'edit unit 5: packet-missing' not in result.stdout:
        fail('a hole in edit unit 5:\n' + result.stdout[:2000])


def check_answers(scratch, path):
    """Checksums, documents, several clips, exit statuses."""
    import hashlib
    with open(path, 'rb') as file:
        data = file.read()
    hashes = [hashlib.md5(data[p[2]:p[2] + p[3]]).hexdigest() for p in packets(data)
              if p[0][16:].startswith('0d010301')]
    told = [line.split()[0] for line in run('--checksum=md5', path).stdout.splitlines() if '  unit ' in line]
    if told != hashes:
        fail(f'MD5 of {len(told)} elements, {len(hashes)} wanted')
    document = json.loads(run('--json', '--checksum', 'xxh3', path).stdout)
    clip = document['clips'][0]
    if clip['status'] != 'whole' or clip['damage'] or len(clip['elements']) != len(hashes):
        fail(f'document: {clip["status"]}')
    result = run(path, os.path.join(scratch, 'nowhere.mxf'), '-j', '2')
    if result.returncode != 2 or ': whole' not in result.stdout or 'not found' not in result.stderr:
        fail('a clip beside one that is not there')


def main():
    with tempfile.TemporaryDirectory() as scratch:
        for layout, options in LAYOUTS.items():
            path = os.path.join(scratch, layout + '.mxf')
            subprocess.run([MAKE_CLIP, '--picture-bytes', '2000', *options, path], check=True)
            check_whole(layout, path)
            data = sweep(scratch, layout, path)
            if layout == 'per-partition':
                check_cuts(scratch, data)
                check_answers(scratch, path)
        shared = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', '..', '..', 'shared', 'clips')
        for name in sorted(os.listdir(shared)) if os.path.isdir(shared) else []:
            if name.endswith('.mxf'):
                check_whole(name, os.path.join(shared, name))
    sys.exit(1 if failures else 0)


main()
