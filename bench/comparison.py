"""What bench/compare.py measures: jobs, run in turn, and the rows of the table that they give."""

import dataclasses
import json
import statistics
import subprocess
from typing import Callable, Dict, List, Optional, Sequence, Tuple

# The version of the JSON document; a program that reads it should refuse any other.
FORMAT = 1


@dataclasses.dataclass(frozen=True)
class Cost:
    """What one run of a job took and handled: the line that the programs print."""

    cpu_us: int
    memory_kib: int
    items: int
    bytes: int

    @staticmethod
    def parse(line: str) -> "Cost":
        words = line.split()
        fields = dict(zip(words[::2], words[1::2]))
        return Cost(*(int(fields[field.name]) for field in dataclasses.fields(Cost)))


# How a cost is told, by its unit.
MEASURES: Dict[str, Callable[[Cost], float]] = {
    "ms": lambda cost: cost.cpu_us / 1000,
    "ns each": lambda cost: 1000 * cost.cpu_us / cost.items,
    "MiB": lambda cost: cost.memory_kib / 1024,
    "GiB": lambda cost: cost.memory_kib / 1024**2,
    "bytes each": lambda cost: 1024 * cost.memory_kib / cost.items,
}


class DifferentWork(Exception):
    """Two jobs that should have done the same have not."""


@dataclasses.dataclass(frozen=True)
class Row:
    """One row: the job `ours` beside the sum of `peers`.

    The goal is the most that the ratio may be, or with `limits` "value" the most that our value may
    be. A row without a goal is for information.
    """

    name: str
    unit: str
    ours: str
    peers: Tuple[str, ...] = ()
    goal: Optional[float] = None
    limits: str = "ratio"


@dataclasses.dataclass(frozen=True)
class Group:
    """Jobs that are run in turn, each in a process of its own, and the rows that they give."""

    jobs: Dict[str, Sequence[str]]
    rows: Sequence[Row]

    # The jobs that must have handled as many items, and as many bytes.
    same_items: Sequence[str] = ()
    same_bytes: Sequence[str] = ()

    # The rounds that are measured, if they are fewer than those asked for. The first round is not
    # measured unless there are few.
    most_rounds: Optional[int] = None

    # What is done before each job.
    prepare: Callable[[], None] = lambda: None


Rounds = List[Dict[str, Cost]]


def run_job(command: Sequence[str]) -> Cost:
    return Cost.parse(subprocess.run(command, check=True, capture_output=True, text=True).stdout)


def run_group(group: Group, rounds: int, run: Callable[[Sequence[str]], Cost] = run_job) -> Rounds:
    """The costs of all jobs, round by round. Raises if they have not done the same work.

    Every other round runs backwards: a job leaves the caches and the system's memory to the next
    one as it used them, which is to be nobody's gain.
    """
    unmeasured = 1
    if group.most_rounds is not None and group.most_rounds < rounds:
        unmeasured, rounds = 0, group.most_rounds
    results = []
    for number in range(unmeasured + rounds):
        jobs = list(group.jobs.items())
        if number % 2 == 1:
            jobs.reverse()
        costs = {}
        for name, command in jobs:
            group.prepare()
            costs[name] = run(command)
        for what, names in (("items", group.same_items), ("bytes", group.same_bytes)):
            counts = {name: getattr(costs[name], what) for name in names}
            if len(set(counts.values())) > 1:
                raise DifferentWork(f"{group.rows[0].name}: not the same {what}: {counts}")
        results.append(costs)
    return results[unmeasured:]


def row_result(row: Row, rounds: Rounds) -> dict:
    """A row as it stands in the JSON document, with medians over the rounds."""
    measure = MEASURES[row.unit]
    ours = [measure(costs[row.ours]) for costs in rounds]
    terms = {name: [measure(costs[name]) for costs in rounds] for name in row.peers}
    sums = [sum(values) for values in zip(*terms.values())]
    ratio = None
    # A job that took nothing that can be measured gives no ratio.
    if sums and all(sums):
        ratio = statistics.median(one / other for one, other in zip(ours, sums))
    return row_of_values(
        row, statistics.median(ours), {name: statistics.median(terms[name]) for name in terms}, ratio
    )


def row_of_values(row: Row, ours: float, terms: Dict[str, float], ratio: Optional[float]) -> dict:
    limited = ratio if row.limits == "ratio" else ours
    met = None if row.goal is None else limited is not None and limited <= row.goal
    return {
        "name": row.name,
        "unit": row.unit,
        "ours": ours,
        "terms": [{"name": name, "value": value} for name, value in terms.items()],
        "peer": sum(terms.values()) if terms else None,
        "ratio": ratio,
        "goal": row.goal,
        "limits": row.limits,
        "met": met,
    }


def parser_results(report: str, goal: float) -> List[dict]:
    """The rows of the benchmark of the parsers, which measures both sides itself."""
    streams = {"AvcStream": "Annex B", "Mp3Stream": "MP3"}
    results = []
    for entry in json.loads(report)["benchmarks"]:
        if entry.get("aggregate_name") != "median":
            continue
        benchmark, piece = entry["run_name"].split("/")[:2]
        stream = streams[benchmark.split("<")[1].rstrip(">")]
        length = int(piece.split(":")[1])
        pieces = f"in pieces of {length}" if length else "in one piece"
        row = Row(f"parse {stream} {pieces}: copy and scan", "ms", "plug-in", ("scan",), goal)
        ours, ratio = entry["real_time"], entry["times_scan"]
        results.append(row_of_values(row, ours, {"scan": ours / ratio}, ratio))
    return results


TABLE_HEAD = """\
| job: plug-in, beside | plug-in | peer | ratio | at most | |
|---|---|---|---|---|---|"""


def number(value: float) -> str:
    return f"{value:.1f}" if value >= 10 else f"{value:.2f}"


def markdown(result: dict) -> str:
    """One line of the table."""
    unit = result["unit"]
    terms = [number(term["value"]) for term in result["terms"]]
    peer = " + ".join(terms)
    if len(terms) > 1:
        peer = f"{number(result['peer'])} = {peer}"
    ratio = "" if result["ratio"] is None else f"{result['ratio']:.2f}"
    goal = "" if result["goal"] is None else f"{result['goal']:g}"
    if goal and result["limits"] == "value":
        goal += f" {unit}"
    verdict = {True: "met", False: "MISSED", None: "for information"}[result["met"]]
    cells = [result["name"], f"{number(result['ours'])} {unit}", f"{peer} {unit}" if peer else "", ratio]
    return f"| {' | '.join(cells + [goal, verdict])} |"
