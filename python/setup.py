"""Builds the extension with the project's own CMake build (the library, the
front-end layer and the pybind11 module) and puts it, with a copy of the
library, into the package. Needs the Debian packages `make python` installs;
nothing is fetched: install with `pip install --no-build-isolation ./python`."""
import os
import shutil
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parent.parent


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        build = Path(self.build_temp).resolve() / "cmake"
        jobs = str(os.cpu_count() or 2)
        subprocess.check_call(["cmake", "-S", str(ROOT), "-B", str(build), "-DCMAKE_BUILD_TYPE=Release",
                               "-DSONOLEX_TESTS=OFF", "-DSONOLEX_BENCH=OFF", "-DSONOLEX_PYTHON=ON",
                               f"-DPython3_EXECUTABLE={sys.executable}"])
        subprocess.check_call(["cmake", "--build", str(build), "--target", "python", "-j", jobs])
        target = Path(self.get_ext_fullpath(ext.name)).resolve().parent
        target.mkdir(parents=True, exist_ok=True)
        for built in (build / "python" / "sonolex").iterdir():
            if built.suffix != ".py":
                shutil.copy2(built, target / built.name)


setup(ext_modules=[Extension("sonolex._core", sources=[])], cmdclass={"build_ext": CMakeBuild})
