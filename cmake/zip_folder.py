#!/usr/bin/env python3
"""Packs a folder so that the same files give the same bytes: zip_folder.py FOLDER ZIP SECONDS_OF_ALL_TIMES"""
import os
import pathlib
import sys
import time
import zipfile

folder, output, seconds = pathlib.Path(sys.argv[1]), sys.argv[2], int(sys.argv[3])
with zipfile.ZipFile(output, "w") as archive:
    for file in sorted(each for each in folder.rglob("*") if each.is_file()):
        entry = zipfile.ZipInfo(str(file.relative_to(folder.parent)), time.gmtime(seconds)[:6])
        entry.external_attr = (0o100755 if os.access(file, os.X_OK) else 0o100644) << 16
        archive.writestr(entry, file.read_bytes(), zipfile.ZIP_DEFLATED)
