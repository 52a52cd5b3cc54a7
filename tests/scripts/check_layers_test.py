"""scripts/check-layers finds what it is there to find: each test makes a small source folder with one fault."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]


class CheckLayers(unittest.TestCase):
    def run_on(self, files, *options):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = pathlib.Path(folder) / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            return subprocess.run([sys.executable, PROJECT / "scripts/check-layers", "--source", folder, *options],
                                  capture_output=True, text=True, check=False)

    def assert_fault(self, files, fault):
        result = self.run_on(files)
        self.assertEqual(result.returncode, 1)
        self.assertIn(fault, result.stderr)

    def test_inward_includes_pass_and_are_told_in_words(self):
        result = self.run_on({
            "component/frame/status.h": "",
            "component/run/run.h": '#include "component/frame/status.h"\n',
            "module/frame/entry.cpp": '#include "component/run/run.h"\n',
        })
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("component/run sees component/frame\n", result.stdout)
        self.assertIn("module/frame sees component/run\n", result.stdout)

    def test_a_folder_may_not_see_one_above_it(self):
        self.assert_fault({
            "component/design/tree.h": '#include <vector>\n#include "component/inference/covariance.h"\n',
            "component/inference/covariance.h": "",
        }, "component/design/tree.h:2: component/design stands below component/inference and may not see it")

    def test_an_inner_ring_may_not_see_an_outer_one(self):
        self.assert_fault({
            "component/run/run.h": '#include "module/frame/driver.h"\n',
            "module/frame/driver.h": "",
        }, "component/run may not see module/frame/driver.h")

    def test_the_embedded_host_sees_the_module_from_its_program_only(self):
        files = {"module/command/specs.h": "", "standalone/cli/plan.cpp": '#include "module/command/specs.h"\n'}
        self.assertEqual(self.run_on(files).returncode, 0)
        self.assert_fault({**files, "standalone/session/run.cpp": '#include "module/command/specs.h"\n'},
                          "standalone/session may not see module/command/specs.h")

    def test_of_the_host_the_component_sees_threads_and_stop_only(self):
        files = {"host/threads.h": "", "host/data.h": "", "component/run/a.h": '#include "host/threads.h"\n'}
        self.assertEqual(self.run_on(files).returncode, 0)
        self.assert_fault({**files, "component/run/b.h": '#include "host/data.h"\n'},
                          "component/run may not see host/data.h")

    def test_an_include_is_written_from_the_source_folder(self):
        self.assert_fault({"host/data.h": "", "host/files.h": '#include "data.h"\n'},
                          'host/files.h:1: "data.h" is not the name of a file from src/')

    def test_no_two_files_share_a_name(self):
        self.assert_fault({"host/session.h": "", "standalone/session/session.h": ""}, "one name for two files")

    def test_a_new_folder_needs_a_place_in_the_order(self):
        self.assert_fault({"component/extra/new.h": ""}, "component/extra has no place in the order")

    def test_the_drawing_leaves_out_what_a_longer_way_says(self):
        drawing = self.run_on({
            "component/frame/status.h": "",
            "component/input/settings.h": '#include "component/frame/status.h"\n',
            "component/run/run.h": '#include "component/input/settings.h"\n#include "component/frame/status.h"\n',
        }, "--dot").stdout
        self.assertIn('"component/run" -> "component/input"', drawing)
        self.assertNotIn('"component/run" -> "component/frame"', drawing)


if __name__ == "__main__":
    unittest.main()
