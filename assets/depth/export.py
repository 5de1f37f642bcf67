"""Writes the network's file from a checkpoint of train.py."""

import argparse

import onnx
import torch

from model import PICTURE, DepthNet, Exported


def export(checkpoint, path):
    net = DepthNet()
    net.load_state_dict(torch.load(checkpoint)["mean"])
    torch.onnx.export(
        Exported(net.eval()).eval(),
        torch.zeros(1, 3, PICTURE, PICTURE),
        path,
        input_names=["input"],
        output_names=["confidence", "depth"],
        opset_version=11,
    )
    onnx.checker.check_model(onnx.load(path))


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("checkpoint")
    parser.add_argument("path")
    given = parser.parse_args()
    export(given.checkpoint, given.path)
