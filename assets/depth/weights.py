"""Takes an exported network's weights back into a network that can be trained on."""

import onnx
import torch
from onnx import numpy_helper
from torch import nn


def convolutions(net):
    """Every convolution in the order of use, with the normalisation that follows it or None."""
    pairs, order = {}, []
    for module in net.modules():
        if isinstance(module, nn.Sequential) and len(module) == 2 and isinstance(module[1], nn.BatchNorm2d):
            pairs[module[0]] = module[1]

    def note(module, _):
        order.append((module, pairs.get(module)))

    hooks = [m.register_forward_pre_hook(note) for m in net.modules() if isinstance(m, nn.Conv2d)]
    training = net.training
    net.eval()(torch.zeros(1, 3, 64, 64))
    net.train(training)
    for hook in hooks:
        hook.remove()
    return order


def load_exported(net, path):
    """The file has each normalisation folded into its convolution. Here it becomes one that only adds; the
    statistics that training needs are laid in by calibrate()."""
    model = onnx.load(path)
    values = {t.name: numpy_helper.to_array(t) for t in model.graph.initializer}
    nodes = [n for n in model.graph.node if n.op_type == "Conv"]
    order = convolutions(net)
    if len(nodes) != len(order):
        raise SystemExit(f"{path} has {len(nodes)} convolutions, the network {len(order)}")
    for node, (conv, norm) in zip(nodes, order):
        weight, bias = (torch.from_numpy(values[name].copy()) for name in node.input[1:3])
        conv.weight.data.copy_(weight)
        (norm or conv).bias.data.copy_(bias)
        if norm is not None:
            norm.weight.data.fill_(1)
            norm.running_mean.zero_()
            norm.running_var.fill_(1 - norm.eps)


def calibrate(net, pictures):
    """Gives every normalisation the statistics of these pictures without changing what the network does."""

    def lay_in(norm, inputs):
        mean = inputs[0].mean((0, 2, 3))
        var = inputs[0].var((0, 2, 3), unbiased=False)
        slope = norm.weight.data / torch.sqrt(norm.running_var + norm.eps)
        norm.bias.data += slope * (mean - norm.running_mean)
        norm.weight.data = slope * torch.sqrt(var + norm.eps)
        norm.running_mean, norm.running_var = mean, var

    norms = [m for m in net.modules() if isinstance(m, nn.BatchNorm2d)]
    hooks = [norm.register_forward_pre_hook(lay_in) for norm in norms]
    with torch.no_grad():
        net.eval()(pictures)
    for hook in hooks:
        hook.remove()
