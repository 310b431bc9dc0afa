"""What scripts/lib/bench_report.py makes of the results of benchmark programs."""

import json
import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SCRIPT = os.path.join(ROOT, "scripts", "lib", "bench_report.py")
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(SCRIPT))

import bench_report  # noqa: E402


def run_of(name, time, repetition=0, family=0, **more):
    """One run as Google Benchmark writes it"""
    return {
        "name": name,
        "run_name": name,
        "run_type": "iteration",
        "family_index": family,
        "repetition_index": repetition,
        "cpu_time": time,
        "real_time": time * 10,
        "time_unit": "ns",
        **more,
    }


def cases_of(*runs):
    return bench_report.read_results([{"benchmarks": list(runs)}])[0]


class Reading(unittest.TestCase):
    def test_the_order_is_that_of_registration(self):
        cases = cases_of(run_of("s/b/ours", 1, family=1), run_of("s/a/ours", 1, family=0))
        self.assertEqual(["a", "b"], [case.name for case in cases])

    def test_aggregates_do_not_count(self):
        cases = cases_of(
            run_of("s/a/ours", 1), run_of("s/a/ours", 99, 1, run_type="aggregate")
        )
        self.assertEqual(1e-9, cases[0].median("ours"))

    def test_a_name_of_fewer_than_three_parts_is_no_case(self):
        self.assertEqual([], cases_of(run_of("BM_Something/8", 1)))

    def test_one_thread_is_measured_in_processor_time(self):
        self.assertEqual(5e-9, cases_of(run_of("s/a/ours", 5))[0].median("ours"))

    def test_real_and_manual_time_are_what_the_clock_says(self):
        for option in ("real_time/threads:2", "manual_time"):
            case = cases_of(run_of("s/a/ours/" + option, 5))[0]
            self.assertAlmostEqual(50, case.median("ours") * 1e9)

    def test_bytes_take_the_place_of_time(self):
        case = cases_of(run_of("s/a/ours", 5, bytes=170.5))[0]
        self.assertEqual("170.5 B", bench_report.figure_text(case, case.median("ours")))

    def test_the_median_is_taken_over_the_repetitions(self):
        case = cases_of(*(run_of("s/a/ours", time, i) for i, time in enumerate([9, 1, 2])))[0]
        self.assertEqual(2e-9, case.median("ours"))


class Ratios(unittest.TestCase):
    def test_are_taken_within_each_repetition_first(self):
        runs = [run_of("s/a/ours", time, i) for i, time in enumerate([10, 100, 30])]
        runs += [run_of("s/a/floor", time, i) for i, time in enumerate([10, 50, 10])]
        self.assertEqual(2, cases_of(*runs)[0].ratio("floor"))

    def test_leave_out_what_only_one_of_the_two_has(self):
        runs = [run_of("s/a/ours", 10, 0), run_of("s/a/ours", 90, 1), run_of("s/a/floor", 5, 0)]
        self.assertEqual(2, cases_of(*runs)[0].ratio("floor"))

    def test_that_are_small_keep_two_digits(self):
        for time, text in ((4321, "4.32 us, 0.0023 x"), (15, "15 ns, 0.67 x")):
            case = cases_of(run_of("s/a/ours", 10), run_of("s/a/floor", time))[0]
            self.assertEqual(text, bench_report.cell(case, "floor", [], []))

    def test_refer_to_the_first_contestant_where_ours_is_not_there(self):
        case = cases_of(run_of("s/a/two", 5, family=0), run_of("s/a/one", 10, family=1))[0]
        self.assertEqual(0.5, case.ratio("one"))


class Limits(unittest.TestCase):
    LIMITS = bench_report.read_limits(
        "# a comment\n"
        "\n"
        "s | hit, * | floor | 1.3 x\n"
        "s | two* | floor | 0.85 x | free cores\n"
        "s | free cores | one | 0.56 x\n"
        "s | kept | ours | 175 B\n"
        "s | told | ours | 2 s\n"
    )

    def verdicts(self, cases, number, contestant):
        found = bench_report.verdicts(cases[number], contestant, self.LIMITS, cases)
        return [verdict for _, verdict in found]

    def test_hold_up_to_the_limit_itself(self):
        for time, verdict in ((130, "holds"), (131, "MISSED")):
            cases = cases_of(run_of("s/hit, a/ours", time), run_of("s/hit, a/floor", 100))
            self.assertEqual([verdict], self.verdicts(cases, 0, "floor"))

    def test_are_for_their_subject_case_and_contestant_only(self):
        names = ("t/hit, a/", "s/miss, a/", "s/hit, a/")
        runs = [run_of(name + who, 1) for name in names for who in ("ours", "other", "floor")]
        cases = cases_of(*runs)
        self.assertEqual([], self.verdicts(cases, 0, "floor"))
        self.assertEqual([], self.verdicts(cases, 1, "floor"))
        self.assertEqual([], self.verdicts(cases, 2, "other"))

    def test_under_a_condition_are_judged_only_where_it_holds(self):
        for cores, verdict in ((50, "MISSED"), (60, "not judged")):
            cases = cases_of(
                run_of("s/two threads/ours", 100, family=0),
                run_of("s/two threads/floor", 100, family=1),
                run_of("s/free cores/two", cores, family=2),
                run_of("s/free cores/one", 100, family=3),
            )
            self.assertEqual([verdict], self.verdicts(cases, 0, "floor"))

    def test_under_a_condition_that_was_not_measured_are_not_judged(self):
        cases = cases_of(run_of("s/two threads/ours", 1), run_of("s/two threads/floor", 100))
        self.assertEqual(["not judged"], self.verdicts(cases, 0, "floor"))

    def test_in_bytes_are_for_our_own_figure(self):
        for size, verdict in ((175, "holds"), (176, "MISSED")):
            cases = cases_of(run_of("s/kept/ours", 1, bytes=size))
            self.assertEqual([verdict], self.verdicts(cases, 0, "ours"))

    def test_in_seconds_are_for_our_own_figure(self):
        for time, verdict in ((2e9, "holds"), (2.1e9, "MISSED")):
            cases = cases_of(run_of("s/told/ours", time))
            self.assertEqual([verdict], self.verdicts(cases, 0, "ours"))

    def test_of_growth_are_for_the_exponent(self):
        limits = bench_report.read_limits("s | get, * | growth | n^1.1\n")
        for time, verdict in ((2.1, "holds"), (2.2, "MISSED")):
            cases = cases_of(run_of("s/get, keys/10", 1), run_of("s/get, keys/20", time))
            text = bench_report.growth_cell(cases[0], limits, cases)
            self.assertIn(f"(at most n^1.1: {verdict})", text)

    def test_that_cannot_be_read_are_an_error(self):
        for line in ("s | a | floor", "s | a | floor | fast", "s | a | floor | 2", "s|a|b|n^2 x"):
            with self.assertRaisesRegex(ValueError, "line 1 is no limit"):
                bench_report.read_limits(line)

    def test_of_the_project_can_be_read(self):
        with open(os.path.join(ROOT, "benchmarks", "limits.txt"), encoding="utf-8") as file:
            self.assertGreater(len(bench_report.read_limits(file.read())), 10)


