"""What cameras and people do to a picture's tones: training must not rely on any of it."""

import io
import math
import random

import numpy as np
import torch
import torch.nn.functional as F
from PIL import Image

from warp import soften, slope

GREY = torch.tensor([0.299, 0.587, 0.114]).view(3, 1, 1)


def grey_of(colour):
    return (colour * GREY).sum(0, keepdim=True)


def tint(colour, strength):
    """Another balance of colours and another brightness."""
    gains = torch.exp(torch.tensor([random.gauss(0, strength) for _ in range(3)])).view(3, 1, 1)
    return (colour * gains).clamp(0, 1.4)


def develop(colour):
    """Light, tone, colour, focus, noise and compression of a whole picture."""
    side = colour.shape[-1]
    if random.random() < 0.4:
        colour = colour * slope(side, 0.5)
    colour = tint(colour, random.choice((0.03, 0.12)))
    colour = colour.clamp(1e-4, 1) ** math.exp(random.gauss(0, 0.25))
    kind = random.random()
    colourful = 0.0 if kind < 0.12 else random.uniform(0.3, 1.5)
    colour = grey_of(colour) + (colour - grey_of(colour)) * colourful
    if kind < 0.06:
        colour = tint(colour, 0.15)
    middle = colour.mean()
    colour = (colour - middle) * random.uniform(0.6, 1.4) + middle + random.gauss(0, 0.06)
    if random.random() < 0.35:
        colour = soften(colour, random.uniform(0.3, 1.3))
    if random.random() < 0.25:
        small = int(side / random.uniform(1.2, 2.2))
        colour = F.interpolate(F.interpolate(colour[None], size=small, mode="area"), size=side, mode="bilinear")[0]
    if random.random() < 0.25:
        colour = colour + random.uniform(0.3, 1.2) * (colour - soften(colour, 1.0))
    if random.random() < 0.5:
        grain = torch.randn_like(colour) * random.uniform(0.005, 0.06)
        colour = colour + (soften(grain, 0.7) * 2 if random.random() < 0.3 else grain)
    colour = colour.clamp(0, 1)
    return squeezed(colour) if random.random() < 0.4 else colour


def squeezed(colour):
    """Through a JPEG file and back."""
    picture = Image.fromarray((colour.permute(1, 2, 0).numpy() * 255 + 0.5).astype(np.uint8))
    file = io.BytesIO()
    picture.save(file, "JPEG", quality=random.randint(25, 92))
    return torch.from_numpy(np.array(Image.open(file))).permute(2, 0, 1).float() / 255
