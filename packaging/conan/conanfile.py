"""Builds the tree that this recipe lies in: conan create packaging/conan -s compiler.cppstd=20 --build=missing"""

import os
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir


class ZoConan(ConanFile):
    name = "zo"
    description = "One reflective view of an application's data: names, values, documents, views"
    topics = ("reflection", "serialization", "xml", "data-model")
    # There is one process-wide default registry, so a program holds the library once.
    package_type = "shared-library"
    settings = "os", "arch", "compiler", "build_type"

    @property
    def _tree(self):
        return os.path.join(self.recipe_folder, os.pardir, os.pardir)

    def set_version(self):
        # The version stands in one place.
        text = load(self, os.path.join(self._tree, "CMakeLists.txt"))
        self.version = re.search(r"project\(zo VERSION ([0-9.]+)", text).group(1)

    def export_sources(self):
        for folder in ("Common", "support", "cmake", "packaging"):
            copy(self, folder + "/*", src=self._tree, dst=self.export_sources_folder)
        copy(self, "CMakeLists.txt", src=self._tree, dst=self.export_sources_folder)

    def requirements(self):
        # Not seen through the library: nothing of it is exported, and no public header includes it.
        self.requires("expat/[>=2.5.0 <3]", headers=True, libs=True, transitive_headers=False, transitive_libs=False)

    def validate(self):
        if self.settings.os != "Linux":
            raise ConanInvalidConfiguration("zo is built for Linux only")
        check_min_cppstd(self, 20)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        for part in ("TESTS", "EXAMPLES", "BENCH"):
            toolchain.cache_variables["ZO_BUILD_" + part] = False
        toolchain.cache_variables["ZO_INSTALL"] = True
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        # Made from package_info below, for every generator alike.
        rmdir(self, os.path.join(self.package_folder, "lib", "cmake"))
        rmdir(self, os.path.join(self.package_folder, "lib", "pkgconfig"))

    def package_info(self):
        self.cpp_info.libs = ["zo"]
        self.cpp_info.includedirs = ["include/zo", "include/zo/Common"]
        self.cpp_info.set_property("cmake_file_name", "zo")
        self.cpp_info.set_property("cmake_target_name", "zo::zo")
        self.cpp_info.set_property("pkg_config_name", "zo")
