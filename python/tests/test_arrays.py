"""What a careless caller hands over, threads, cancelling, and memory."""

import _thread
import subprocess
import sys
import threading
import time

import numpy
import pytest
from PIL import Image

import zel


def resident():
    """Bytes of this process in memory."""
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * 4096


@pytest.mark.parametrize("image, error", [
    (numpy.zeros((4, 4, 4), numpy.float32), TypeError), (numpy.zeros((4, 4, 4), numpy.int8), TypeError),
    (numpy.zeros((4, 4, 4), bool), TypeError), (numpy.zeros((4, 4, 4), ">u2"), TypeError),
    (numpy.zeros((4, 4, 4), object), TypeError), (None, TypeError), ("picture.jpg", TypeError),
    (numpy.zeros((4, 4), numpy.uint8), ValueError), (numpy.zeros((4, 4, 2), numpy.uint8), ValueError),
    (numpy.zeros((4, 4, 5), numpy.uint8), ValueError), (numpy.zeros((2, 4, 4, 4), numpy.uint8), ValueError),
    (numpy.zeros((0, 4, 4), numpy.uint8), ValueError), (numpy.zeros((4, 0, 3), numpy.uint8), ValueError),
    (numpy.broadcast_to(numpy.uint8(1), (32768, 4, 4)), ValueError),
    (numpy.broadcast_to(numpy.uint8(1), (4, 10 ** 12, 3)), ValueError), (Image.new("L", (4, 4)), ValueError),
])
def test_what_is_no_picture_is_refused(image, error):
    with pytest.raises(error):
        zel.apply("gauss-blur", image, out=numpy.zeros((4, 4, 4), numpy.uint8))
    with pytest.raises(error):
        zel.find_faces(image)


def test_a_failing_call_and_a_read_only_array_change_nothing(portrait):
    picture, out = portrait.picture.copy(), numpy.full((400, 300, 4), 7, numpy.uint8)
    with pytest.raises(zel.ArgumentError, match="needs faces"):
        zel.auto_slim_face(picture, out=out)
    assert (out == 7).all()
    picture.flags.writeable = False
    with pytest.raises(ValueError, match="out is read-only"):
        zel.gauss_blur(picture, out=picture)
    assert numpy.array_equal(zel.gauss_blur(picture), zel.gauss_blur(portrait.picture))
    for bad in (numpy.zeros((400, 300, 3), numpy.uint8), numpy.zeros((300, 400, 4), numpy.uint8)):
        with pytest.raises(ValueError, match="shape of the image"):
            zel.gauss_blur(picture, out=bad)
    with pytest.raises(TypeError):
        zel.gauss_blur(picture, out=Image.fromarray(picture))
    # One that lies over a part of the other.
    both = numpy.concatenate([portrait.picture, portrait.picture[:50]])
    expected = zel.gauss_blur(both[:400].copy())
    zel.gauss_blur(both[:400], out=both[50:])
    assert numpy.array_equal(both[50:], expected)
    # A mask of booleans, with its rows from right to left.
    mask = portrait.plane("skin") > 0
    grey = numpy.where(mask, 255, 0).astype(numpy.uint8)
    mirrored = numpy.ascontiguousarray(mask[:, ::-1])[:, ::-1]
    assert numpy.array_equal(zel.inpaint(picture, mask=mirrored), zel.inpaint(picture, mask=grey))


def test_threads_at_once_give_the_same_and_leave_the_interpreter_free(portrait):
    picture = numpy.tile(portrait.picture, (3, 3, 1))
    expected, results = zel.nature_smooth(picture), [None] * 6
    longest, last, done = 0.0, time.monotonic(), threading.Event()

    def work(i):
        results[i] = zel.nature_smooth(picture, context=zel.Context(threads=1) if i % 2 else None)

    threads = [threading.Thread(target=work, args=(i,)) for i in range(len(results))]
    for thread in threads:
        thread.start()
    while any(thread.is_alive() for thread in threads):
        done.wait(0.001)
        longest, last = max(longest, time.monotonic() - last), time.monotonic()
    assert all(numpy.array_equal(result, expected) for result in results)
    start = time.monotonic()
    zel.nature_smooth(picture)
    assert longest < max(0.5, 3 * (time.monotonic() - start)), "a call holds the interpreter"


def test_progress_cancels_and_its_exceptions_come_through(portrait):
    picture, seen = portrait.picture.copy(), []
    with pytest.raises(zel.Cancelled):
        zel.auto_zoom_eye(picture, faces=portrait.faces, out=picture, progress=lambda f, s: seen.append((f, s)) or f > 0)
    assert len(seen) == 2 and numpy.array_equal(picture, portrait.picture)

    def fails(fraction, stage):
        raise LookupError(stage)

    with pytest.raises(LookupError):
        zel.auto_zoom_eye(picture, faces=portrait.faces, progress=fails)
    with pytest.raises(KeyboardInterrupt):  # as Ctrl-C would, while the call runs
        zel.auto_zoom_eye(picture, faces=portrait.faces, out=picture,
                          progress=lambda f, s: f == 0 and _thread.interrupt_main() and None)
    assert numpy.array_equal(picture, portrait.picture)
    assert not numpy.array_equal(zel.auto_zoom_eye(picture, faces=portrait.faces, progress=lambda f, s: None), picture)


def test_settings_and_the_log(portrait, tmp_path):
    lines = []
    context = zel.Context(threads=1, gl="never", log=lambda level, text, source: lines.append((level, text)))
    zel.find_faces(portrait.picture, context=context)
    assert any(level == "info" and "faces are searched for" in text for level, text in lines)
    with pytest.raises(zel.UnavailableError):
        zel.defocus(portrait.picture, depth=portrait.plane("person"), context=context)
    with pytest.raises(zel.FileError, match="nowhere"):
        zel.Context(assets="/nowhere")
    with pytest.raises(ValueError):
        zel.Context(gl="vulkan")
    assert [n.name for n in zel.networks() if "depth" in n.name] == ["portrait_depth.onnx"]


def test_ten_thousand_calls_leave_no_memory_behind(portrait):
    small = numpy.ascontiguousarray(portrait.picture[::8, ::8])
    planar = small[..., :3].transpose(1, 0, 2)

    def calls(count):
        for _ in range(count):
            zel.gauss_blur(small, radius=2, progress=lambda f, s: None)
            zel.apply("mosaic", planar, blockSize=2)
            zel.Faces.from_json(portrait.faces.to_json())
            with pytest.raises(zel.ArgumentError):
                zel.gauss_blur(small, radius="much")

    def portraits(count):
        for _ in range(count):
            zel.draw_portrait((60, 80)).plane("skin")

    calls(300)
    portraits(3)
    before = resident()
    calls(2500)
    portraits(20)
    assert resident() - before < 1 << 20  # 100 bytes a call: less than the smallest thing that is made


def test_works_from_any_folder_alone(tmp_path):
    """In a fresh process without the build's help."""
    script = "import sys, zel; print(zel.default_context().assets); zel.find_faces(zel.draw_portrait((90, 120)).picture)"
    package = str(zel.__path__[0])
    run = subprocess.run([sys.executable, "-c", script], cwd=tmp_path, text=True, capture_output=True, check=True,
                         env={"PYTHONPATH": package.rpartition("/")[0], "PATH": "/usr/bin:/bin"})
    assert run.stdout.strip() == package + "/lib/assets" and run.stderr == ""
