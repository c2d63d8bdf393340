# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Installs into an empty folder, and uses what lies there then."""

import gzip
import os
import pathlib
import subprocess
import tempfile
import unittest


def check(*command, **options):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True,
                          timeout=240, **options)
    assert done.returncode == 0, f"{command}: {done.stdout}{done.stderr}"
    return done.stdout


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="tarvik-")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        check(os.environ["CMAKE"], "--install", os.environ["BUILD"],
              env={**os.environ, "DESTDIR": str(cls.folder / "root")})
        cls.prefix = cls.folder / "root" / os.environ["PREFIX"].lstrip("/")
        check(cls.prefix / "bin/tarvik-demo-data", cls.folder / "demo", "--small")

    def test_programs_and_nothing_else_are_in_the_path(self):
        self.assertEqual(sorted(os.listdir(self.prefix / "bin")),
                         ["tarvik", "tarvik-control-unit-simulator", "tarvik-demo-data", "tarvik-image"])

    def test_the_documentation_lies_where_the_viewer_looks(self):
        pages = self.prefix / "bin/../share/doc/tarvik/html"
        self.assertIn("<h1", (pages / "index.html").read_text())

    def test_the_desktop_understands_its_files(self):
        share = self.prefix / "share"
        check("desktop-file-validate", share / "applications/tarvik.desktop")
        check("update-mime-database", share / "mime")
        globs = (share / "mime/globs2").read_text()
        for ending in ("cbf", "edf", "nxs"):
            self.assertIn(f":*.{ending}\n", globs)
        self.assertTrue((share / "icons/hicolor/scalable/apps/tarvik.svg").is_file())

    def test_each_program_has_a_manual_and_completion(self):
        for program in os.listdir(self.prefix / "bin"):
            page = gzip.decompress((self.prefix / f"share/man/man1/{program}.1.gz").read_bytes()).decode()
            self.assertRegex(page, rf"\.SH SYNOPSIS\n\.nf\n{program.replace('-', '.?-')} ")
            self.assertIn("\\-\\-help", page)
            self.assertTrue((self.prefix / "share/bash-completion/completions" / program).is_file())
        for words, expected in ((["tarvik-image", "con"], "convert"), (["tarvik", "--disable"], "--disableGLSL"),
                                (["tarvik-image", "info", "--pix"], "--pixel"), (["tarvik-demo-data", "--sm"], "--small")):
            offered = check("bash", "-c", f"""PATH={self.prefix}/bin:$PATH
                . {self.prefix}/share/bash-completion/completions/{words[0]}
                COMP_WORDS=({" ".join(words)}) COMP_CWORD={len(words) - 1}
                _tarvik {words[0]}; echo "${{COMPREPLY[@]}}" """, cwd=self.folder)
            self.assertEqual(offered.split(), [expected])

    def test_the_viewer_reads_hdf5_with_the_installed_reader(self):
        master = next(self.folder.glob("demo/**/*_master.h5"))
        viewer = subprocess.Popen([self.prefix / "bin/tarvik", master], text=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        with viewer:
            try:
                said = []
                for line in viewer.stdout:
                    said.append(line)
                    if "TOTAL TIME LOADING IMAGE" in line:
                        break
                else:
                    self.fail("no image was loaded: " + "".join(said))
                readers = {os.readlink(f"/proc/{child}/exe") for child in self.children(viewer.pid)}
                self.assertIn(str(self.prefix / "libexec/tarvik/tarvik-reader"), readers)
                self.assertNotIn("WARNING", "".join(said))
            finally:
                viewer.kill()

    @staticmethod
    def children(pid):
        tasks = pathlib.Path(f"/proc/{pid}/task").iterdir()
        return [int(child) for task in tasks for child in (task / "children").read_text().split()]


if __name__ == "__main__":
    unittest.main()
