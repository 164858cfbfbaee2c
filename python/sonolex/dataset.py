"""A whole dataset on a Dask cluster.

The manifest follows the command-line program's ``batch`` convention: a
header row with ``Image`` and ``Mask`` (paths relative to the manifest's
folder, or to ``base_dir``), optionally ``Organ`` (else ``organ=``),
``Label``, ``OrganMask``, ``ModelMask``, ``Roi`` (``x,y,w,h``) and ``Axes``
(``x1,y1,...,y4``), column names in any case; every other column is copied to
the result. Each row runs on a worker, which reads its own files: only paths
travel. A row that fails holds its error and the job goes on.

    >>> from sonolex.dataset import describe_manifest
    >>> table = describe_manifest("cases.csv", organ="breast")
"""
from __future__ import annotations

import os
import sys
import time
from typing import Any, Dict, List, Optional

import pandas as pd

_READ = ("image", "mask", "organ", "label", "organmask", "modelmask", "roi", "axes")


def _cell(row: Dict[str, str], name: str) -> str:
    value = row.get(name, "")
    return "" if value is None else str(value).strip()


def _path(base: str, value: str) -> str:
    return value if not value or os.path.isabs(value) else os.path.join(base, value)


def describe_row(row: Dict[str, str], base: str, organ: Optional[str]) -> List[Dict[str, Any]]:
    """One manifest row (lower-case keys) into result rows: one, or one a component. Never raises."""
    from . import _core

    out: Dict[str, Any] = {"image": _cell(row, "image"), "mask": _cell(row, "mask"),
                           "organ": _cell(row, "organ") or (organ or ""), "error": "", "entry": ""}
    try:
        if not out["organ"]:
            raise ValueError("no Organ in the row and no organ= given")
        label = _cell(row, "label")
        try:
            label_value = int(label) if label else -1
        except ValueError:
            raise ValueError(f'Label "{label}" is not a number') from None
        described = _core.describe_files(
            out["organ"], _path(base, out["image"]), _path(base, out["mask"]),
            _path(base, _cell(row, "organmask")), _path(base, _cell(row, "modelmask")), label_value,
            _cell(row, "roi"), _cell(row, "axes"), False)
        results = []
        for d in described:
            r = dict(out)
            r["entry"] = d["entry"]
            r["derived"] = "; ".join(d["derived"])
            for name, value, meaning, _reached, categorical, _word in d["fields"]:
                r[name] = value
                if categorical:
                    r[name + "_meaning"] = meaning
            results.append(r)
        return results
    except Exception as e:  # a row's failure is its own, never the job's
        out["error"] = str(e) or type(e).__name__
        return [out]


def _rows(manifest: Any, base_dir: Optional[str]) -> tuple:
    if isinstance(manifest, pd.DataFrame):
        frame = manifest.copy()
        base = base_dir if base_dir is not None else os.getcwd()
    else:
        path = os.fspath(manifest)
        if not os.path.isfile(path):
            raise ValueError(f"manifest: cannot open {path}")
        frame = pd.read_csv(path, dtype=str, keep_default_na=False)
        base = base_dir if base_dir is not None else os.path.dirname(os.path.abspath(path))
    frame = frame.fillna("").astype(str)
    lower = {c: str(c).lower() for c in frame.columns}
    if "image" not in lower.values() or "mask" not in lower.values():
        raise ValueError("manifest: the header needs the columns Image and Mask")
    read, copied = {}, []
    for c in frame.columns:
        if lower[c] in _READ and lower[c] not in read.values():
            read[c] = lower[c]
        else:
            copied.append(c)
    return frame, read, copied, base


def describe_manifest(manifest: Any, client: Any = None, *, organ: Optional[str] = None,
                      base_dir: Optional[str] = None, n_workers: int = 2, progress: bool = True) -> pd.DataFrame:
    """Describes every row of ``manifest`` (a CSV path or a DataFrame) on ``client`` (a
    ``dask.distributed.Client``), or on a local cluster of ``n_workers`` single-threaded worker processes
    started and stopped here. Returns one row per case: ``row`` (the manifest's row number, from 1), the
    copied columns, ``image``, ``mask``, ``organ``, ``error`` (empty on success), ``entry``, ``derived``, and
    each field's value with ``<field>_meaning`` for the categories. Progress goes to stderr."""
    from dask.distributed import Client, LocalCluster, as_completed

    frame, read, copied, base = _rows(manifest, base_dir)
    own = None
    if client is None:
        own = LocalCluster(n_workers=n_workers, threads_per_worker=1, processes=True, dashboard_address=None)
        client = Client(own)
    try:
        tasks = [{read[c]: v for c, v in r.items() if c in read} for r in frame.to_dict("records")]
        futures = client.map(describe_row, tasks, base=base, organ=organ, pure=False)
        index = {f.key: i for i, f in enumerate(futures)}
        results: List[Optional[List[Dict[str, Any]]]] = [None] * len(futures)
        start = last = time.monotonic()
        done = 0
        for future in as_completed(futures):
            i = index[future.key]
            try:
                results[i] = future.result()
            except Exception as e:  # a worker lost under the row
                results[i] = [{"image": tasks[i].get("image", ""), "mask": tasks[i].get("mask", ""),
                               "organ": tasks[i].get("organ", organ or ""), "error": f"worker failed: {e}"}]
            done += 1
            now = time.monotonic()
            if progress and (now - last >= 10 or done == len(futures)):
                last = now
                print(f"sonolex: {done}/{len(futures)} rows, {done / max(now - start, 1e-9):.1f} rows/s",
                      file=sys.stderr, flush=True)
    finally:
        if own is not None:
            client.close()
            own.close()

    records = []
    originals = frame.to_dict("records")
    for i, rows in enumerate(results):
        for r in rows or []:
            record = {"row": i + 1}
            record.update({c: originals[i][c] for c in copied})
            record.update(r)
            records.append(record)
    return pd.DataFrame.from_records(records)
