"""A manifest on a local Dask cluster: one row per case, failing rows kept
with their error, the other columns copied."""
import os
import pathlib
import subprocess

import pandas as pd
import pytest

from sonolex.dataset import describe_manifest
from realdata import write_manifest

ROOT = pathlib.Path(__file__).resolve().parents[2]
REAL = os.environ.get("SONOLEX_REAL_DATA", str(ROOT.parent / "shared" / "data" / "real"))


@pytest.fixture(scope="module")
def demo(tmp_path_factory):
    tool = os.environ.get("SONOLEX_DEMO_CASES")
    if not tool:
        pytest.skip("SONOLEX_DEMO_CASES (the demo case writer) not set")
    out = tmp_path_factory.mktemp("demo")
    subprocess.run([tool, str(out)], check=True, capture_output=True)
    return out


def test_manifest_rows_errors_and_copied_columns(demo):
    manifest = pd.read_csv(demo / "cases.csv", dtype=str, keep_default_na=False)
    bad = {c: "" for c in manifest.columns}
    bad.update({"Image": "missing.png", "Mask": "missing-mask.png", "Organ": "breast", "Case": "no such file"})
    manifest = pd.concat([manifest, pd.DataFrame([bad])], ignore_index=True)
    table = describe_manifest(manifest, base_dir=str(demo), n_workers=2, progress=False)
    assert list(table["row"]) == list(range(1, len(manifest) + 1))
    assert list(table["Case"]) == list(manifest["Case"])
    ok = table[table["error"] == ""]
    assert len(ok) == len(manifest) - 1
    assert set(ok["entry"]) == {"BreastDescription", "BreastDescriptionHaveModelProcess",
                                "ThyroidDescriptionModelAfterProcess", "LiverDescription",
                                "CarotidPlaqueDescription", "GallWallDescription"}
    failed = table.iloc[-1]
    assert "missing.png" in failed["error"]
    # The first case is the smooth oval of the README: a breast record with words.
    first = table.iloc[0]
    assert first["shape_meaning"] and first["entry"] == "BreastDescription"


def test_manifest_path_relative_to_its_folder(demo):
    table = describe_manifest(str(demo / "cases.csv"), n_workers=1, progress=False)
    assert (table["error"] == "").all()


@pytest.mark.skipif(not os.path.isfile(os.path.join(REAL, "manifest.json")), reason="no real data")
def test_real_cases_on_two_workers(tmp_path):
    csv = write_manifest(REAL, str(tmp_path))
    cases = len(pd.read_csv(csv))
    table = describe_manifest(csv, n_workers=2, progress=False)
    assert len(table) == cases and table["Id"].is_unique
    described = table[table["error"] == ""]
    # Cases without an expert outline fail as empty masks; every other one is described.
    assert (table.loc[table["error"] != "", "error"].str.contains("empty")).all()
    assert len(described) > cases // 2
