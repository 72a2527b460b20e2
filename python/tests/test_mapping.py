import datetime
import gc
import math

import numpy as np
import pytest

import mavprotobuf as mav

NUMERIC = ["float32", "float64", "int8", "int16", "int32", "int64", "uint8", "uint16",
           "uint32", "uint64", "bool", "complex64", "complex128"]


def roundtrip(tree, **options):
    return mav.loads(mav.dumps(tree), **options)


@pytest.mark.parametrize("dtype", NUMERIC + ["datetime64[ns]", "timedelta64[ns]", "object"])
def test_arrays_of_every_kind_rank_and_order(dtype):
    for shape in [(5,), (2, 3), (2, 3, 4), (0,), (3, 0, 2)]:
        size = int(np.prod(shape))
        flat = np.arange(size) % 7 - (0 if dtype.startswith(("uint", "bool")) else 3)
        if dtype == "object":
            flat = np.array([f"s{n}" for n in flat], dtype=object)
        for order in "CF":
            array = np.asarray(flat).astype(dtype).reshape(shape, order=order)
            back = roundtrip({"a": array})["a"]
            assert back.dtype == array.dtype and back.shape == array.shape
            np.testing.assert_array_equal(back, array)
            if len(shape) > 1 and size > 0:
                assert back.flags["F_CONTIGUOUS" if order == "F" else "C_CONTIGUOUS"]


def test_scalars_map_to_python_and_numpy_types():
    when = datetime.datetime(1969, 12, 31, 23, 59, 59, 250000)
    tree = {"f": 2.5, "i": -(2**63), "b": True, "s": "ключ", "c": 1 - 2j, "none": None,
            "f32": np.float32(1.5), "u64": np.uint64(2**64 - 1), "i8": np.int8(-128),
            "c64": np.complex64(1 + 1j), "t": when, "d": datetime.timedelta(days=-1, microseconds=1),
            "t_np": np.datetime64("2024-02-29T12:00:00.123456789", "ns"),
            "t_day": np.datetime64("1900-01-01", "D")}
    back = roundtrip(tree)
    for key in ["f", "i", "b", "s", "c"]:
        assert back[key] == tree[key] and type(back[key]) is type(tree[key])
    assert back["none"] is None
    for key in ["f32", "u64", "i8", "c64"]:
        assert back[key] == tree[key] and back[key].dtype == tree[key].dtype
    assert back["t"] == np.datetime64("1969-12-31T23:59:59.250000000", "ns")
    assert back["d"] == np.timedelta64(-86400 * 10**9 + 1000, "ns")
    assert back["t_np"] == tree["t_np"] and back["t_day"] == np.datetime64("1900-01-01", "ns")
    aware = datetime.datetime(2020, 1, 1, 1, tzinfo=datetime.timezone(datetime.timedelta(hours=1)))
    assert roundtrip(aware) == np.datetime64("2020-01-01T00:00", "ns")


def test_edge_values_survive():
    values = np.array([math.nan, math.inf, -math.inf, -0.0, 5e-324])
    back = roundtrip([values, -0.0, 2**63 - 1, np.uint64(2**64 - 1)])
    np.testing.assert_array_equal(back[0], values)
    assert math.copysign(1, back[0][3]) == -1 and math.copysign(1, back[1]) == -1
    assert back[2] == 2**63 - 1 and back[3] == 2**64 - 1
    assert roundtrip(b"\xff\xfe") == b"\xff\xfe" and roundtrip("é") == "é"


def node(variant):
    """A tree that is one value: PropertyNode{value_type: <variant bytes>}."""
    return bytes([0x1A, len(variant)]) + variant


def varint(number):
    out = bytearray()
    while number >= 0x80:
        out.append(number & 0x7F | 0x80)
        number >>= 7
    return bytes(out + bytes([number]))


def field(tag, payload):
    return bytes([tag]) + varint(len(payload)) + payload


FAR_FUTURE = field(0x0A, b"\x82\x01" + varint(len(b"\x08" + varint(10**12))) + b"\x08" + varint(10**12))


@pytest.mark.parametrize("variant, kind, data", [
    (field(0x0A, b"\x20" + varint(300)), "int8", None),                      # 300 as int8
    (field(0x0A, b"\x19" + bytes(8)) + field(0x1A, b"unit"), "float64", 0.0),  # a tag
    (field(0x12, field(0x12, field(0x0A, bytes(8)))), "float32", None),        # no dimensions
    (field(0x12, field(0x12, field(0x0A, bytes(8))) + b"\x82\x01\x01\x03"), "float32", None),
    (b"", None, None),                                                         # no member
    (FAR_FUTURE, "datetime64", None),                                          # past datetime64[ns]
])
def test_what_the_plain_mapping_cannot_say_comes_back_as_a_value(variant, kind, data):
    wire = node(variant)
    value = mav.loads(wire)
    assert isinstance(value, mav.Value)
    assert value.kind == kind and value.data == data
    assert mav.dumps(value) == wire
    assert mav.Value.from_bytes(value.to_bytes()) == value


def test_value_with_a_tag_round_trips_exactly():
    tagged = mav.Value(np.arange(4, dtype="uint16").reshape(2, 2), wellknowntype="pixels")
    wire = mav.dumps({"frame": tagged})
    back = mav.loads(wire)["frame"]
    assert back == tagged and back.wellknowntype == b"pixels" and back.kind == "uint16"
    assert back.dimensions == (2, 2) and back.order == b"C"
    np.testing.assert_array_equal(back.data, [[0, 1], [2, 3]])
    assert mav.dumps(mav.loads(wire)) == wire


def test_zero_copy_arrays_outlive_their_bytes_and_tree():
    frame = np.arange(1 << 16, dtype="float64").reshape(256, 256)
    wire = bytearray(mav.dumps({"frame": frame, "n": 1}))
    tree = mav.loads(wire)
    view = tree["frame"]
    assert not view.flags["WRITEABLE"]
    with pytest.raises(ValueError):
        view[0, 0] = 1
    del tree, wire
    gc.collect()
    np.testing.assert_array_equal(view, frame)
    assert mav.loads(mav.dumps(frame), copy=True).flags["WRITEABLE"]


def test_refusals_name_the_path():
    with pytest.raises(TypeError, match=r"settings\.gain\[1\]"):
        mav.dumps({"settings": {"gain": [1, object()]}})
    with pytest.raises(OverflowError, match=r"frame\[0\]"):
        mav.dumps({"frame": [2**64]})
    with pytest.raises(TypeError, match="map key"):
        mav.dumps({1: 2})
    with pytest.raises(mav.DecodeError) as error:
        mav.loads(b"\x0a\x05\x0a")
    assert isinstance(error.value, ValueError)
    with pytest.raises(ValueError, match="NaT"):
        mav.dumps(np.array(["NaT"], dtype="datetime64[ns]"))
