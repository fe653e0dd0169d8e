"""A few kills at random moments; `./dev kills` makes as many as are wanted."""

import unittest

from kill_run import KillRun


class KillTest(unittest.TestCase):
    def test_files_are_whole_after_every_kill(self):
        seen = KillRun(kills=6, seed=12).walk()
        self.assertEqual(seen["kills"], 6)
        self.assertGreater(seen["data lines"], 6)
        self.assertGreater(seen["images decoded"], 6)


if __name__ == "__main__":
    unittest.main()
