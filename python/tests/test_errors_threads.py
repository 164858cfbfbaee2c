"""Bad arguments raise ValueError naming the argument; threads give the
results one thread gives."""
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import sonolex
from conftest import ellipse, random_case

IMAGE = np.full((60, 80), 100, dtype=np.uint8)
LESION = ellipse(40, 30, 15, 10, 20)


@pytest.mark.parametrize("call, argument", [
    (lambda: sonolex.describe_breast(IMAGE.astype(np.float32), LESION), "image"),       # wrong dtype
    (lambda: sonolex.describe_breast(IMAGE[:, :, None].repeat(2, 2), LESION), "image"),  # two channels
    (lambda: sonolex.describe_breast(IMAGE[:0], LESION), "image"),                      # empty
    (lambda: sonolex.describe_breast([[1, 2]], LESION), "image"),                       # not an array
    (lambda: sonolex.describe_breast(IMAGE, LESION.astype(float)), "lesion"),           # float outline
    (lambda: sonolex.describe_breast(IMAGE, np.zeros((50, 80), np.uint8)), "lesion"),   # mask of another size
    (lambda: sonolex.describe_breast(IMAGE, np.zeros((60, 80), np.float32)), "lesion"), # float mask
    (lambda: sonolex.describe_breast(IMAGE, np.zeros((60, 80), np.uint8)), "lesion"),   # empty mask
    (lambda: sonolex.describe_breast(IMAGE, LESION[None]), "lesion"),                   # 3-D
    (lambda: sonolex.describe_breast(IMAGE, np.array([[2 ** 40, 0]] * 5)), "lesion"),   # beyond int32
    (lambda: sonolex.describe_breast(IMAGE, LESION, roi=(1, 2, 3)), "roi"),
    (lambda: sonolex.describe_breast(IMAGE, LESION, axes=np.zeros(8, float)), "axes"),
    (lambda: sonolex.describe_breast(IMAGE, None), "lesion"),
    (lambda: sonolex.describe_breast_with_model(IMAGE, LESION, None), "model"),
    (lambda: sonolex.describe_breast_with_model(IMAGE, LESION, [LESION.astype(float)]), "model[0]"),
    (lambda: sonolex.describe_thyroid(IMAGE, LESION, gland=np.ones((61, 80), np.uint8)), "gland"),
    (lambda: sonolex.describe_thyroid(IMAGE, LESION, gland=[]), "gland"),
    (lambda: sonolex.describe_carotid(IMAGE, LESION, None), "vessels"),
    (lambda: sonolex.describe_gall_wall(IMAGE, LESION), "outer"),
    (lambda: sonolex.describe("kidney", IMAGE, LESION), "organ"),
    (lambda: sonolex.describe("carotid", IMAGE, LESION), "organ_mask"),
    (lambda: sonolex.describe("liver", IMAGE, LESION, axes=np.zeros(8, int)), "axes"),
    (lambda: sonolex.glcm(IMAGE, 100, 0, 3), "row, column"),
    (lambda: sonolex.hausdorff(LESION, np.zeros((0, 2), np.int32)), "second"),
    (lambda: sonolex.lesion_axes(LESION[:3], IMAGE.shape), "outline"),
])
def test_bad_arguments_raise_value_error_naming_them(call, argument):
    with pytest.raises(ValueError) as e:
        call()
    assert str(e.value).startswith(argument + ":"), str(e.value)


def test_four_threads_give_one_threads_results():
    rng = np.random.default_rng(5)
    cases = [random_case(rng) for _ in range(48)]
    alone = [sonolex.describe_breast(img, les, roi=roi).words for img, les, roi in cases]
    with ThreadPoolExecutor(4) as pool:
        together = list(pool.map(lambda c: sonolex.describe_breast(c[0], c[1], roi=c[2]).words, cases))
    assert together == alone


def test_exported_classes_on_arrays():
    # Hausdorff: (0,0),(10,0) against (0,3): nearest distances 3 and sqrt(109); mean (3 + 10.44) / 2.
    h = sonolex.hausdorff(np.array([[0, 0], [10, 0]]), np.array([[0, 3]]))
    assert h["largest"] == pytest.approx(np.sqrt(109), rel=1e-6)
    assert h["mean"] == pytest.approx((3 + np.sqrt(109)) / 2, rel=1e-6)
    assert h["pair"].tolist() == [[10, 0], [0, 3]]
    # GLCM of a flat window: every pair is (v, v); 255 >> 4 = 15 at GRAY_16, so all mass at (15, 15).
    m = sonolex.glcm(np.full((9, 9), 255, np.uint8), 4, 4, 3)
    assert m.shape == (16, 16) and m[15, 15] == pytest.approx(1.0) and m.sum() == pytest.approx(1.0)
    # Axes of a wide ellipse: the long one about 2 x 40 wide, the short about 2 x 15 tall.
    ax = sonolex.lesion_axes(ellipse(100, 80, 40, 15, 80), (160, 200))
    lengths = sorted([ax["length_a"], ax["length_b"]])
    assert lengths[0] == pytest.approx(30, abs=3) and lengths[1] == pytest.approx(80, abs=3)
