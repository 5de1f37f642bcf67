"""Reads the byte planes that tools/depthScenes writes."""

import glob
import os

import numpy as np
import torch

SIDE = 192
PLANES = {"people": 6, "places": 5, "portraits": 5}
NEAR_HEAD = 160.0  # a person layer's byte for the distance of the head
NEAREST_METRES = 0.3  # a place's word for this distance is 65535
HEAD_DEPTH = 0.8  # where a head stands in every depth map


class Records:
    """All records of one kind, mapped into memory."""

    def __init__(self, folder, kind):
        planes = PLANES[kind]
        names = sorted(glob.glob(os.path.join(folder, kind + "_*.bin")))
        if not names:
            raise SystemExit(f"no {kind}_*.bin in {folder}: see makeScenes.sh")
        self.parts = [np.memmap(n, np.uint8, "r").reshape(-1, planes, SIDE, SIDE) for n in names]
        self.starts = np.cumsum([0] + [len(p) for p in self.parts])

    def __len__(self):
        return int(self.starts[-1])

    def __getitem__(self, index):
        part = int(np.searchsorted(self.starts, index, "right")) - 1
        return torch.from_numpy(np.array(self.parts[part][index - self.starts[part]])).float()


class Library:
    """Pictures as floats of 0..1, by kind."""

    def __init__(self, folder):
        self.people = Records(folder, "people")
        self.places = Records(folder, "places")
        self.portraits = Records(folder, "portraits")

    def person(self, index):
        """Colour (3), cover (1), nearness as a factor on the head's (1), part (1)."""
        planes = self.people[index]
        return torch.cat([planes[:4] / 255, planes[4:5] / NEAR_HEAD, planes[5:]])

    def place(self, index):
        """Colour (3) and one over the distance in metres (1)."""
        planes = self.places[index]
        word = planes[3:4] * 256 + planes[4:5]
        return torch.cat([planes[:3] / 255, word / 65535 / NEAREST_METRES])

    def portrait(self, index):
        """Colour (3), cover (1), depth (1)."""
        return self.portraits[index] / 255

    def drawn_person(self, index):
        """A portrait's person as a layer like those of person()."""
        planes = self.portrait(index)
        # Half covered pixels hold the old background's colour: they are left away.
        cover = ((planes[3:4] - 0.6) * 2.5).clamp(0, 1)
        return torch.cat([planes[:3], cover, planes[4:5] / HEAD_DEPTH, torch.full_like(cover, -1)])
