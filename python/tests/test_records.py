"""The Python results are the C records: every entry is called once through
the package and once through ctypes on the library itself, with the same
arguments and the same preset words, on random synthetic cases."""
import ctypes
import pathlib

import numpy as np
import pytest

import sonolex
from conftest import ellipse, random_case

LIB = ctypes.CDLL(str(pathlib.Path(sonolex.__file__).parent / "libsonolex.so.0"))
INT_MIN = -2 ** 31


class Point(ctypes.Structure):
    _fields_ = [("x", ctypes.c_int32), ("y", ctypes.c_int32)]


class Roi(ctypes.Structure):
    _fields_ = [("x", ctypes.c_int32), ("y", ctypes.c_int32), ("width", ctypes.c_int32), ("height", ctypes.c_int32)]


class Axes(ctypes.Structure):
    _fields_ = [("longStart", Point), ("longEnd", Point), ("shortStart", Point), ("shortEnd", Point)]


def points(outline):
    flat = np.ascontiguousarray(outline, dtype=np.int32)
    return len(flat), flat.ctypes.data_as(ctypes.POINTER(Point)), flat


def packed(outlines):
    sizes = np.array([len(o) for o in outlines], dtype=np.int32)
    flat = np.ascontiguousarray(np.concatenate(outlines) if outlines else np.zeros((0, 2)), dtype=np.int32)
    return (len(outlines), sizes.ctypes.data_as(ctypes.POINTER(ctypes.c_int32)), flat.ctypes.data_as(ctypes.POINTER(Point)),
            len(flat), (sizes, flat))


def c_call(name, image, preset, *args):
    """Calls the entry `name` with the image arguments, `args`, and a record holding `preset`."""
    record = (ctypes.c_int32 * len(preset))(*preset)
    channels = 1 if image.ndim == 2 else image.shape[2]
    data = np.ascontiguousarray(image)
    getattr(LIB, name)(data.ctypes.data_as(ctypes.c_void_p), channels, image.shape[1], image.shape[0], *args,
                       ctypes.byref(record))
    return tuple(record)


def frame(image):
    h, w = image.shape[:2]
    return np.array([[0, 0], [w - 1, 0], [w - 1, h - 1], [0, h - 1]], dtype=np.int32)


CASES = 40  # a case per organ and round: 7 entries x 40 = 280 calls each way


