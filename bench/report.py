#!/usr/bin/env python3
"""Turns one run of the benchmark program (Google Benchmark's JSON) and the memory measurements into one
Markdown table: every measurement, then the ratios against their targets, computed from that same run."""

import argparse
import json
import os
import platform

SIZES = (1_000, 10_000, 100_000, 1_000_000)
RATIO_SIZES = (100_000, 1_000_000)

NAMES = {
    "ReadFileBytes": "reading the file's bytes (floor)",
    "WriteFileBytes": "writing the file's bytes (floor)",
    "SimdjsonDecode": "simdjson on-demand strict reader (floor)",
    "NlohmannDecode": "nlohmann/json reader",
    "LibraryDecode": "`json::decode<Readings>`",
    "BareEncode": "`std::to_chars` writer (floor)",
    "NlohmannEncode": "nlohmann/json writer",
    "LibraryEncode": "`json::encode`",
    "StoreSave": "`ReadingsStore::save`",
    "StoreLoad": "`ReadingsStore::load`",
    "WalkReadings": "one pass over every reading (floor)",
    "SummariseWeek": "`summarise`, last 7 days",
    "SummariseAll": "`summarise`, whole log",
    "HomeReportWeek": "`HomeMonitoringAnalyzer::analyse`, last 7 days",
    "FilteredAll": "`filtered`, whole log",
    "InLineFormat": "`inLineFormat`, every reading",
    "TagsInsert": "`TagsManager::insert`, list of 1,000",
    "ClassifyPairs": "`BloodPressureAnalyzer::result`",
}
ORDER = list(NAMES)
LIBRARY = ["LibraryDecode", "LibraryEncode", "StoreSave", "StoreLoad", "SummariseWeek", "SummariseAll",
           "HomeReportWeek", "FilteredAll", "InLineFormat"]
# How the floors themselves grow from 10,000 to 1,000,000 readings: what the machine's memory system
# costs any code at that size, shown next to the library's growth.
FLOORS = ["ReadFileBytes", "WriteFileBytes", "SimdjsonDecode", "BareEncode", "WalkReadings"]


def load_results(paths):
    """{(family, size): run} for the iteration runs of every file; size is None for benchmarks without one.
    Of repeated runs the fastest is kept: on a shared machine the others carry more of the other programs'
    noise. The context is the first file's."""
    documents = []
    for path in paths:
        with open(path) as file:
            documents.append(json.load(file))
    runs = {}
    for run in (run for document in documents for run in document["benchmarks"]):
        if run.get("run_type", "iteration") != "iteration":
            continue
        parts = run["name"].split("/")
        size = int(parts[1]) if len(parts) > 1 and parts[1].isdigit() else None
        key = (parts[0], size)
        if key not in runs or run.get("items_per_second", 0) > runs[key].get("items_per_second", 0):
            runs[key] = run
    return (documents[0].get("context", {}) if documents else {}), runs


def ns_per_item(run):
    if run is None or run.get("error_occurred") or not run.get("items_per_second"):
        return None
    return 1e9 / run["items_per_second"]


def count(value):
    return f"{value:,}" if value is not None else ""


def duration(ns):
    if ns is None:
        return "n/a"
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= scale:
            return f"{ns / scale:.3g} {unit}"
    return f"{ns:.3g} ns"


def rate(per_second, unit):
    for prefix, scale in (("G", 1e9), ("M", 1e6), ("k", 1e3)):
        if per_second >= scale:
            return f"{per_second / scale:.3g} {prefix}{unit}/s"
    return f"{per_second:.3g} {unit}/s"


def allocations(run):
    for key, suffix in (("allocs_per_reading", "/reading"), ("allocs_per_call", "/call")):
        if key in run:
            return f"{run[key]:.3g}{suffix}"
    return ""


