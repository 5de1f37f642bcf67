"""Puts people before places, so that every training picture is new, and tells its true depth."""

import math
import random

import torch

from library import HEAD_DEPTH, SIDE
from tones import develop, grey_of, tint
from warp import place_at, slope, soften

SKIN, HAIR, CLOTH, HAT, THING = range(5)


def framing(cover, scale):
    """Where a layer goes: mostly the head stays in the picture, always the lower end stays out of it."""
    room = abs(scale - 1)
    # A layer that does not reach its own side may leave that side of the picture.
    left = room + (0.45 if cover[:, 0].max() == 0 else 0)
    right = room + (0.45 if cover[:, -1].max() == 0 else 0)
    shift_x = random.uniform(-right, left)
    shift_y = 1 - scale + random.uniform(0, 0.6 if random.random() < 0.4 else 0.1)
    rows = (cover.sum(1) > 2).nonzero()
    if len(rows) and random.random() < 0.85:
        top = int(rows[0])
        columns = cover[top : top + 30].sum(0)
        head = float((columns * torch.linspace(-1, 1, SIDE)).sum() / columns.sum()) * scale
        edge = random.uniform(0.05, 0.75)
        shift_x = min(max(shift_x, -edge - head), edge - head)
        shift_x = min(max(shift_x, -right), left)
        above = random.uniform(-0.05, 0.3)
        shift_y = max(shift_y, above - 1 - (2 * top / SIDE - 1) * scale)
    return shift_x, shift_y


class Composer:
    def __init__(self, library):
        self.library = library

    def place(self):
        planes = self.library.place(random.randrange(len(self.library.places)))
        scale = random.uniform(1, 1.7)
        room = scale - 1
        return place_at(planes, scale, random.uniform(-room, room), random.uniform(-room, room),
                        flip=random.random() < 0.5)

    def person(self, behind=False):
        """A layer somewhere in the picture; its lower end never shows."""
        lib = self.library
        if random.random() < 0.25:
            layer = lib.drawn_person(random.randrange(len(lib.portraits)))
        else:
            layer = self.dressed(lib.person(random.randrange(len(lib.people))))
        flip = random.random() < 0.5
        scale = random.uniform(0.45, 0.9) if behind else random.uniform(1, 1.6)
        shift_x, shift_y = framing(layer[3].flip(1) if flip else layer[3], scale)
        layer = place_at(layer, scale, shift_x, shift_y, flip=flip)
        layer[5] = layer[5].round()
        return layer

    def dressed(self, layer):
        """Other colours and stuffs for a person's parts."""
        colour, part = layer[:3], layer[5:6]
        light = grey_of(colour)
        for which in (HAIR, CLOTH, HAT, THING):
            here = (part == which).float() * (layer[3:4] > 0)
            choice = random.random()
            if choice < 0.35 or here.sum() < 4:
                continue
            if choice > 0.85:
                changed = colour * random.uniform(0.08, 0.4)  # black hair and clothes hide their shape
            elif choice < 0.6 or which == HAIR:
                changed = tint(colour, 0.35)
            else:
                level = (light * here).sum() / here.sum()
                stuff = place_at(self.place()[:3], random.uniform(0.7, 2), 0, 0, random.uniform(-3, 3), False, "reflection")
                changed = (stuff * (0.35 + 0.65 * light / (level + 0.02)).clamp(0, 2)).clamp(0, 1)
            colour = colour + here * (changed - colour)
        return torch.cat([colour, layer[3:]])

    def scene(self):
        """People before a place: colour (3), depth (1)."""
        place = self.place()
        colour, inverse = place[:3], place[3:4]
        main = self.person()
        hidden = inverse[main[3:4] > 0.5]
        if hidden.numel() < 50:
            return self.empty()
        # The person stands before nine tenths of what it hides.
        nearest = float(torch.quantile(hidden[:: max(1, hidden.numel() // 2000)], 0.9)) + 1e-4
        distance = math.exp(random.uniform(math.log(0.12), math.log(0.85))) / nearest
        depth = (HEAD_DEPTH * distance * inverse).clamp(0, 1)
        for _ in range(random.choices((0, 1, 2), (0.78, 0.15, 0.07))[0]):
            other = self.person(behind=random.random() < 0.75)
            colour, depth = self.lay(colour, depth, other, random.uniform(0.3, 0.97))
        if random.random() < 0.65:
            colour = soften(colour, random.uniform(0.3, 5) * random.random())
        dark = random.uniform(0.1, 0.5) if random.random() < 0.12 else 1
        colour = tint(colour, 0.1) * math.exp(random.gauss(0, 0.4)) * dark
        return self.lay(colour, depth, main, 1.0)

    def lay(self, colour, depth, layer, nearness):
        """`nearness` 1 puts the head at HEAD_DEPTH, less puts it further away."""
        near = (HEAD_DEPTH * nearness * layer[4:5]).clamp(0, 1)
        cover = layer[3:4] * (near >= depth - 0.02)
        if random.random() < 0.25:
            cover = soften(cover, random.uniform(0.4, 1.2)) * (near > 0)
        look = tint(layer[:3], 0.08) * math.exp(random.gauss(0, 0.25))
        if random.random() < 0.4:
            look = look * slope(SIDE, 0.4)
        return colour + cover * (look - colour), torch.where(cover > 0.5, near, depth)

    def empty(self):
        """A place without people."""
        place = self.place()
        near = float(torch.quantile(place[3].flatten()[::16], 0.97)) + 1e-4
        return place[:3], (HEAD_DEPTH * place[3:4] / near).clamp(0, 1)

    def drawn(self):
        """A portrait with the background and depth that it was drawn with."""
        planes = self.library.portrait(random.randrange(len(self.library.portraits)))
        scale = random.uniform(1, 1.25)
        planes = place_at(planes, scale, random.uniform(1 - scale, scale - 1), random.uniform(1 - scale, scale - 1),
                          flip=random.random() < 0.5)
        return planes[:3], planes[4:5]

    def sample(self):
        """One training picture: colour (3, blue first) and depth (1)."""
        choice = random.random()
        colour, depth = self.drawn() if choice < 0.2 else self.empty() if choice < 0.26 else self.scene()
        if random.random() < 0.3:
            turn = random.gauss(0, 0.09)
            both = place_at(torch.cat([colour, depth]), 1 + 2 * abs(turn), 0, 0, turn, False, "reflection")
            colour, depth = both[:3], both[3:]
        return develop(colour).flip(0), depth


class Stream(torch.utils.data.IterableDataset):
    """Endless batches for a loader; every worker draws its own."""

    def __init__(self, make_library, batch, seed):
        self.make_library, self.batch, self.seed = make_library, batch, seed

    def __iter__(self):
        info = torch.utils.data.get_worker_info()
        worker = info.id if info else 0
        random.seed(self.seed * 1000 + worker)
        torch.manual_seed(self.seed * 1000 + worker)
        torch.set_num_threads(1)
        composer = Composer(self.make_library())
        while True:
            samples = [composer.sample() for _ in range(self.batch)]
            yield tuple((torch.stack(part) * 255 + 0.5).to(torch.uint8) for part in zip(*samples))
