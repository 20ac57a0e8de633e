#!/usr/bin/python3
"""check_json.py CLIPINFO MAKE-CLIP SCHEMA: every command's --json on good and damaged clips, against the schema."""
import json
import os
import subprocess
import sys
import tempfile

import jsonschema

clipinfo, make_clip, schema_path = sys.argv[1:4]
with open(schema_path, encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
failed = False


def fail(text):
    global failed
    failed = True
    print("failed:", text)


def numbers(value):
    """Every number of a document."""
    if isinstance(value, bool) or value is None or isinstance(value, str):
        return
    if isinstance(value, (int, float)):
        yield value
    else:
        for item in value.values() if isinstance(value, dict) else value:
            yield from numbers(item)


def run(statuses, *arguments):
    """The document that a command prints; its status must be one of `statuses`, each failed clip told once."""
    result = subprocess.run([clipinfo, *arguments], capture_output=True, timeout=60, check=False)
    what = " ".join(arguments)
    if result.returncode not in statuses:
        fail(f"{what} gave {result.returncode} instead of {statuses}: {result.stderr}")
    try:
        document = json.loads(result.stdout)
    except ValueError as error:
        return fail(f"{what} printed no JSON: {error}")
    for error in list(validator.iter_errors(document))[:3]:
        deepest = jsonschema.exceptions.best_match([error])
        fail(f"{what}: {list(deepest.absolute_path)}: {deepest.message[:300]}")
    if any(abs(number) > 2**53 for number in numbers(document)):
        fail(f"{what}: a number beyond 2^53")
    errors = sum(1 for clip in document["clips"] if "error" in clip)
    if result.stderr.count(b"\n") != errors:
        fail(f"{what}: {errors} errors, told as {result.stderr}")
    return document["clips"]


def damaged(data, name, changes):
    """A copy with bytes changed: {offset: bytes}."""
    copy = bytearray(data)
    for offset, value in changes.items():
        copy[offset : offset + len(value)] = value
    with open(name, "wb") as file:
        file.write(copy)
    return name


def write_clips():
    """Good clips, and damaged ones that still open or no longer do."""
    good = {"good.mxf": [], "header-index.mxf": ["--header-index", "--units", "60"], "no-rip.mxf": ["--no-rip"]}
    for name, options in good.items():
        subprocess.run([make_clip, *options, name], check=True)
    with open("good.mxf", "rb") as file:
        data = file.read()
    origin = data.index(bytes.fromhex("4B020008")) + 4
    umid = data.index(bytes.fromhex("44010020"))
    label = data.index(bytes.fromhex("3B090010")) + 4
    text = data.index(bytes.fromhex("3C01")) + 4
    bad = [
        damaged(data, "huge-origin.mxf", {origin: b"\x7f" + b"\xff" * 7}),
        damaged(data, "huge-negative.mxf", {origin: b"\x80" + b"\x00" * 7}),
        damaged(data, "huge-partition.mxf", {len(data) - 20: b"\x7f" * 8}),
        damaged(data, "no-umid.mxf", {umid: b"\x7f\x01"}),
        damaged(data, "odd-label.mxf", {label: b"\xff" * 16}),
        damaged(data, "odd-text.mxf", {text: b"\xd8\x00\x00\x1b"}),
        damaged(data, "odd-kind.mxf", {data.index(bytes.fromhex("0201001006")) + 12: b"\x77"}),
    ]
    broken = [damaged(data[:size], f"cut-{size}.mxf", {}) for size in (0, 100, 3000)]
    return list(good), bad, broken


def check_all(good, bad, broken):
    """What holds for every command that takes a list of clips."""
    for command in ("info", "tree"):
        for clip in run([0], command, "--json", *good):
            if "error" in clip:
                fail(f"{command} of {clip['path']}")
        run([0, 1], command, "--json", "-j", "4", *good, *bad)
        clips = run([1], command, "--json", *broken, "nowhere.mxf", good[0])
        if [clip["path"] for clip in clips] != [*broken, "nowhere.mxf", good[0]] or "error" in clips[-1]:
            fail(f"{command}: the clips are not those asked for, in their order")


def check_info(good):
    clip = run([0], "info", "--json", good[0])[0]
    if clip["duration"] != 25 or clip["operational_pattern"]["name"] != "OperationalPattern_1a":
        fail("info does not tell what the clip is")
    if [track["kind"] for track in clip["packages"][0]["tracks"]] != ["timecode", "picture", "sound", "sound"]:
        fail("info does not tell the tracks")
    for name, origin in (("huge-origin.mxf", str(2**63 - 1)), ("huge-negative.mxf", str(-(2**63)))):
        clip = run([0], "info", "--json", name)[0]
        origins = [track["origin"] for package in clip["packages"] for track in package["tracks"]]
        if origin not in origins:
            fail(f"{name}: {origin} is not told as a string: {origins}")


def check_verify(good, bad, broken):
    for kind in ("xxh3", "md5"):
        for clip in run([0], "verify", "--json", "--checksum", kind, *good):
            if clip["status"] != "whole" or len(clip["elements"]) % clip["edit_units"] != 0:
                fail(f"verify of {clip['path']}")
    for clip in run([1, 2], "verify", "--json", "-j", "4", *(name for name in bad if name != "odd-text.mxf")):
        if "error" not in clip and (clip["status"] == "whole" or not clip["damage"] or not clip["counts"]):
            fail(f"verify of {clip['path']}: {clip['status']}")
    run([2], "verify", "--json", *broken, "nowhere.mxf", good[0])


def check_frames(good):
    for name in good:
        clip = run([0], "frames", "--json", name)[0]
        if [row["edit_unit"] for row in clip["rows"]] != list(range(len(clip["rows"]))) or len(clip["rows"]) < 25:
            fail(f"frames of {name} are not all there")
    kinds = [element["kind"] for element in clip["rows"][0]["elements"]]
    if kinds[:3] != ["system", "picture", "sound"] or clip["incomplete_rows"] != 0:
        fail(f"frames: {kinds}")
    run([1], "frames", "--json", "nowhere.mxf")
    run([1], "frames", "--json", good[0], "--range", "9:99")
    # A list that breaks off is not closed.
    with open(good[0], "rb") as file:
        data = file.read()
    footer = data.rindex(bytes.fromhex("060E2B34025301010D0102010110"))
    name = damaged(data, "no-last-index.mxf", {footer + 13: b"\x7f"})
    result = subprocess.run([clipinfo, "frames", "--json", name], capture_output=True, timeout=60, check=False)
    is_closed = result.stdout.endswith(b"]}\n")
    if result.returncode != 1 or is_closed or b"edit_unit" not in result.stdout:
        fail(f"a list that breaks off: {result.returncode}, {result.stdout[-80:]}")


def sets(value):
    """Every set of a tree."""
    yield value
    for item in value.get("items", []):
        for each in item.get("sets", []):
            yield from sets(each)


def check_tree(good):
    preface = run([0], "tree", "--json", good[0])[0]["preface"]
    told = [each["set"] for each in sets(preface)]
    for name, count in {"Preface": 1, "ContentStorage": 1, "Track": 8, "TimecodeComponent": 2, "SourceClip": 6}.items():
        if told.count(name) != count:
            fail(f"tree tells of {told.count(name)} sets called {name}")
    # References that lead back: a component that is the preface, a track that is the content storage.
    with open(good[0], "rb") as file:
        data = file.read()
    uid = bytes.fromhex(preface["instance_uid"].replace(".", ""))
    storage = data[data.index(bytes.fromhex("3B030010")) + 4 :][:16]
    component = data.rindex(bytes.fromhex("100100180000000100000010")) + 12
    track = data.index(bytes.fromhex("44030048")) + 12 + 3 * 16
    name = damaged(data, "loop.mxf", {component: uid, track: storage})
    looped = list(sets(run([0], "tree", "--json", name)[0]["preface"]))
    if sum(each.get("not_told") == "told above" for each in looped) != 2:
        fail("tree does not end references that lead back")


with tempfile.TemporaryDirectory() as scratch:
    os.chdir(scratch)
    good_clips, bad_clips, broken_clips = write_clips()
    check_all(good_clips, bad_clips, broken_clips)
    check_info(good_clips)
    check_verify(good_clips, bad_clips, broken_clips)
    check_frames(good_clips)
    check_tree(good_clips)
sys.exit(failed)
