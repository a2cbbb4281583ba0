#!/usr/bin/env python3
"""The import and export comparison against sqlite3 as one Markdown table with ratios, from one run of
cardiolith_bench_interop (Google Benchmark's JSON), and the peak memory of importing a large health-app
export, made up here, in a process of its own."""

import argparse
import json
import os
import resource
import subprocess
import tempfile

PAIRS = [
    ("import of a 100,000-row CSV into an empty log", "ToolImportCsv", "SqliteImportCsv", 2.0),
    ("export of 100,000 readings as CSV", "ToolExportCsv", "SqliteExportCsv", 1.0),
]

HEADER = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE HealthData [
<!ELEMENT HealthData (ExportDate?,Record*,Correlation*)>
<!ATTLIST HealthData locale CDATA #REQUIRED>
]>
<HealthData locale="en_US">
"""


def fastest(results):
    times = {}
    for run in results["benchmarks"]:
        if run.get("run_type", "iteration") != "iteration":
            continue
        name = run["name"].split("/")[0]
        times[name] = min(times.get(name, float("inf")), run["real_time"])
    return times


def write_health_export(path, size):
    """Heart rates every few minutes and a blood pressure, with its loose copies, every 100th record, until
    the file holds `size` bytes. Returns the count of blood pressures."""
    pressures = 0
    with open(path, "w") as out:
        out.write(HEADER)
        minute = 0
        while out.tell() < size:
            lines = []
            for _ in range(100):
                minute += 3
                day, rest = divmod(minute, 1440)
                stamp = f"{2000 + day // 365:04d}-{day % 365 // 31 + 1:02d}-{day % 31 % 28 + 1:02d} " \
                        f"{rest // 60:02d}:{rest % 60:02d}:00 +0100"
                lines.append(f'<Record type="HKQuantityTypeIdentifierHeartRate" sourceName="Watch" '
                             f'unit="count/min" creationDate="{stamp}" startDate="{stamp}" endDate="{stamp}" '
                             f'value="{60 + minute % 40}"/>\n')
            lines.append(f'<Correlation type="HKCorrelationTypeIdentifierBloodPressure" startDate="{stamp}" '
                         f'endDate="{stamp}">\n'
                         f'<Record type="HKQuantityTypeIdentifierBloodPressureSystolic" unit="mmHg" '
                         f'startDate="{stamp}" endDate="{stamp}" value="{110 + minute % 40}"/>\n'
                         f'<Record type="HKQuantityTypeIdentifierBloodPressureDiastolic" unit="mmHg" '
                         f'startDate="{stamp}" endDate="{stamp}" value="{70 + minute % 20}"/>\n'
                         f'</Correlation>\n')
            pressures += 1
            out.write("".join(lines))
        out.write("</HealthData>\n")
    return pressures


def health_import_memory(tool, size):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "export.xml")
        pressures = write_health_export(path, size)
        real_size = os.path.getsize(path)
        subprocess.run([tool, "import", path, "--data-dir", os.path.join(folder, "log")], check=True,
                       stdout=subprocess.DEVNULL)
        peak_kib = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
        return real_size, pressures, peak_kib


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("results", help="cardiolith_bench_interop's JSON output")
    parser.add_argument("--tool", required=True, help="the cardiolith executable")
    parser.add_argument("--health-bytes", type=int, default=1_000_000_000)
    arguments = parser.parse_args()
    with open(arguments.results) as file:
        times = fastest(json.load(file))

    print("| measurement (one whole process each) | cardiolith | sqlite3 shell | ratio | goal |")
    print("|---|---:|---:|---:|---:|")
    for label, ours, theirs, goal in PAIRS:
        ratio = times[ours] / times[theirs]
        verdict = "met" if ratio <= goal else "missed"
        print(f"| {label} | {times[ours]:.0f} ms | {times[theirs]:.0f} ms | {ratio:.2f}x | "
              f"<= {goal:g}x ({verdict}) |")

    size, pressures, peak_kib = health_import_memory(arguments.tool, arguments.health_bytes)
    print()
    print(f"Import of a made-up health-app export.xml of {size / 1e9:.2f} GB ({pressures:,} blood pressures "
          f"among {pressures * 100:,} heart rates): peak resident memory {peak_kib / 1024:.0f} MiB.")


if __name__ == "__main__":
    main()
