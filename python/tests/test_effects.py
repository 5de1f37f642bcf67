"""Every effect gives the bytes that the command gives, by name and by its function, whatever the array's layout."""

import numpy
import pytest
from PIL import Image

import zel
from zel import _functions

EFFECTS = {effect.name: effect for effect in zel.effects()}


def needed(effect):
    """A value for every parameter that must be given."""
    return {p.name: float(f"0.4{i}") for i, p in enumerate(effect.parameters) if p.default is None}


def inputs(effect, portrait):
    """What the effect may take, and arrays for what it gives back."""
    picture = portrait.picture
    all_inputs = {"faces": portrait.faces, "mask": portrait.plane("skin"), "second": portrait.plane("clean"),
                  "depth": portrait.plane("person"), "mask_out": numpy.zeros(picture.shape[:2], numpy.uint8),
                  "depth_out": numpy.zeros(picture.shape[:2], numpy.uint8)}
    return {name: value for name, value in all_inputs.items() if getattr(effect, name) != "no"}


@pytest.mark.parametrize("name", EFFECTS)
def test_same_bytes_as_the_command(name, portrait, command, tmp_path):
    effect, given = EFFECTS[name], inputs(EFFECTS[name], portrait)
    words = ["apply", name, tmp_path / "in.png", "-o", tmp_path / "out.png", "--quiet"]
    Image.fromarray(portrait.picture).save(tmp_path / "in.png")
    for key, value in needed(effect).items():
        words += ["--set", f"{key}={value}"]
    for key, value in given.items():
        file = tmp_path / (key + (".json" if key == "faces" else ".png"))
        words += ["--" + key.replace("_", "-"), file]
        if key == "faces":
            file.write_text(value.to_json())
        else:
            Image.fromarray(value).save(file)
    command(*words)

    result = getattr(zel, _functions.function_name(effect))(portrait.picture, **needed(effect), **given)
    assert numpy.array_equal(result, numpy.array(Image.open(tmp_path / "out.png").convert("RGBA")))
    for key in ("mask_out", "depth_out"):
        if key in given:
            assert numpy.array_equal(given[key], numpy.array(Image.open(tmp_path / (key + ".png"))))

    # Upside down in memory, every other column of a wider one, without alpha, in place: the same.
    height, width = portrait.picture.shape[:2]
    wide = numpy.zeros((height, 2 * width, 4), numpy.uint8)[::-1, ::2]
    wide[...] = portrait.picture
    assert zel.apply(name, wide, out=wide, **needed(effect), **given) is wide
    assert numpy.array_equal(wide, result)
    planar = numpy.ascontiguousarray(portrait.picture[..., :3].transpose(2, 0, 1)).transpose(1, 2, 0)
    assert numpy.array_equal(zel.apply(name, planar, **needed(effect), **given), result[..., :3])


def test_functions_tell_what_the_registry_tells(portrait):
    signature = _functions.signature(EFFECTS["vignette"])
    assert all(p.name in zel.vignette.__doc__ and p.name in signature.parameters for p in EFFECTS["vignette"].parameters)
    assert len(_functions.FUNCTIONS) == len(EFFECTS) and set(_functions.FUNCTIONS) <= set(zel.__all__)
    # Defaults that are told are those that are used.
    told = {p.name: p.default for p in _functions.signature(EFFECTS["scenario"]).parameters.values()
            if p.name in {q.name for q in EFFECTS["scenario"].parameters}}
    assert numpy.array_equal(zel.scenario(portrait.picture, **told), zel.scenario(portrait.picture))


def test_values_of_every_kind(portrait):
    small = portrait.picture[::4, ::4]
    assert numpy.array_equal(zel.gauss_blur(small, radius=3), zel.gauss_blur(small, radius=numpy.int64(3)))
    assert numpy.array_equal(zel.vignette(small, strength=0.25), zel.vignette(small, strength="0.25"))
    point = zel.defocus(small, focus=(0.5, 0.25), useDepth=numpy.False_)
    assert numpy.array_equal(point, zel.defocus(small, focus="0.5,0.25", useDepth=False))
    for value, error in ((None, TypeError), ([1], TypeError), (2.5, zel.ArgumentError), (float("nan"), zel.ArgumentError)):
        with pytest.raises(error):
            zel.gauss_blur(small, radius=value)


def test_faces_masks_depth_and_files(portrait, command, tmp_path):
    Image.fromarray(portrait.picture).save(tmp_path / "in.png")
    command("faces", tmp_path / "in.png", "-o", tmp_path / "f.json", "--quiet")
    found = zel.find_faces(Image.open(tmp_path / "in.png"))
    assert found.to_json() == zel.Faces.from_json((tmp_path / "f.json").read_text()).to_json()
    again = zel.Faces(found.points, rects=found.rects, confidence=found.confidence, size=found.size)
    assert again.to_json() == found.to_json() and len(again) == 1
    assert abs(found.points - portrait.faces.points).max() < 0.03
    assert portrait.faces.dense_points(0, 300, 400).shape == (310, 2)
    for shape in ((1, 82, 2), (83, 2), (0,)):
        with pytest.raises(ValueError):
            zel.Faces(numpy.zeros(shape), size=(10, 10))
    command("depth", tmp_path / "in.png", "-o", tmp_path / "d.png", "--quiet")
    assert numpy.array_equal(zel.estimate_depth(portrait.picture), numpy.array(Image.open(tmp_path / "d.png")))
    assert numpy.array_equal(zel.decode(tmp_path / "in.png"), portrait.picture)
    assert numpy.array_equal(zel.decode((tmp_path / "in.png").read_bytes()), portrait.picture)
    with pytest.raises(zel.FileError, match="none.png: "):
        zel.decode(tmp_path / "none.png")


def test_portraits_outlive_their_handles():
    planes = [zel.draw_portrait((60, 80), seed=seed).plane("depth") for seed in (1, 1, 2)]
    assert planes[0].dtype == numpy.uint16 and numpy.array_equal(planes[0], planes[1])
    assert not numpy.array_equal(planes[0], planes[2])
