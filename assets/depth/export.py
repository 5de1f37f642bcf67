"""Writes the network's file from a checkpoint of train.py."""

import argparse

import onnx
import torch

from model import PICTURE, DepthNet, Exported


def write(net, path):
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
    trained = DepthNet()
    trained.load_state_dict(torch.load(given.checkpoint)["mean"])
    write(trained, given.path)
