// Load of `cardiolith serve` on loopback: 50 clients at once each add 20 readings through the API, then
// the log must hold exactly 1,000. Prints the 50th and 99th percentile latency of an add, against a
// baseline measured in the same run: `cardiolith add` run as a command, one after another, on a log of the
// same size. Bounded: 1,000 requests to 127.0.0.1 and 20 commands, then it stops by itself.
// Usage: node bench/serve_load.js path/to/cardiolith
"use strict";

const { execFileSync } = require("node:child_process");
const { performance } = require("node:perf_hooks");
const path = require("node:path");
const { startServer, rawRequest } = require(path.join(__dirname, "../tests/web/server.js"));

const clients = 50;
const perClient = 20;

function percentile(sorted, p) {
  return sorted[Math.min(sorted.length - 1, Math.ceil((p / 100) * sorted.length) - 1)];
}

async function client(server, index, latencies) {
  for (let i = 0; i < perClient; i++) {
    const body = JSON.stringify({
      systolic: 110 + (i % 20),
      diastolic: 70 + (index % 10),
      pulse: 60 + (i % 15),
      at: `2026-01-${String(1 + (i % 28)).padStart(2, "0")} ${String(index % 24).padStart(2, "0")}:${String(i).padStart(2, "0")}`,
      note: `client ${index} reading ${i}`,
    });
    const started = performance.now();
    const answer = await rawRequest(server.port, {
      method: "POST",
      path: "/api/readings",
      headers: { Host: `127.0.0.1:${server.port}`, "X-Cardiolith-Token": server.token, "Content-Type": "application/json" },
      body,
    });
    latencies.push(performance.now() - started);
    if (answer.status !== 201) throw new Error(`client ${index}: add ${i} answered ${answer.status} ${answer.body}`);
  }
}

async function main() {
  const tool = path.resolve(process.argv[2]);
  const server = await startServer(tool);
  try {
    const latencies = [];
    const started = performance.now();
    await Promise.all(Array.from({ length: clients }, (_, index) => client(server, index, latencies)));
    const seconds = (performance.now() - started) / 1000;
    const count = server.readings().length;
    if (count !== clients * perClient) throw new Error(`the log holds ${count} readings, not ${clients * perClient}`);

    const baseline = [];
    for (let i = 0; i < 20; i++) {
      const begun = performance.now();
      execFileSync(tool, ["--data-dir", server.dataDir, "add", "120/80", "--pulse", "60", "--at", `2026-02-01 10:${String(i).padStart(2, "0")}`]);
      baseline.push(performance.now() - begun);
    }
    latencies.sort((a, b) => a - b);
    baseline.sort((a, b) => a - b);
    const p50 = percentile(latencies, 50);
    const p99 = percentile(latencies, 99);
    const cli50 = percentile(baseline, 50);
    console.log(`${clients} clients x ${perClient} adds: ${count} readings in the log, ${(count / seconds).toFixed(0)} adds/s`);
    console.log(`web add latency: p50 ${p50.toFixed(1)} ms, p99 ${p99.toFixed(1)} ms`);
    console.log(`baseline, cardiolith add as a command on the same log: p50 ${cli50.toFixed(1)} ms`);
    console.log(`ratio of web p50 under 50 clients to one command's p50: ${(p50 / cli50).toFixed(2)}`);
  } finally {
    server.stop();
  }
}

main().catch((error) => {
  console.error(error.message);
  process.exit(1);
});
