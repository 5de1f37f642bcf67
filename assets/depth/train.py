"""Trains the depth network. README.md tells how; stopped at any time, it goes on from its checkpoint."""

import argparse
import copy
import functools
import os
import time

import torch

from compose import Stream
from library import Library
from losses import losses
from model import DepthNet
from pool import Pool
from weights import calibrate, load_exported

WARM_UP = 300  # steps in which the rate rises
KEPT = 0.998  # share of the running mean of the weights that one step keeps
REPORT = 100  # steps between lines of the log
FIRST_BATCHES = 12  # composed before the first step


def options():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--data", required=True, help="folder with what makeScenes.sh drew")
    parser.add_argument("--checkpoint", required=True, help="file that is written and gone on from")
    parser.add_argument("--log", required=True, help="file that a line is added to now and then")
    parser.add_argument("--from-onnx", help="exported network whose weights are the start")
    parser.add_argument("--steps", type=int, default=12000)
    parser.add_argument("--minutes", type=float, default=1e9, help="stop after so long, if not done before")
    parser.add_argument("--decay", type=float, default=0.35, help="last share of the work, in which the rate falls")
    parser.add_argument("--rate", type=float, default=2e-3)
    parser.add_argument("--batch", type=int, default=24)
    parser.add_argument("--side", type=int, default=192, help="pixels of the pictures; the last steps need 192")
    parser.add_argument("--reuse", type=int, default=4, help="times that a composed picture is looked at")
    parser.add_argument("--workers", type=int, default=1)
    parser.add_argument("--seed", type=int, default=1)
    return parser.parse_args()


def rate_at(step, share, given):
    """Warm up, stay, fall to a hundredth; `share` of the work is done."""
    warm = min(1, (step + 1) / WARM_UP)
    fall = max(0.01, min(1, (1 - share) / given.decay))
    return given.rate * min(warm, fall)


def average_in(mean, net, step):
    keep = min(KEPT, (step + 1) / (step + 20))
    with torch.no_grad():
        for kept, new in zip(mean.state_dict().values(), net.state_dict().values()):
            if kept.dtype.is_floating_point:
                kept.lerp_(new, 1 - keep)
            else:
                kept.copy_(new)


class Training:
    def __init__(self, given):
        self.given, self.step, self.began = given, 0, time.time()
        torch.manual_seed(given.seed)
        self.net = DepthNet()
        if given.from_onnx:
            load_exported(self.net, given.from_onnx)
        self.net = self.net.to(memory_format=torch.channels_last).train()
        self.mean = copy.deepcopy(self.net).eval()
        self.optimiser = torch.optim.AdamW(self.net.parameters(), given.rate, weight_decay=0.01)
        if os.path.exists(given.checkpoint):
            self.resume()
        self.first = self.step

    def resume(self):
        state = torch.load(self.given.checkpoint)
        self.net.load_state_dict(state["net"])
        self.mean.load_state_dict(state["mean"])
        self.optimiser.load_state_dict(state["optimiser"])
        self.step = state["step"]

    def save(self):
        state = {"net": self.net.state_dict(), "mean": self.mean.state_dict(), "step": self.step,
                 "optimiser": self.optimiser.state_dict()}
        torch.save(state, self.given.checkpoint + ".new")
        os.replace(self.given.checkpoint + ".new", self.given.checkpoint)

    def share_done(self):
        minutes = (time.time() - self.began) / 60
        return max((self.step - self.first) / max(1, self.given.steps - self.first), minutes / self.given.minutes)

    def learn(self, picture, truth):
        for group in self.optimiser.param_groups:
            group["lr"] = rate_at(self.step, self.share_done(), self.given)
        picture = picture.to(memory_format=torch.channels_last)
        with torch.autocast("cpu", torch.bfloat16):
            confidence, depth = self.net(picture)
        total, parts = losses(confidence.float(), depth.float(), truth)
        self.optimiser.zero_grad(set_to_none=True)
        total.backward()
        torch.nn.utils.clip_grad_norm_(self.net.parameters(), 1.0)
        self.optimiser.step()
        average_in(self.mean, self.net, self.step)
        self.step += 1
        return {name: float(part.detach()) for name, part in parts.items()}

    def run(self):
        stream = Stream(functools.partial(Library, self.given.data), self.given.batch,
                        self.given.seed + self.step)
        loader = torch.utils.data.DataLoader(stream, batch_size=None, num_workers=self.given.workers,
                                             prefetch_factor=8)
        pool, batches = Pool(self.given.side), iter(loader)
        for _ in range(FIRST_BATCHES):
            pool.add(*next(batches))
        if self.given.from_onnx and self.step == 0:
            calibrate(self.net, pool.draw(128)[0])
            self.net.train()
        sums, began = {}, time.time()
        while self.share_done() < 1:
            if self.step % self.given.reuse == 0:
                pool.add(*next(batches))
            for name, value in self.learn(*pool.draw(self.given.batch)).items():
                sums[name] = sums.get(name, 0) + value
            if self.step % REPORT == 0:
                text = "  ".join(f"{name} {value / REPORT:.4f}" for name, value in sums.items())
                with open(self.given.log, "a") as log:
                    log.write(f"step {self.step:6d}  {text}  {time.time() - began:.0f} s\n")
                sums, began = {}, time.time()
                self.save()
        self.save()


if __name__ == "__main__":
    Training(options()).run()
