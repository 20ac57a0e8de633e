#!/usr/bin/python3
"""check_extract.py CLIPINFO MAKE-CLIP: extracted elements hold the clip's bytes, and wave files its samples."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest
import wave

CLIPINFO, MAKE_CLIP = sys.argv[1:3]
UNITS = 30


def klv_values(data, start, end):
    """(key, value) of each packet of a file range; lengths are BER, short or long."""
    while start < end:
        key, first = data[start : start + 16], data[start + 16]
        head = 17 if first < 0x80 else 17 + (first & 0x7F)
        length = first if first < 0x80 else int.from_bytes(data[start + 17 : start + head], "big")
        yield key, data[start + head : start + head + length]
        start += head + length


class Extract(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.scratch.name)
        cls.clip = cls.folder / "clip.mxf"
        subprocess.run([MAKE_CLIP, "--units", str(UNITS), "--data-bytes", "96", cls.clip], check=True)
        cls.elements = {}
        data = cls.clip.read_bytes()
        for key, value in klv_values(data, 0, len(data)):
            if key[4:6] == b"\x01\x02" and key[8:12] == b"\x0d\x01\x03\x01" and key[12] in (0x15, 0x16, 0x17):
                cls.elements.setdefault(key[12:16], []).append(value)

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def extract(self, *arguments, status=0):
        done = subprocess.run([CLIPINFO, "extract", self.clip, *arguments], capture_output=True, text=True)
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def values(self, item_type):
        return [b"".join(values) for key, values in sorted(self.elements.items()) if key[0] == item_type]

    def test_all_elements_go_to_files_named_by_kind_and_number(self):
        self.extract("--all", "-o", self.folder / "raw")
        files = {path.name: path.read_bytes() for path in (self.folder / "raw").iterdir()}
        sounds = {f"sound-{i + 1}.pcm": value for i, value in enumerate(self.values(0x16))}
        self.assertGreater(len(sounds), 1)
        self.assertTrue(files.pop("system.bin"))
        self.assertEqual(files, {"picture-1.m2v": self.values(0x15)[0], "data-1.anc": self.values(0x17)[0], **sounds})

    def test_a_wave_file_holds_the_samples_as_the_descriptor_tells(self):
        done = self.extract("--all", "--wav", "--json", "-o", self.folder / "wav")
        for i, samples in enumerate(self.values(0x16)):
            with wave.open(str(self.folder / "wav" / f"sound-{i + 1}.wav")) as sound:
                self.assertEqual(sound.getparams()[:3], (1, 3, 48000))
                self.assertEqual(sound.readframes(sound.getnframes()), samples)
        told = json.loads(done.stdout)["clips"][0]["elements"]
        self.assertEqual([row["kind"] for row in told], ["system", "picture", "sound", "sound", "data"])
        self.assertEqual(told[1]["bytes"], len(self.values(0x15)[0]))
        self.assertEqual(told[3]["wave"], {"channels": 1, "bits": 24, "samples_per_second": 48000})
        self.assertEqual((self.folder / "wav" / "picture-1.m2v").read_bytes(), self.values(0x15)[0])

    def test_a_range_of_one_element(self):
        output = self.folder / "some.wav"
        self.extract("--element", "2", "--wav", "--range", "3:5", "-o", output)
        first = min(key for key in self.elements if key[0] == 0x16)
        with wave.open(str(output)) as sound:
            self.assertEqual(sound.readframes(sound.getnframes()), b"".join(self.elements[first][3:5]))

    def test_what_cannot_be_is_refused_and_leaves_nothing(self):
        refused = self.folder / "refused"
        for fault, *arguments in (
            ("no PCM sound", "--element", "1", "--wav", "-o", refused),
            ("needs a regular file", "--element", "2", "--wav", "-o", "-"),
            ("cannot be made a directory", "--all", "-o", self.clip),
            ("has 5", "--element", "5", "-o", refused),
        ):
            self.assertIn(fault, self.extract(*arguments, status=1).stderr)
        self.extract("--all", "--element", "1", "-o", refused, status=2)
        self.extract("-o", refused, status=2)
        self.extract("--element", "1", "--json", "-o", "-", status=2)
        self.assertEqual([path for path in self.folder.glob("refused*")], [])

    def test_an_element_of_another_kind_ends_it(self):
        damaged = self.folder / "damaged.mxf"
        data = bytearray(self.clip.read_bytes())
        rows = subprocess.run([CLIPINFO, "frames", "--csv", self.clip], capture_output=True, text=True).stdout.split()
        picture = rows[0].split(",").index("offset_1")
        data[int(rows[8].split(",")[picture]) + 12] = 0x17  # a data element where the picture was
        damaged.write_bytes(data)
        done = subprocess.run([CLIPINFO, "extract", damaged, "--all", "-o", self.folder / "cut"], capture_output=True)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"edit unit 7: the element is of another kind", done.stderr)
        self.assertEqual(list((self.folder / "cut").iterdir()), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
