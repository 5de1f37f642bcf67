"""Composed pictures that wait for their turns: composing one takes longer than learning from it."""

import torch
import torch.nn.functional as F

ROOM = 4000  # pictures


class Pool:
    def __init__(self, side):
        self.side, self.next, self.filled = side, 0, 0
        self.pictures = torch.empty(ROOM, 3, side, side, dtype=torch.uint8)
        self.truths = torch.empty(ROOM, 1, side, side, dtype=torch.uint8)

    def add(self, pictures, truths):
        """Takes a batch in; the oldest pictures make room."""
        at = torch.arange(self.next, self.next + len(pictures)) % ROOM
        self.pictures[at] = self.fitted(pictures)
        self.truths[at] = self.fitted(truths)
        self.next = int(at[-1]) + 1
        self.filled = min(ROOM, self.filled + len(pictures))

    def fitted(self, planes):
        if planes.shape[-1] == self.side:
            return planes
        return (F.interpolate(planes.float(), size=self.side, mode="area") + 0.5).to(torch.uint8)

    def draw(self, count):
        """Random pictures as floats, some mirrored, each in tones of its own."""
        at = torch.randint(0, self.filled, (count,))
        pictures, truths = self.pictures[at].float() / 255, self.truths[at].float() / 255
        mirrored = torch.rand(count) < 0.5
        pictures[mirrored], truths[mirrored] = pictures[mirrored].flip(3), truths[mirrored].flip(3)
        gains = 1 + 0.12 * torch.randn(count, 1, 1, 1) + 0.05 * torch.randn(count, 3, 1, 1)
        lifts = 0.04 * torch.randn(count, 1, 1, 1)
        return (pictures * gains + lifts).clamp(0, 1), truths
