import os
import subprocess

import numpy as np
import pytest

import mavprotobuf as mav


def test_sample_file_round_trips_and_matches_the_tool(tool, sample, tmp_path):
    wire = open(sample, "rb").read()
    tree = mav.load(sample)
    assert mav.dumps(tree) == wire
    printed = subprocess.run([tool, "json", sample], check=True, capture_output=True, text=True)
    assert mav.to_json(tree) == printed.stdout
    assert mav.dumps(mav.from_json(printed.stdout)) == wire
    with open(sample, "rb") as file:
        assert mav.dumps(mav.load(file)) == wire


def test_dump_is_atomic_and_keeps_the_mode(tmp_path):
    target = tmp_path / "tree.mav"
    mav.dump({"a": 1.0}, target)
    os.chmod(target, 0o600)
    mav.dump({"a": 2.0}, target)
    assert mav.load(target) == {"a": 2.0} and (os.stat(target).st_mode & 0o777) == 0o600
    with pytest.raises(TypeError):
        mav.dump({"a": object()}, tmp_path / "never.mav")
    with pytest.raises(TypeError):
        mav.write_records(tmp_path / "never.mavs", [{"a": 1}, {"b": object()}])
    assert sorted(os.listdir(tmp_path)) == ["tree.mav"]


def test_record_files_go_both_ways_with_the_tool(tool, tmp_path):
    trees = [{"frame": np.full((2, 2), n, dtype="uint16"), "n": n} for n in range(3)] + [None]
    records = tmp_path / "records.mav"
    mav.write_records(records, trees)
    lines = subprocess.run([tool, "json", "--delimited", str(records)], check=True,
                           capture_output=True, text=True).stdout
    assert lines.splitlines() == [mav.to_json(tree, pretty=False).rstrip("\n") for tree in trees]
    (tmp_path / "records.jsonl").write_text(lines)
    subprocess.run([tool, "encode", "--delimited", str(tmp_path / "records.jsonl"), "-o",
                    str(tmp_path / "again.mav")], check=True)
    back = list(mav.iter_records(tmp_path / "again.mav"))
    assert [mav.dumps(tree) for tree in back] == [mav.dumps(tree) for tree in trees]
    (tmp_path / "cut.mav").write_bytes(records.read_bytes()[:-3])
    with pytest.raises(mav.DecodeError, match="record 2"):
        list(mav.iter_records(tmp_path / "cut.mav"))


def test_dask_reads_many_record_files_on_a_local_cluster(tmp_path):
    distributed = pytest.importorskip("distributed")
    import mavprotobuf.dask
    rng = np.random.default_rng(1)
    expected = []
    for part in range(3):
        frames = [rng.random((8, 8)) for _ in range(4)]
        expected += [frame.mean() for frame in frames]
        mav.write_records(tmp_path / f"capture-{part}.mav", [{"frame": f} for f in frames])
    with distributed.Client(processes=False, n_workers=1, threads_per_worker=2,
                            dashboard_address=None):
        bag = mavprotobuf.dask.read_records(str(tmp_path / "capture-*.mav"))
        assert bag.npartitions == 3
        means = bag.map(lambda tree: float(tree["frame"].mean())).compute()
    assert means == pytest.approx(expected)
