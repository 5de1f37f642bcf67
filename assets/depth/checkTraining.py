"""Tests of the training's parts: python3 checkTraining.py"""

import os
import random
import tempfile
import unittest

import torch

import compose
import library
from losses import losses
from model import DepthNet, Exported
from train import rate_at
from warp import place_at, soften
from weights import calibrate, load_exported

from export import write


def used_net(seed):
    """A network whose normalisations have seen something."""
    torch.manual_seed(seed)
    net = DepthNet().train()
    for _ in range(3):
        net(torch.rand(4, 3, 64, 64))
    return net.eval()


class Weights(unittest.TestCase):
    def test_come_back_from_the_exported_file(self):
        net, again = used_net(1), used_net(2)
        picture = torch.rand(1, 3, 384, 384)
        with tempfile.TemporaryDirectory() as folder, torch.no_grad():
            path = os.path.join(folder, "net.onnx")
            write(net, path)
            load_exported(again, path)
            for kept, new in zip(Exported(net)(picture), Exported(again.eval())(picture)):
                self.assertLess(float((kept - new).abs().max()), 1e-4)

    def test_training_statistics_change_nothing(self):
        net = used_net(3)
        pictures = torch.rand(8, 3, 64, 64)
        with torch.no_grad():
            before = net(pictures)[1]
            calibrate(net, pictures)
            self.assertLess(float((net.eval()(pictures)[1] - before).abs().max()), 1e-4)
            self.assertLess(float((net.train()(pictures)[1] - before).abs().max()), 1e-4)


class Losses(unittest.TestCase):
    def test_truth_costs_nothing_and_errors_cost(self):
        truth = torch.rand(2, 1, 32, 32)
        _, parts = losses(torch.ones_like(truth), truth, truth)
        for name in ("absolute", "far", "gradient", "order", "confidence"):
            self.assertAlmostEqual(float(parts[name]), 0, places=5, msg=name)
        self.assertLess(float(parts["relative"]), 0.02)
        _, worse = losses(torch.ones_like(truth), 1 - truth, truth)
        for name in parts:
            self.assertGreater(float(worse[name]), float(parts[name]), name)

    def test_rate_rises_stays_and_falls(self):
        given = type("Given", (), {"rate": 1.0, "decay": 0.5})
        rates = [rate_at(step, share, given) for step, share in ((0, 0), (400, 0.2), (900, 0.75), (1000, 1))]
        self.assertEqual([round(r, 2) for r in rates], [0.0, 1.0, 0.5, 0.01])


class Pictures(unittest.TestCase):
    def test_moves_go_where_they_say(self):
        planes = torch.zeros(1, 96, 96)
        planes[0, 48, 48] = 1
        moved = place_at(planes, 1, 0.25, -0.5)  # right by an eighth of the side, up by a quarter
        self.assertEqual(divmod(int(moved.argmax()), 96), (24, 60))
        mirrored = place_at(moved, 1, 0, 0, flip=True)
        self.assertEqual(divmod(int(mirrored.argmax()), 96), (24, 35))

    def test_softening_keeps_the_sum(self):
        planes = torch.zeros(1, 64, 64)
        planes[0, 32, 32] = 1
        self.assertAlmostEqual(float(soften(planes, 2.5).sum()), 1, places=4)

    def test_layers_never_show_their_lower_end(self):
        random.seed(1)
        cover = torch.zeros(library.SIDE, library.SIDE)
        cover[60:, 70:120] = 1
        for _ in range(200):
            scale = random.uniform(0.45, 1.6)
            shift = compose.framing(cover, scale)
            layer = place_at(cover[None], scale, *shift)
            lowest = layer[0, -1]
            self.assertTrue(float(lowest.max()) > 0.4 or float(layer.max()) == 0, (scale, shift))

    def test_nearer_layers_hide_and_further_ones_are_hidden(self):
        composer = compose.Composer(None)
        layer = torch.ones(6, library.SIDE, library.SIDE)
        layer[3, :, :96] = 0
        depth = torch.full((1, library.SIDE, library.SIDE), 0.3)
        depth[:, :96] = 0.95
        _, laid = composer.lay(torch.rand(3, library.SIDE, library.SIDE), depth, layer, 1.0)
        self.assertAlmostEqual(float(laid[0, 10, 150]), 0.95, places=5)
        self.assertAlmostEqual(float(laid[0, 150, 150]), library.HEAD_DEPTH, places=5)
        self.assertAlmostEqual(float(laid[0, 150, 20]), 0.3, places=5)


if __name__ == "__main__":
    unittest.main()
