"""sonolex: describe a lesion or organ on a B-mode ultrasound scan, in the
categories of a sonographer's report.

Images are numpy ``uint8`` arrays: H x W grey, H x W x 3 BGR or H x W x 4.
Outlines are (N, 2) integer arrays of x, y in image pixels, or a mask of the
image's size (bool or integer labels), whose largest component's outer
outline is taken, as the ``sonolex`` command-line program does. Options
mirror the C entry points; what is not given is derived as a host would
(a region of the lesion's box widened by 20 pixels a side, the breast axes
measured on the outline, the image frame as the gland or liver), and the
result's ``derived`` says what.

Every call releases the GIL while the library works, so threads run cases
side by side. Wrong types, shapes or sizes raise ``ValueError`` naming the
argument; nothing that could make the library read out of bounds reaches it.

    >>> import sonolex
    >>> r = sonolex.describe_breast(image, mask)
    >>> r.shape, r.meaning["shape"]
    (1, 'oval')
"""
from __future__ import annotations

import dataclasses
import types
from typing import Any, Dict, Mapping, Optional, Sequence, Tuple

import numpy as np

from . import _core
from ._core import GrayDirection, GrayLevel, fill_outline, read_image, write_image

__all__ = [
    "describe", "describe_breast", "describe_breast_with_model", "describe_thyroid", "describe_liver",
    "describe_carotid", "describe_gall_wall", "describe_gall_bladder", "read_image", "write_image",
    "fill_outline", "mask_outlines",
    "lesion_axes", "hausdorff", "glcm", "texture_values", "GrayLevel", "GrayDirection", "ORGANS",
    "Result", "BreastResult", "ThyroidResult", "LiverResult", "CarotidResult", "GallWallResult",
    "GallBladderResult",
]

#: Organ names accepted by :func:`describe`, as the command-line program takes them.
ORGANS: Tuple[str, ...] = tuple(_core.organs())


class Result:
    """A record: one attribute per field of the C record (categories as
    ints, measured values as int or float), plus

    - ``meaning``: field -> the value in words ("" for measured numbers),
    - ``reached``: field -> whether the call reached that verdict (True,
      False, or None where the record cannot tell),
    - ``entry``: the C function called, ``derived``: the arguments supplied
      for you, ``words``: the record's raw 32-bit words.
    """

    def as_dict(self) -> Dict[str, Any]:
        """The fields, then ``<field>_meaning`` for each category, ``entry`` and ``derived``."""
        out: Dict[str, Any] = {name: getattr(self, name) for name in self.field_names()}
        for name in self.field_names():
            if self.meaning.get(name):
                out[name + "_meaning"] = self.meaning[name]
        out["entry"] = self.entry
        out["derived"] = list(self.derived)
        return out

    @classmethod
    def field_names(cls) -> Tuple[str, ...]:
        return cls._fields  # type: ignore[attr-defined]


def _result_class(organ: str, class_name: str) -> type:
    names = tuple(_core.field_names(organ))
    extra = [
        ("meaning", Mapping[str, str], dataclasses.field(repr=False)),
        ("reached", Mapping[str, Optional[bool]], dataclasses.field(repr=False)),
        ("entry", str, dataclasses.field(repr=False)),
        ("derived", Tuple[str, ...], dataclasses.field(repr=False)),
        ("words", Tuple[int, ...], dataclasses.field(repr=False)),
    ]
    cls = dataclasses.make_dataclass(class_name, [(n, Any) for n in names] + extra, bases=(Result,), frozen=True,
                                     namespace={"_fields": names, "__module__": __name__})
    cls.__doc__ = f"The {organ} record: " + ", ".join(names) + "."
    return cls


BreastResult = _result_class("breast", "BreastResult")
ThyroidResult = _result_class("thyroid", "ThyroidResult")
LiverResult = _result_class("liver", "LiverResult")
CarotidResult = _result_class("carotid", "CarotidResult")
GallWallResult = _result_class("gallwall", "GallWallResult")
GallBladderResult = _result_class("gallbladder", "GallBladderResult")
_CLASSES = {"breast": BreastResult, "thyroid": ThyroidResult, "liver": LiverResult, "carotid": CarotidResult,
            "gallwall": GallWallResult, "gallbladder": GallBladderResult}