def measurement_row(family, size, run):
    if run.get("error_occurred"):
        return [NAMES[family], count(size), "failed: " + run.get("error_message", ""), "", "", "", "", ""]
    per_item = ns_per_item(run)
    throughput = [rate(run["items_per_second"], "")] if run.get("items_per_second") else []
    if run.get("bytes_per_second"):
        throughput.append(rate(run["bytes_per_second"], "B"))
    unit = "call" if family in ("TagsInsert", "ClassifyPairs") else "reading"
    return [NAMES[family], count(size), f"{duration(per_item)}/{unit}", ", ".join(throughput),
            allocations(run), "", "", ""]


def verdict(value, target, at_most, strict):
    if value is None:
        return "n/a"
    if at_most:
        met = value < target if strict else value <= target
    else:
        met = value >= target
    return "met" if met else "**MISSED**"


def ratio_row(label, size, value, target, at_most, unit="×", strict=False):
    bound = ("< " if strict else "≤ " if at_most else "≥ ") + f"{target:g}{unit}"
    shown = f"{value:.2f}{unit}" if value is not None else "n/a"
    return [label, count(size), "", "", "", shown, bound, verdict(value, target, at_most, strict)]


def total(*values):
    return None if None in values else sum(values)


def ratio_text(value):
    return f"{value:.2f}×" if value is not None else "n/a"


def quotient(a, b):
    return a / b if a is not None and b is not None and b > 0 else None


def time_of(runs):
    return lambda family, size: ns_per_item(runs.get((family, size)))


def speed_rows(runs, size, note=""):
    """The decode and encode targets at one size: against the floors and against nlohmann/json."""
    time = time_of(runs)
    return [
        ratio_row(f"decode time vs simdjson reader{note}", size,
                  quotient(time("LibraryDecode", size), time("SimdjsonDecode", size)), 1.5, True),
        ratio_row(f"decode speed-up over nlohmann/json{note}", size,
                  quotient(time("NlohmannDecode", size), time("LibraryDecode", size)), 8, False),
        ratio_row(f"encode time vs `std::to_chars` writer{note}", size,
                  quotient(time("LibraryEncode", size), time("BareEncode", size)), 1.3, True),
        ratio_row(f"encode speed-up over nlohmann/json{note}", size,
                  quotient(time("NlohmannEncode", size), time("LibraryEncode", size)), 8, False),
    ]


def growth_rows(runs, note=""):
    """Time per reading at 1,000,000 against 10,000: the library's (with the target) and the floors'."""
    time = time_of(runs)
    growth = lambda family: quotient(time(family, 1_000_000), time(family, 10_000))
    rows = [ratio_row(f"time/reading at 1,000,000 vs 10,000{note}: {NAMES[family]}", None, growth(family), 1.5, True)
            for family in LIBRARY if (family, 1_000_000) in runs]
    rows += [[f"time/reading at 1,000,000 vs 10,000{note}: {NAMES[family]}", "", "", "", "", ratio_text(growth(family)),
              "", ""] for family in FLOORS if (family, 1_000_000) in runs]
    return rows


