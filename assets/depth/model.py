"""The depth network: a small encoder and decoder that looks at 192 by 192 pixels."""

import torch
from torch import nn
import torch.nn.functional as F

SIDE = 192  # pixels that the network itself works on
PICTURE = 2 * SIDE  # pixels of the exported network's input and maps
WIDTHS = (16, 32, 64, 96, 128)  # channels at 1/2, 1/4, 1/8, 1/16 and 1/32 of SIDE


def conv(inputs, outputs, kernel=3, stride=1):
    return nn.Sequential(
        nn.Conv2d(inputs, outputs, kernel, stride, kernel // 2, bias=False),
        nn.BatchNorm2d(outputs),
    )


class Block(nn.Module):
    """Two convolutions beside a shortcut."""

    def __init__(self, channels):
        super().__init__()
        self.first = conv(channels, channels)
        self.second = conv(channels, channels)

    def forward(self, x):
        return F.relu(x + self.second(F.relu(self.first(x))))


class Down(nn.Module):
    """Halves the size, then thinks."""

    def __init__(self, inputs, outputs, blocks):
        super().__init__()
        self.reduce = conv(inputs, outputs, stride=2)
        self.blocks = nn.Sequential(*[Block(outputs) for _ in range(blocks)])

    def forward(self, x):
        return self.blocks(F.relu(self.reduce(x)))


class Up(nn.Module):
    """Doubles the size and joins what the encoder saw there."""

    def __init__(self, inputs, skip, outputs):
        super().__init__()
        self.fit = conv(inputs, outputs, 1)
        self.skip = conv(skip, outputs, 1)
        self.mix = conv(outputs, outputs)

    def forward(self, x, seen):
        x = F.interpolate(self.fit(x), scale_factor=2, mode="bilinear", align_corners=False)
        return F.relu(self.mix(F.relu(x + self.skip(seen))))


class DepthNet(nn.Module):
    """Blue, green, red in 0..1 to confidence and depth in 0..1, all SIDE by SIDE."""

    def __init__(self, widths=WIDTHS):
        super().__init__()
        a, b, c, d, e = widths
        self.stem = conv(3, a, stride=2)
        self.down = nn.ModuleList([Down(a, b, 1), Down(b, c, 2), Down(c, d, 3), Down(d, e, 2)])
        self.up = nn.ModuleList([Up(e, d, d), Up(d, c, c), Up(c, b, b), Up(b, a, a + 8)])
        self.head = nn.Conv2d(a + 8, 8, 3, padding=1)

    def forward(self, picture):
        seen = [F.relu(self.stem(picture))]
        for down in self.down:
            seen.append(down(seen[-1]))
        x = seen.pop()
        for up in self.up:
            x = up(x, seen.pop())
        maps = torch.sigmoid(F.pixel_shuffle(self.head(x), 2))
        return maps[:, :1], maps[:, 1:]


class Exported(nn.Module):
    """The network as the file holds it: PICTURE by PICTURE in and out."""

    def __init__(self, net):
        super().__init__()
        self.net = net

    def forward(self, picture):
        confidence, depth = self.net(F.avg_pool2d(picture, 2))
        return tuple(
            F.interpolate(m, scale_factor=2, mode="bilinear", align_corners=False)
            for m in (confidence, depth)
        )
