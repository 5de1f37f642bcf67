"""What the network is held to."""

import torch
import torch.nn.functional as F

ORDER_GAP = 0.06  # pairs of pixels further apart in depth have an order


def aligned(depth, truth):
    """`depth` with the scale, not below 0, and the shift that bring each picture nearest to its truth."""
    d, t = depth.flatten(1), truth.flatten(1)
    dm, tm = d.mean(1, keepdim=True), t.mean(1, keepdim=True)
    scale = ((d - dm) * (t - tm)).mean(1, keepdim=True) / ((d - dm).square().mean(1, keepdim=True) + 1e-3)
    return (scale.clamp(min=0) * (d - dm) + tm).view_as(depth)


def gradient_loss(depth, truth, scales=4):
    total = 0
    for _ in range(scales):
        error = depth - truth
        total = total + (error[..., 1:] - error[..., :-1]).abs().mean()
        total = total + (error[..., 1:, :] - error[..., :-1, :]).abs().mean()
        depth, truth = F.avg_pool2d(depth, 2), F.avg_pool2d(truth, 2)
    return total


def order_loss(depth, truth, pairs=3000):
    """Pairs of random pixels must keep the order of their depths, by a margin."""
    d, t = depth.flatten(1), truth.flatten(1)
    i, j = (torch.randint(0, d.shape[1], (pairs,)) for _ in range(2))
    gap, seen = t[:, i] - t[:, j], d[:, i] - d[:, j]
    counted = (gap.abs() > ORDER_GAP).float()
    miss = F.relu(0.5 * gap.abs() - seen * gap.sign())
    return (miss * counted).sum() / (counted.sum() + 1)


def losses(confidence, depth, truth):
    """The sum to minimise, and its parts for the log."""
    error = (depth - truth).abs()
    trust = torch.exp(-error.detach() / 0.1)
    parts = {
        "absolute": error.mean(),
        "far": (error * 0.3 / (truth + 0.1)).mean(),
        "relative": (aligned(depth, truth) - truth).abs().mean(),
        "gradient": gradient_loss(depth, truth),
        "order": order_loss(depth, truth),
        "confidence": (confidence - trust).square().mean(),
    }
    total = 0.5 * sum(parts[name] for name in ("absolute", "far", "relative", "gradient", "order"))
    return total + 0.3 * parts["confidence"], parts
