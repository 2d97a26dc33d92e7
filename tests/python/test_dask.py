"""dask DataFrames on two local workers: scripts/test-python."""
import gzip
import warnings

import pandas
import pytest

import mpuevent

pytest.importorskip("dask")
distributed = pytest.importorskip("distributed")


@pytest.fixture(scope="module")
def client():
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            workers = client.run(warnings.simplefilter, "ignore")
            assert len(workers) == 2
            yield client


@pytest.mark.filterwarnings("ignore::mpuevent.DamageWarning")
def test_parts_are_the_whole(client, sample, damaged):
    import mpuevent.dask

    packed = sample.with_name("dask.gz")
    packed.write_bytes(gzip.compress(sample.read_bytes()))
    paths = [str(path) for path in (damaged, packed, sample)]
    parts = mpuevent.dask.frame(paths, split="100kB", epoch=0)
    assert parts.npartitions > 20
    whole = mpuevent.frame(paths, epoch=0)
    assert parts.dtypes.map(str).equals(whole.dtypes.map(str))
    computed = parts.compute()
    pandas.testing.assert_frame_equal(computed.reset_index(drop=True), whole)
    counts = parts[parts.eventType == 3].source.value_counts().compute()
    assert counts.to_dict() == whole[whole.eventType == 3].source.value_counts().to_dict()


def test_errors(client, tmp_path):
    import mpuevent.dask

    with pytest.raises(FileNotFoundError):
        mpuevent.dask.frame(tmp_path / "missing")
    with pytest.raises(ValueError):
        mpuevent.dask.frame([], split=0)
    assert len(mpuevent.dask.frame([]).compute()) == 0
