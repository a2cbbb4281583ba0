// A table of malformed and hostile requests: each gets a 4xx answer (or a closed connection for what HTTP
// can't carry), the server stays up and the log is unchanged.
"use strict";

const { test, before, after } = require("node:test");
const assert = require("node:assert");
const { startServer, rawRequest } = require("./server.js");

let server;

before(async () => {
  server = await startServer(process.env.CARDIOLITH);
});

after(() => server && server.stop());

function host() {
  return `127.0.0.1:${server.port}`;
}

function tokened(extra = {}) {
  return { Host: host(), "X-Cardiolith-Token": server.token, "Content-Type": "application/json", ...extra };
}

const reading = JSON.stringify({ systolic: 120, diastolic: 80, pulse: 60 });

const cases = [
  ["bad JSON", () => ({ method: "POST", path: "/api/readings", headers: tokened(), body: '{"systolic":' })],
  ["JSON array", () => ({ method: "POST", path: "/api/readings", headers: tokened(), body: "[]" })],
  ["text for a number", () => ({ method: "POST", path: "/api/readings", headers: tokened(), body: '{"systolic":"x","diastolic":80,"pulse":60}' })],
  ["not UTF-8", () => ({ method: "POST", path: "/api/readings", headers: tokened(), body: Buffer.from([0x7b, 0x22, 0xff, 0x22, 0x3a, 0x31, 0x7d]) })],
  ["body over the limit", () => ({ method: "POST", path: "/api/readings", headers: tokened(), body: `{"note":"${"x".repeat(70 * 1024)}"}` })],
  ["huge header", () => ({ path: "/api/readings", headers: { Host: host(), "X-Filler": "y".repeat(20000) } })],
  ["no token", () => ({ method: "POST", path: "/api/readings", headers: { Host: host() }, body: reading })],
  ["foreign origin", () => ({ method: "POST", path: "/api/readings", headers: tokened({ Origin: "http://attacker.example" }), body: reading })],
  ["foreign host", () => ({ path: "/api/readings", headers: { Host: "attacker.example" } })],
  ["PUT on the list", () => ({ method: "PUT", path: "/api/readings", headers: tokened(), body: reading })],
  ["DELETE on the list", () => ({ method: "DELETE", path: "/api/readings", headers: tokened() })],
  ["POST on the page", () => ({ method: "POST", path: "/", headers: tokened(), body: reading })],
  ["path traversal", () => ({ path: "/../../etc/passwd", headers: { Host: host() } })],
  ["encoded traversal", () => ({ path: "/%2e%2e/%2e%2e/etc/passwd", headers: { Host: host() } })],
  ["traversal under the API", () => ({ path: "/api/../../readings", headers: { Host: host() } })],
  ["bad period", () => ({ path: "/api/readings?from=2026-13-45", headers: { Host: host() } })],
  ["reversed period", () => ({ path: "/api/readings?from=2026-11-20&to=2026-11-01", headers: { Host: host() } })],
];

test("malformed requests are refused and leave the server up and the log unchanged", async () => {
  const before = JSON.stringify(server.readings());
  for (const [name, request] of cases) {
    const answer = await rawRequest(server.port, request());
    assert.ok(answer.status === 0 || (answer.status >= 400 && answer.status < 500), `${name}: ${answer.status}`);
    if (answer.status === 0) continue;
    assert.ok(!("access-control-allow-origin" in answer.headers), `${name}: no CORS`);
    assert.strictEqual(answer.headers["x-content-type-options"], "nosniff", name);
    assert.ok(!answer.body.includes("root:"), `${name}: no file outside the page`);
    const alive = await rawRequest(server.port, { path: "/api/tags", headers: { Host: host() } });
    assert.strictEqual(alive.status, 200, `the server answers after ${name}`);
  }
  assert.strictEqual(JSON.stringify(server.readings()), before);
});

test("refusals carry a message and API answers are never cached", async () => {
  const answer = await rawRequest(server.port, cases[0][1]());
  assert.strictEqual(answer.status, 400);
  assert.match(JSON.parse(answer.body).error, /JSON/);
  assert.strictEqual(answer.headers["cache-control"], "no-store");
  assert.match(answer.headers["content-security-policy"], /script-src 'self'/);
});
