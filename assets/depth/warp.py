"""Moves and softens pictures; every function takes planes as (channels, height, width)."""

import random

import torch
import torch.nn.functional as F


def place_at(planes, scale, shift_x, shift_y, turn=0.0, flip=False, border="zeros"):
    """Scales about the middle, turns (radians) and shifts (half picture sides)."""
    cos, sin = torch.cos(torch.tensor(turn)) / scale, torch.sin(torch.tensor(turn)) / scale
    rows = torch.stack([torch.stack([cos, -sin]), torch.stack([sin, cos])])
    if flip:
        rows[0] = -rows[0]
    offset = rows @ torch.tensor([[-float(shift_x)], [-float(shift_y)]])
    grid = F.affine_grid(torch.cat([rows, offset], 1)[None], [1, 1, *planes.shape[1:]], False)
    return F.grid_sample(planes[None], grid, "bilinear", border, False)[0]


def soften(planes, sigma):
    """Gaussian blur; `sigma` in pixels."""
    if sigma < 0.25:
        return planes
    radius = max(1, int(2.5 * sigma + 0.5))
    x = torch.arange(-radius, radius + 1, dtype=torch.float32)
    kernel = torch.exp(-0.5 * (x / sigma) ** 2)
    kernel = (kernel / kernel.sum()).view(1, 1, 1, -1)
    padded = F.pad(planes[:, None], (radius, radius, radius, radius), "replicate")
    return F.conv2d(F.conv2d(padded, kernel), kernel.transpose(2, 3))[:, 0]


def slope(side, strength, dice=random):
    """A factor that runs across the picture, as light from one side."""
    x = torch.linspace(-1, 1, side)
    across = dice.uniform(-strength, strength) * x[None, :] + dice.uniform(-strength, strength) * x[:, None]
    return torch.exp(across)[None]
