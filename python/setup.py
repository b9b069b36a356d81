"""Builds the extension through the repository's CMake build, the one that
`make python` runs, and puts it in the wheel beside the package's modules.

The build tree is $SEQLATTICE_BUILD_DIR, by default build/release of the
repository, so that after `make python` the install only copies.
"""

import os
import pathlib
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

REPO = pathlib.Path(__file__).resolve().parent.parent


class CMakeBuild(build_ext):
    def build_extension(self, ext: Extension) -> None:
        if sys.base_prefix != "/usr":
            raise SystemExit(
                "seqlattice is built for Debian's /usr/bin/python3: run pip "
                f"with it or in a venv made from it, not {sys.executable}")
        build = pathlib.Path(os.environ.get("SEQLATTICE_BUILD_DIR",
                                            REPO / "build" / "release"))
        subprocess.check_call([
            "cmake", "-S", str(REPO), "-B", str(build), "-G", "Ninja",
            "-DCMAKE_BUILD_TYPE=Release", "-DSEQLATTICE_BUILD_PYTHON=ON",
            "-DSEQLATTICE_PYTHON=/usr/bin/python3"])
        subprocess.check_call(["cmake", "--build", str(build), "--target",
                               "seqlattice_python", "-j", "2"])
        built = next((build / "python" / "seqlattice").glob("_seqlattice.*"))
        target = pathlib.Path(self.get_ext_fullpath(ext.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(built, target)


setup(ext_modules=[Extension("seqlattice._seqlattice", sources=[])],
      cmdclass={"build_ext": CMakeBuild})
