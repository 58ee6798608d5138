"""What a capture makes anew each time."""

import pathlib
import re

_LIST = pathlib.Path(__file__).resolve().parents[2] / "machine/recorder/prove/volume_guids.inc"

# The elements of formats 1 and 2 that can contain a GUID made for a volume.
VOLUME_GUIDS = set(re.findall(r'"(\w+)"', _LIST.read_text()))
