#!/usr/bin/python3
"""check_transcripts.py CLIP PROGRAMS DOCUMENT...: runs what the documents show and compares the output.

A line `$ COMMAND` of a ```console block runs in a folder that holds the clip as sample.mxf, with the folders PROGRAMS
(joined by colons) in the path. The lines behind it are its output, `...` stands for any lines.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

BLOCK = re.compile(r"```console\n(.*?)```", re.DOTALL)


def transcripts(text):
    for block in BLOCK.finditer(text):
        for part in re.split(r"^\$ ", block[1], flags=re.MULTILINE)[1:]:
            command, _, output = part.partition("\n")
            yield command, output


def main():
    clip, programs, documents = sys.argv[1], sys.argv[2], filter(None, sys.argv[3:])
    environment = dict(os.environ, PATH=programs + ":" + os.environ["PATH"], NO_COLOR="1")
    faults = 0
    for document in documents:
        shown = list(transcripts(pathlib.Path(document).read_text()))
        if not shown:
            sys.exit(f"{document}: nothing to run")
        for command, output in shown:
            with tempfile.TemporaryDirectory() as folder:
                shutil.copy(clip, folder + "/sample.mxf")
                shutil.copy(document, folder)
                run = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, text=True, timeout=60,
                                     stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            wanted = re.escape(output).replace(r"\.\.\." + "\\\n", "(.*\n)*")
            if not re.fullmatch(wanted, run.stdout):
                print(f"{document}: {command} printed\n{run.stdout}instead of\n{output}")
                faults += 1
    sys.exit(1 if faults else 0)


main()
