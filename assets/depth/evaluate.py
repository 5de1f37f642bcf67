"""Measures an exported network on drawn portraits whose depth is known (see drawHeldOut.sh)."""

import argparse
import glob
import os
import random

import numpy as np
import torch
from PIL import Image

from compose import Composer
from library import Library
from losses import ORDER_GAP
from model import PICTURE, DepthNet, Exported
from weights import load_exported

FLOOR = 0.05  # the relative error divides by no depth below this: the sky's is 0
PAIRS = 20000


def read(name, mode):
    picture = Image.open(name)
    if mode == "depth":
        values = np.asarray(picture.convert("I"), np.float32) / 65535
        return np.asarray(Image.fromarray(values).resize((PICTURE, PICTURE), Image.BOX))
    return np.asarray(picture.convert(mode).resize((PICTURE, PICTURE), Image.BOX), np.float32) / 255


def load(path):
    net = DepthNet()
    load_exported(net, path)
    return Exported(net.eval()).eval()


def run(net, picture):
    """Confidence and depth of a red, green, blue picture of 0 to 1."""
    planes = torch.from_numpy(picture.transpose(2, 0, 1)[None, ::-1].copy())
    with torch.no_grad():
        return [m[0, 0].numpy() for m in net(planes)]


def ordered_share(depth, person, dice):
    """Share of pairs of a person's pixel and a background's in which the person's is nearer."""
    front, back = depth[person > 0.95], depth[person < 0.05]
    if not len(front) or not len(back):
        return None
    return float((dice.choice(front, PAIRS) > dice.choice(back, PAIRS)).mean())


def relative_error(depth, truth):
    """Mean of |fitted - truth| / truth after the best scale and shift."""
    scale, shift = np.polyfit(depth.ravel(), truth.ravel(), 1)
    return float((np.abs(scale * depth + shift - truth) / np.maximum(truth, FLOOR)).mean())


def measure(net, folder):
    dice, rows = np.random.default_rng(1), []
    for name in sorted(glob.glob(os.path.join(folder, "*.png"))):
        truth_folder = name[: -len(".png")]
        truth = read(os.path.join(truth_folder, "depth.png"), "depth")
        person = read(os.path.join(truth_folder, "person.png"), "L")
        confidence, depth = run(net, read(name, "RGB"))
        wrong = np.abs(depth - truth)
        trust = np.corrcoef(confidence.ravel(), -wrong.ravel())[0, 1]
        rows.append((ordered_share(depth, person, dice), relative_error(depth, truth), wrong.mean(), trust))
    return rows


def report(rows):
    ordered = [r[0] for r in rows if r[0] is not None]
    print(f"{len(rows)} portraits")
    print(f"ordered pairs      mean {np.mean(ordered):.4f}  worst {np.min(ordered):.4f}")
    errors = [r[1] for r in rows]
    print(f"relative error     mean {np.mean(errors):.4f}  median {np.median(errors):.4f}  worst {np.max(errors):.4f}")
    print(f"absolute error     mean {np.mean([r[2] for r in rows]):.4f}  (no fit)")
    print(f"confidence         correlation with the error's smallness {np.nanmean([r[3] for r in rows]):.3f}")


def report_scenes(net, folder, count=200):
    """Composed pictures of every kind: all pairs of pixels that have an order, within people too."""
    random.seed(1)
    torch.manual_seed(1)
    composer, ordered, wrong = Composer(Library(folder)), [], []
    for _ in range(count):
        colour, truth = composer.sample()
        with torch.no_grad():
            depth = net.net(colour[None])[1]
        d, t = depth.flatten(), truth.flatten()
        i, j = (torch.randint(0, len(d), (PAIRS,)) for _ in range(2))
        gap = t[i] - t[j]
        counted = gap.abs() > ORDER_GAP
        if counted.sum() > 100:
            ordered.append(float((((d[i] - d[j]) * gap)[counted] > 0).float().mean()))
        wrong.append(float((d - t).abs().mean()))
    print(f"{count} composed scenes: ordered pairs {np.mean(ordered):.4f}, absolute error {np.mean(wrong):.4f}")


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("path")
    parser.add_argument("folder")
    parser.add_argument("--scenes", help="folder like the training's, drawn from other seeds")
    given = parser.parse_args()
    network = load(given.path)
    report(measure(network, given.folder))
    if given.scenes:
        report_scenes(network, given.scenes)
