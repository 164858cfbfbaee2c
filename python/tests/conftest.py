"""Random synthetic scans and outlines shared by the Python tests."""
import numpy as np
import pytest


def ellipse(cx, cy, a, b, n=40, angle=0.0):
    t = np.linspace(0, 2 * np.pi, n, endpoint=False)
    x = cx + a * np.cos(t) * np.cos(angle) - b * np.sin(t) * np.sin(angle)
    y = cy + a * np.cos(t) * np.sin(angle) + b * np.sin(t) * np.cos(angle)
    return np.stack([np.rint(x), np.rint(y)], axis=1).astype(np.int32)


def scan(rng, h, w, channels=1):
    """Speckle with a darker oval where the lesion is drawn by the caller."""
    img = rng.integers(60, 200, size=(h, w), dtype=np.uint8)
    if channels == 1:
        return img
    return np.ascontiguousarray(np.repeat(img[:, :, None], channels, axis=2))


def random_case(rng):
    """(image, lesion outline, roi) with the lesion inside the frame."""
    h, w = int(rng.integers(120, 260)), int(rng.integers(140, 320))
    image = scan(rng, h, w, int(rng.choice([1, 3, 4])))
    a, b = int(rng.integers(15, w // 4)), int(rng.integers(12, h // 4))
    cx, cy = int(rng.integers(a + 5, w - a - 5)), int(rng.integers(b + 5, h - b - 5))
    lesion = ellipse(cx, cy, a, b, int(rng.integers(12, 60)), float(rng.uniform(0, np.pi)))
    lesion[:, 0] = np.clip(lesion[:, 0], 0, w - 1)
    lesion[:, 1] = np.clip(lesion[:, 1], 0, h - 1)
    x0, y0 = max(cx - a - 20, 0), max(cy - b - 20, 0)
    roi = (x0, y0, min(cx + a + 20, w) - x0, min(cy + b + 20, h) - y0)
    return image, lesion, roi


@pytest.fixture
def rng():
    return np.random.default_rng(20261123)
