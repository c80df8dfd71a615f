"""Types that can be asked for at run time."""
import inspect
import typing

import pytest
import qk7

FUNCTIONS = [
    (name, function)
    for owner in (qk7, qk7.Bitmap, qk7.Calibrator)
    for name, function in inspect.getmembers(owner, lambda member: inspect.isroutine(member))
    if (name == "__init__" or not name.startswith("_")) and hasattr(function, "__annotations__")
]


@pytest.mark.parametrize("name, function", FUNCTIONS)
def test_types_of_each_function_can_be_resolved(name, function):
    hints = typing.get_type_hints(function)
    parameters = [each for each in inspect.signature(function).parameters if each not in ("self", "cls")]
    assert sorted(hints) == sorted([*parameters, "return"]), name


def test_types_of_blocks_can_be_used_in_other_modules():
    def corrected(capture: qk7.BlockLike, out: qk7.WritableBlock) -> None: ...

    hints = typing.get_type_hints(corrected)
    assert qk7.Bitmap in typing.get_args(hints["capture"])
    assert bytes in typing.get_args(hints["capture"])
    assert bytes not in typing.get_args(hints["out"])
