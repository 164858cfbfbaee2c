"""The real cases of the shared data folder as a manifest the dataset tools
read: each outline of manifest.json written as a PNG mask."""
import json
import os

import numpy as np

from sonolex import _core


def write_manifest(data_dir: str, out_dir: str) -> str:
    """Writes masks and cases.csv (Image, Mask, Organ, OrganMask, Id) into out_dir; returns the CSV's path."""
    with open(os.path.join(data_dir, "manifest.json")) as f:
        cases = json.load(f)
    os.makedirs(out_dir, exist_ok=True)
    lines = ["Image,Mask,Organ,OrganMask,Id"]
    for c in cases:
        mask = np.zeros((c["height"], c["width"]), dtype=np.uint8)
        for lesion in c.get("lesions") or []:
            outline = np.asarray(lesion["contour"], dtype=np.int32).reshape(-1, 2)
            mask |= _core.fill_outline(outline, (c["height"], c["width"]), 255)
        mask_path = os.path.join(out_dir, c["id"] + "-mask.png")
        _core.write_image(mask_path, mask)
        organ_path = ""
        if c.get("organ_outline"):
            outline = np.asarray(c["organ_outline"]["contour"], dtype=np.int32).reshape(-1, 2)
            organ_path = os.path.join(out_dir, c["id"] + "-organ.png")
            _core.write_image(organ_path, _core.fill_outline(outline, (c["height"], c["width"]), 255))
        lines.append(f'{os.path.join(data_dir, c["image"])},{mask_path},{c["organ"]},{organ_path},{c["id"]}')
    path = os.path.join(out_dir, "cases.csv")
    with open(path, "w") as f:
        f.write("\n".join(lines) + "\n")
    return path
