#!/usr/bin/env python3
"""Converts a small TFLite network into an ONNX file that the inference module reads.

It knows the operators of the networks for faces and persons (docs/networks.md) and refuses every other.
"""

import argparse
import hashlib
import os
import pathlib
import sys

import google.protobuf.message
import onnx

from flatBuffer import Damaged
from onnxGraph import OnnxGraph, Unknown
from tfliteNetwork import Network

# What a damaged file can make numpy, onnx and the code between them stumble over.
STUMBLES = (ArithmeticError, LookupError, MemoryError, TypeError, ValueError, google.protobuf.message.Error,
            onnx.checker.ValidationError)


def convert(data, inputs, outputs):
    """The ONNX file's bytes."""
    try:
        network = Network(data)
        inputs = network.numbers(inputs) if inputs else network.inputs
        outputs = network.numbers(outputs) if outputs else network.outputs
        return OnnxGraph(network, inputs, outputs).model().SerializeToString()
    except STUMBLES as problem:
        raise Damaged(str(problem).partition("\n")[0]) from problem


def write_whole(path, content):
    """Under another name beside it first, so that nobody meets half of it."""
    part = path.with_name(f".{path.name}.{os.getpid()}")
    try:
        part.write_bytes(content)
        part.replace(path)
    finally:
        part.unlink(missing_ok=True)


def parsed():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("network", type=pathlib.Path, help="the TFLite file")
    parser.add_argument("onnx", type=pathlib.Path, help="the file to write")
    parser.add_argument("--sha256", metavar="SUM", help="refuse a network of any other sum")
    for option, verb in (("--inputs", "begin"), ("--outputs", "end")):
        parser.add_argument(option, metavar="NAME,...", type=lambda names: names.split(","), default=[],
                            help=f"tensors to {verb} at, where only a part is wanted")
    return parser.parse_args()


def main():
    options = parsed()
    try:
        data = options.network.read_bytes()
        if options.sha256 not in (None, hashlib.sha256(data).hexdigest()):
            raise Damaged("it is not the network of this sum")
        write_whole(options.onnx, convert(data, options.inputs, options.outputs))
    except Unknown as problem:
        print(f"convertNetwork: {options.network} cannot be converted: {problem}", file=sys.stderr)
        return 1
    except Damaged as problem:
        print(f"convertNetwork: {options.network} is not taken: {problem}", file=sys.stderr)
        return 1
    except OSError as problem:
        print(f"convertNetwork: {problem}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