def ratio_rows(runs, memory, memory_reference):
    rows = []
    time = time_of(runs)
    for size in RATIO_SIZES:
        rows.extend(speed_rows(runs, size))
        rows.append([f"`ReadingsStore::load` time vs file read + simdjson reader (floors)", count(size), "", "", "",
                     ratio_text(quotient(time("StoreLoad", size),
                                         total(time("ReadFileBytes", size), time("SimdjsonDecode", size)))), "", ""])
        rows.append([f"`ReadingsStore::save` time vs `std::to_chars` writer + file write (floors)", count(size), "", "",
                     "", ratio_text(quotient(time("StoreSave", size),
                                             total(time("BareEncode", size), time("WriteFileBytes", size)))), "", ""])
        rows.append(ratio_row("home-monitoring report of the last week vs `summarise` of the same week", size,
                              quotient(time("HomeReportWeek", size), time("SummariseWeek", size)), 1.2, True))
    rows.extend(growth_rows(runs))
    if memory:
        peak = memory["peak_rss_kb"] * 1024
        rows.append(ratio_row("peak memory of one `ReadingsStore::load` vs file size", memory["readings"],
                              peak / memory["file_bytes"], 3, True, strict=True))
        detail = f"peak {peak / 2**20:,.0f} MiB, file {memory['file_bytes'] / 2**20:,.0f} MiB, " \
                 f"loaded readings {memory['retained_heap_kb'] / 1024:,.0f} MiB, " \
                 f"before loading {memory['rss_before_kb'] / 1024:,.0f} MiB"
        rows[-1][2] = detail
    if memory_reference:
        peak = memory_reference["peak_rss_kb"] * 1024
        rows.append(["(peak memory of the simdjson reader, for comparison)", count(memory_reference["readings"]),
                     f"peak {peak / 2**20:,.0f} MiB", "", "", f"{peak / memory_reference['file_bytes']:.2f}×",
                     "", ""])
    per_call = {size: runs.get(("SummariseAll", size), {}).get("allocs_per_call") for size in SIZES}
    if per_call[1_000] is not None and per_call[1_000_000] is not None:
        growth = per_call[1_000_000] - per_call[1_000]
        rows.append(ratio_row("`summarise` of the whole log: allocations per call, 1,000,000 vs 1,000 readings",
                              None, growth, 0, True, unit=" more/call"))
        rows[-1][4] = ", ".join(f"{count(size)}: {value:.3g}" for size, value in per_call.items()
                                if value is not None)
    classify = runs.get(("ClassifyPairs", None), {}).get("allocs_per_call")
    rows.append(ratio_row("`BloodPressureAnalyzer::result` allocations", None, classify, 0, True,
                          unit="/call"))
    return rows


def machine(compiler):
    model = "unknown CPU"
    try:
        with open("/proc/cpuinfo") as file:
            for line in file:
                if line.startswith("model name"):
                    model = line.split(":", 1)[1].strip()
                    break
    except OSError:
        pass
    return f"{model}, {os.cpu_count()} logical CPUs, {platform.system()} {platform.release()}, {compiler}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--results", required=True, nargs="+")
    parser.add_argument("--warm-results", nargs="*", help="runs with CARDIOLITH_BENCH_WARM_HEAP=1")
    parser.add_argument("--memory")
    parser.add_argument("--memory-reference")
    parser.add_argument("--compiler", default="unknown compiler")
    parser.add_argument("--build-type", default="unknown")
    arguments = parser.parse_args()

    context, runs = load_results(arguments.results)
    read = lambda path: json.load(open(path)) if path and os.path.getsize(path) else None
    memory, memory_reference = read(arguments.memory), read(arguments.memory_reference)

    header = ["Measurement", "Readings", "Time", "Throughput", "Allocations", "Ratio", "Target", "Verdict"]
    rows = []
    for family in ORDER:
        for size in (None,) + SIZES:
            if (family, size) in runs:
                rows.append(measurement_row(family, size, runs[(family, size)]))
    rows.extend(ratio_rows(runs, memory, memory_reference))
    if arguments.warm_results:
        _, warm = load_results(arguments.warm_results)
        note = ", warm heap"
        for family in ORDER:
            for size in (10_000, 1_000_000):
                if (family, size) in warm:
                    rows.append(measurement_row(family, size, warm[(family, size)]))
                    rows[-1][0] += note
        rows.extend(speed_rows(warm, 1_000_000, note))
        rows.extend(growth_rows(warm, note))

    print(f"Machine: {machine(arguments.compiler)}; {arguments.build_type} build; {context.get('date', '')}")
    print()
    print("| " + " | ".join(header) + " |")
    print("|" + "|".join("---" for _ in header) + "|")
    for row in rows:
        print("| " + " | ".join(row) + " |")
    checks = [f"{key.split('.')[1]} {key.split('.')[0][:-1]}: {value}" for key, value in sorted(context.items())
              if key.startswith(("readers.", "writers."))]
    if checks:
        print()
        print("Same job checked on the 1,000-reading document: " + "; ".join(checks) + ".")


if __name__ == "__main__":
    main()