def _to_result(d: Dict[str, Any]) -> Result:
    values, meaning, reached, words = {}, {}, {}, []
    for name, value, words_of, reach, _categorical, word in d["fields"]:
        values[name] = value
        meaning[name] = words_of
        reached[name] = reach
        words.append(word)
    return _CLASSES[d["organ"]](**values, meaning=types.MappingProxyType(meaning),
                                reached=types.MappingProxyType(reached), entry=d["entry"],
                                derived=tuple(d["derived"]), words=tuple(words))


def _box(value: Any, name: str, count: int) -> Optional[list]:
    if value is None:
        return None
    flat = np.asarray(value).reshape(-1)
    if flat.size != count or flat.dtype.kind not in "iu":
        what = "(x, y, width, height)" if count == 4 else "((x1, y1), (x2, y2), (x3, y3), (x4, y4)): long axis, then short"
        raise ValueError(f"{name}: must be {count} integers {what}")
    if np.any(flat < np.iinfo(np.int32).min) or np.any(flat > np.iinfo(np.int32).max):
        raise ValueError(f"{name}: outside the 32-bit range")
    return [int(v) for v in flat]


def _is_outline(arr: np.ndarray, image: Any) -> bool:
    """(N, 2) is an outline unless it has the image's own size (a mask of a two-column image)."""
    return arr.ndim == 2 and arr.shape[1] == 2 and tuple(arr.shape) != tuple(getattr(image, "shape", ())[:2])


def _outlines(value: Any, image: Any) -> Any:
    """A list of (N, 2) outlines stays a list; a single (N, 2) array becomes one; a mask stays an array."""
    if value is None or isinstance(value, (list, tuple)):
        return value if value is None else list(value)
    arr = np.asarray(value)
    return [arr] if _is_outline(arr, image) else arr


def _call(organ: str, image: Any, lesion: Any, *, organ_outlines: Any = None, model: Any = None,
          label: Optional[int] = None, roi: Any = None, axes: Any = None, lesion_name: str = "mask",
          organ_name: str = "organ_mask", model_name: str = "model_mask") -> Result:
    if lesion is None:
        raise ValueError(f"{lesion_name}: an outline or a mask is needed")
    if not isinstance(image, np.ndarray):
        raise ValueError("image: must be a numpy uint8 array")
    d = _core.describe_arrays(organ, image, np.asarray(lesion), _outlines(organ_outlines, image),
                              _outlines(model, image), -1 if label is None else int(label),
                              _box(roi, "roi", 4), _box(axes, "axes", 8), lesion_name, organ_name, model_name)
    return _to_result(d)


def describe_breast(image: np.ndarray, lesion: Any, *, roi: Any = None, axes: Any = None,
                    label: Optional[int] = None) -> Result:
    """Breast lesion (``BreastDescription``): shape, orientation, echo, boundary, margin, calcification."""
    return _call("breast", image, lesion, roi=roi, axes=axes, label=label, lesion_name="lesion")


def describe_breast_with_model(image: np.ndarray, lesion: Any, model: Any, *, roi: Any = None, axes: Any = None,
                               label: Optional[int] = None) -> Result:
    """Breast lesion with the regions of a detection model (``BreastDescriptionHaveModelProcess``):
    ``model`` is a list of (N, 2) outlines or a mask whose components are the regions."""
    if model is None:
        raise ValueError("model: a list of outlines or a mask is needed")
    return _call("breast", image, lesion, model=model, roi=roi, axes=axes, label=label, lesion_name="lesion",
                 model_name="model")


def describe_thyroid(image: np.ndarray, nodule: Any, *, gland: Any = None, model: Any = None, roi: Any = None,
                     label: Optional[int] = None) -> Result:
    """Thyroid nodule (``ThyroidDescriptionModelAfterProcess``); ``gland`` defaults to the image frame."""
    return _call("thyroid", image, nodule, organ_outlines=gland, model=model, roi=roi, label=label,
                 lesion_name="nodule", organ_name="gland", model_name="model")


def describe_liver(image: np.ndarray, lesion: Any, *, liver: Any = None, roi: Any = None,
                   label: Optional[int] = None) -> Result:
    """Liver lesion against the liver around it (``LiverDescription``); ``liver`` defaults to the image frame."""
    return _call("liver", image, lesion, organ_outlines=liver, roi=roi, label=label, lesion_name="lesion",
                 organ_name="liver")