@pytest.mark.parametrize("seed", range(CASES))
def test_every_entry_gives_the_c_record(seed):
    rng = np.random.default_rng(seed)
    image, lesion, roi = random_case(rng)
    n, pts, keep = points(lesion)
    r = Roi(*roi)

    # Breast, with explicit axes so that nothing is derived.
    ax = (lesion[0], lesion[len(lesion) // 2], lesion[len(lesion) // 4], lesion[3 * len(lesion) // 4])
    axes = Axes(*(Point(int(p[0]), int(p[1])) for p in ax))
    py = sonolex.describe_breast(image, lesion, roi=roi, axes=np.array(ax))
    assert py.words == c_call("BreastDescription", image, [0] * 6, r, n, pts, axes)
    assert py.entry == "BreastDescription" and py.derived == ()

    model = [ellipse(int(p[0]), int(p[1]), 2, 2, 8) for p in lesion[::7]]
    count, sizes, mpts, _, keep_m = packed(model)
    py = sonolex.describe_breast_with_model(image, lesion, model, roi=roi, axes=np.array(ax))
    assert py.words == c_call("BreastDescriptionHaveModelProcess", image, [0] * 6, r, n, pts, count, sizes, mpts, axes)

    # Thyroid: gland the image frame, given; echo preset 3.
    gland = frame(image)
    gn, gpts, keep_g = points(gland)
    py = sonolex.describe_thyroid(image, lesion, gland=gland, model=model, roi=roi)
    assert py.words == c_call("ThyroidDescriptionModelAfterProcess", image, [0, 3, 0, 0], gn, gpts, n, pts, count,
                              sizes, mpts, r)

    py = sonolex.describe_liver(image, lesion, liver=gland, roi=roi)
    assert py.words == c_call("LiverDescription", image, [0] * 4, r, gn, gpts, n, pts)

    # Carotid: two vessels around and beside the plaque; diameter ends preset to INT_MIN.
    h, w = image.shape[:2]
    vessels = [ellipse(w // 2, h // 3, w // 3, h // 6, 40), ellipse(w // 2, 2 * h // 3, w // 3, h // 8, 30)]
    vcount, vsizes, vpts, vtotal, keep_v = packed(vessels)
    plaque = ellipse(w // 2, h // 3 + h // 8, w // 10, h // 30 + 2, 16)
    pn, ppts, keep_p = points(plaque)
    proi = roi if seed % 2 else (0, 0, 0, 0)
    py = sonolex.describe_carotid(image, plaque, vessels, roi=proi)
    assert py.words == c_call("CarotidPlaqueDescription", image, [0, 0, 0] + [INT_MIN] * 4, Roi(*proi), vcount,
                              vsizes, vtotal, vpts, pn, ppts)

    # Gall bladder wall grade: outer outline and a lumen inside it.
    outer = ellipse(w // 2, h // 2, w // 3, h // 3, 48)
    inner = ellipse(w // 2, h // 2, w // 3 - 6 - seed % 5, h // 3 - 6, 40)
    on, opts, keep_o = points(outer)
    inn, ipts, keep_i = points(inner)
    py = sonolex.describe_gall_wall(image, inner, outer)
    assert py.words == c_call("GallWallDescription", image, [0, 0], on, opts, inn, ipts)

    # Gall bladder against its axis: distances and ends preset to INT_MIN.
    py = sonolex.describe_gall_bladder(image, outer, roi=roi)
    assert py.words == c_call("GallBladderWallDescription", image, [0, 0] + [INT_MIN] * 6, r, on, opts)


def test_fields_meanings_and_reach():
    rng = np.random.default_rng(7)
    image, lesion, _ = random_case(rng)
    r = sonolex.describe_breast(image, lesion)
    assert r.field_names() == ("shape", "orientation", "echo", "boundary", "margin", "calcification")
    assert r.words == tuple(getattr(r, f) for f in r.field_names())
    # Derived arguments are said, categories have words, and the result is frozen.
    assert any(d.startswith("roi:") for d in r.derived) and any(d.startswith("axis:") for d in r.derived)
    assert all(isinstance(r.meaning[f], str) and r.meaning[f] for f in r.field_names() if r.reached[f])
    with pytest.raises(AttributeError):
        r.shape = 3
    d = r.as_dict()
    assert d["entry"] == "BreastDescription" and d["shape_meaning"] == r.meaning["shape"]


def test_a_mask_gives_the_outline_the_program_takes(rng):
    image, lesion, roi = random_case(rng)
    mask = np.zeros(image.shape[:2], dtype=np.uint8)
    mask[40:90, 50:130] = 1
    mask[5:8, 5:8] = 1  # a smaller component: not the lesion
    outline = sonolex.mask_outlines(mask)[0]
    assert sonolex.describe_breast(image, mask, roi=roi).words == sonolex.describe_breast(image, outline, roi=roi).words
    assert sonolex.describe("breast", image, mask.astype(bool), roi=roi).words == \
        sonolex.describe_breast(image, outline, roi=roi).words


def test_gall_wall_mask_alone_gives_outer_outline_and_lumen():
    image = np.full((100, 120), 90, dtype=np.uint8)
    wall = np.zeros((100, 120), dtype=np.uint8)
    wall[20:80, 20:100] = 255
    wall[28:72, 28:92] = 0
    outer, lumen = sonolex.mask_outlines(wall)[0], sonolex.mask_outlines(wall[28:72, 28:92] == 0)[0]
    lumen = lumen + 28
    alone = sonolex.describe_gall_wall(image, wall)
    assert alone.words == sonolex.describe_gall_wall(image, lumen, outer).words
