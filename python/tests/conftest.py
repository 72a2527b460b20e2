import os
import shutil

import pytest


@pytest.fixture
def tool():
    path = os.environ.get("MAV_TOOL") or shutil.which("mav")
    if not path:
        pytest.skip("the mav tool is not built")
    return path


@pytest.fixture
def sample():
    return os.environ.get("MAV_SAMPLE", os.path.join(os.path.dirname(__file__), "..", "..",
                                                     "examples", "data", "detector-frame.mav"))