def describe_carotid(image: np.ndarray, plaque: Any, vessels: Any, *, roi: Any = None,
                     label: Optional[int] = None) -> Result:
    """Carotid plaque (``CarotidPlaqueDescription``): ``vessels`` is a list of outlines or a mask (every component)."""
    if vessels is None:
        raise ValueError("vessels: the vessel outlines (a list or a mask) are needed")
    return _call("carotid", image, plaque, organ_outlines=vessels, roi=roi, label=label, lesion_name="plaque",
                 organ_name="vessels")


def describe_gall_wall(image: np.ndarray, lumen: Any, outer: Any = None, *, label: Optional[int] = None) -> Result:
    """Gall bladder wall grade (``GallWallDescription``): ``lumen`` the inner outline and ``outer`` the outer
    one; or ``lumen`` a wall mask alone, whose outer outline and enclosed lumen are taken."""
    if outer is None and lumen is not None and _is_outline(np.asarray(lumen), image):
        raise ValueError("outer: needed when lumen is an outline (or pass the wall mask as lumen)")
    return _call("gallwall", image, lumen, organ_outlines=outer, label=label, lesion_name="lumen",
                 organ_name="outer")


def describe_gall_bladder(image: np.ndarray, organ: Any, *, roi: Any = None,
                          label: Optional[int] = None) -> Result:
    """Gall bladder wall against the organ's long axis (``GallBladderWallDescription``): ``organ`` the gall
    bladder's outline or mask."""
    return _call("gallbladder", image, organ, roi=roi, label=label, lesion_name="organ")


def describe(organ: str, image: np.ndarray, mask: Any, *, organ_mask: Any = None, model_mask: Any = None,
             roi: Any = None, axes: Any = None, label: Optional[int] = None) -> Result:
    """Any organ by name (one of ``ORGANS``), the way the command-line program's ``describe`` takes it:
    ``mask`` the lesion (plaque, lumen or wall, gall bladder) as a mask or outline, ``organ_mask`` the gland,
    liver, vessels or outer wall, ``model_mask`` the detection model's regions (breast and thyroid)."""
    if organ not in ORGANS:
        raise ValueError(f"organ: {organ!r} is not one of {', '.join(ORGANS)}")
    if organ == "carotid" and organ_mask is None:
        raise ValueError("organ_mask: the carotid needs the vessel outlines")
    if axes is not None and organ != "breast":
        raise ValueError("axes: only the breast takes axes")
    return _call(organ, image, mask, organ_outlines=organ_mask, model=model_mask, roi=roi, axes=axes,
                 label=label)


def mask_outlines(mask: np.ndarray, label: Optional[int] = None) -> list:
    """Outer outlines ((N, 2) int32 arrays) of a mask's components, the largest first; ``label`` picks one
    label (default: every non-zero pixel)."""
    return _core.mask_outlines(np.asarray(mask), -1 if label is None else int(label))


def lesion_axes(outline: Any, shape: Sequence[int]) -> Dict[str, Any]:
    """``LesionAxis`` on an outline in an image of ``shape`` (height, width): the two axes as (2, 2) arrays
    of their ends, the more level one first, both corrected to cross near the middle, and their lengths."""
    a, b, la, lb, corrected = _core.lesion_axes(np.asarray(outline), (int(shape[0]), int(shape[1])))
    return {"axis_a": a, "axis_b": b, "length_a": la, "length_b": lb, "corrected": corrected}


def hausdorff(first: Any, second: Any) -> Dict[str, Any]:
    """``Hausdorff`` between two point sets ((N, 2) int arrays): the largest and mean nearest-point distance
    from ``first`` to ``second``, the pair giving the largest, and the symmetric Hausdorff distance."""
    largest, mean, pair, both = _core.hausdorff(np.asarray(first), np.asarray(second))
    return {"largest": largest, "mean": mean, "pair": pair, "hausdorff": both}


def glcm(image: np.ndarray, row: int, column: int, size: int, level: GrayLevel = GrayLevel.GRAY_16,
         direction: GrayDirection = GrayDirection.HORIZONTAL) -> np.ndarray:
    """``GLCM``: the normalised co-occurrence matrix (levels x levels, float32) of the window of ``size``
    centred on (row, column) of a grey uint8 image."""
    return _core.glcm(image, int(row), int(column), int(size), level, direction)


def texture_values(image: np.ndarray, size: int, level: GrayLevel = GrayLevel.GRAY_16) -> Dict[str, float]:
    """``GLCM``: energy, contrast, homogeneity and entropy summed over every pixel's window of a grey image."""
    return _core.texture_values(image, int(size), level)