class Growth(unittest.TestCase):
    RUNS = [run_of(f"growth/get, keys/{size}", size * size, family=size) for size in (4, 8, 2, 16)]

    def test_is_the_power_of_the_size(self):
        self.assertAlmostEqual(2, cases_of(*self.RUNS)[0].exponent())

    def test_is_shown_with_the_smallest_and_the_greatest_size(self):
        cases = cases_of(*self.RUNS)
        self.assertEqual(
            [
                ["case", "from", "to", "grows as"],
                ["get, keys", "2: 4 ns", "16: 256 ns", "n^2.00"],
            ],
            bench_report.table(cases, [], cases),
        )

    def test_cannot_be_seen_at_one_size(self):
        cases = cases_of(self.RUNS[0])
        self.assertEqual("", bench_report.table(cases, [], cases)[1][3])

    def test_is_no_matter_of_cases_with_contestants(self):
        cases = cases_of(*self.RUNS, run_of("growth/other/ours", 1, family=99))
        self.assertEqual("ours", bench_report.table(cases, [], cases)[0][1])


class Program(unittest.TestCase):
    RUNS = [
        run_of("lookup/hit, int/floor", 100, family=1),
        run_of("lookup/hit, int/ours", 120, family=0),
        run_of("lookup/miss/ours", 1500, family=2),
        run_of("lookup/miss/literal", 3000, family=3),
    ]
    TABLE = (
        "lookup\n"
        "\n"
        "case      ours    floor                                 literal\n"
        "hit, int  120 ns  100 ns, 1.20 x (at most 1 x: MISSED)\n"
        "miss      1.5 us                                        3 us, 0.50 x\n"
        "\n"
    )

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = directory.name

    def path(self, name):
        return os.path.join(self.directory, name)

    def file(self, name, text):
        bench_report.write(self.path(name), text)
        return self.path(name)

    def results(self, runs):
        return self.file("results.json", json.dumps({"benchmarks": runs}))

    def run_report(self, *arguments):
        return subprocess.run(
            [sys.executable, "-B", SCRIPT, *arguments], capture_output=True, text=True, check=False
        )

    def test_prints_a_table_and_takes_a_missed_limit_for_no_failure(self):
        limits = self.file("limits.txt", "lookup | hit* | floor | 1 x\n")
        report = self.run_report("--limits", limits, self.results(self.RUNS))
        self.assertEqual((0, self.TABLE, ""), (report.returncode, report.stdout, report.stderr))

    def test_writes_json_and_markdown(self):
        json_file, markdown = self.path("out.json"), self.path("out.md")
        self.run_report("--json", json_file, "--markdown", markdown, self.results(self.RUNS))
        case = bench_report.read_json(json_file)[0]
        self.assertEqual("hit, int", case["case"])
        self.assertEqual(1.2, case["contestants"]["floor"]["ratio"])
        with open(markdown, encoding="utf-8") as file:
            self.assertIn("| hit, int | 120 ns | 100 ns, 1.20 x |  |\n", file.read())

    def test_fails_when_a_benchmark_reports_an_error_and_shows_the_rest(self):
        wrong = run_of("s/a/ours", 1, error_occurred=True, error_message="wrong value")
        report = self.run_report(self.results([*self.RUNS, wrong]))
        self.assertEqual(1, report.returncode)
        self.assertEqual("bench_report: s/a/ours: wrong value\n", report.stderr)
        self.assertIn("hit, int", report.stdout)

    def test_fails_when_nothing_was_measured(self):
        report = self.run_report(self.results([]))
        self.assertEqual((1, "bench_report: nothing was measured\n"),
                         (report.returncode, report.stderr))

    def test_refuses_what_it_cannot_read(self):
        self.assertEqual(2, self.run_report(self.path("missing.json")).returncode)
        self.assertEqual(2, self.run_report(self.file("broken.json", "{")).returncode)


if __name__ == "__main__":
    unittest.main()
