// The changes the page can make, and its downloads, refused to other sites: a change without the run's
// token or from a foreign Origin (cross-site request forgery), and any request naming a foreign Host (DNS
// rebinding). Every refusal is a 403 with a message, and the log on disk stays as it was.
"use strict";

const { test, before, after } = require("node:test");
const assert = require("node:assert");
const { execFileSync } = require("node:child_process");
const { startServer, rawRequest } = require("./server.js");

let server, id;

before(async () => {
  server = await startServer(process.env.CARDIOLITH);
  execFileSync(server.tool, ["--data-dir", server.dataDir, "add", "128/82/71", "--at", "-1h"]);
  id = server.readings()[0].id;
});

after(() => server && server.stop());

const own = () => `127.0.0.1:${server.port}`;
const withToken = (extra) => ({ Host: own(), "X-Cardiolith-Token": server.token, ...extra });
const csv = "date,systolic,diastolic,pulse\n2026-11-20 07:45,131,84,70\n";

// [name, method, path, headers, body]
const cases = () => [
  ["edit without the token", "PATCH", `/api/readings/${id}`, { Host: own() }, '{"systolic":140}'],
  ["edit from another origin", "PATCH", `/api/readings/${id}`, withToken({ Origin: "http://attacker.example" }), '{"systolic":140}'],
  ["delete without the token", "DELETE", `/api/readings/${id}`, { Host: own() }],
  ["delete from another origin", "DELETE", `/api/readings/${id}`, withToken({ Origin: "http://attacker.example" })],
  ["undo without the token", "POST", "/api/undo", { Host: own() }],
  ["undo from another origin", "POST", "/api/undo", withToken({ Origin: "http://attacker.example" })],
  ["import without the token", "POST", "/api/import?name=a.csv", { Host: own() }, csv],
  ["import from another origin", "POST", "/api/import?name=a.csv", withToken({ Origin: "http://attacker.example" }), csv],
  ["delete with a foreign Host", "DELETE", `/api/readings/${id}`, withToken({ Host: `attacker.example:${server.port}` })],
  ["import with a foreign Host", "POST", "/api/import?name=a.csv", withToken({ Host: `attacker.example:${server.port}` }), csv],
  ["export with a foreign Host", "GET", "/api/export?format=csv", { Host: `attacker.example:${server.port}` }],
];

test("changes without the token or from another origin, and a foreign Host, are refused", async () => {
  const before = JSON.stringify(server.readings());
  for (const [name, method, target, headers, body] of cases()) {
    const answer = await rawRequest(server.port, { method, path: target, headers, body });
    assert.strictEqual(answer.status, 403, name);
    assert.ok(JSON.parse(answer.body).error, `${name}: a message`);
    assert.ok(!answer.body.includes("Systolic"), `${name}: nothing of the log`);
  }
  assert.strictEqual(JSON.stringify(server.readings()), before);
});

test("malformed changes and downloads get a 4xx with the tool's message and change nothing", async () => {
  const before = JSON.stringify(server.readings());
  const rows = [
    ["an edit that changes nothing", "PATCH", `/api/readings/${id}`, withToken(), "{}", 400, /nothing to change/],
    ["an implausible edit", "PATCH", `/api/readings/${id}`, withToken(), '{"systolic":400}', 422, /not changed: .*400/],
    ["an id of no reading", "DELETE", "/api/readings/ffffffff", withToken(), undefined, 422, /ffffffff/],
    ["a multipart upload", "POST", "/api/import?name=a.csv", withToken({ "Content-Type": "multipart/form-data; boundary=x" }), "--x--", 400, /multipart/],
    ["an empty upload", "POST", "/api/import?name=a.csv&dryRun=true", withToken(), "", 400, /empty/],
    ["a flag that is not true or false", "POST", "/api/import?name=a.csv&force=yes", withToken(), csv, 400, /force/],
    ["columns that name no role", "POST", "/api/import?name=a.csv&columns=date,oben", withToken(), csv, 400, /^More choices › Columns: "oben" is not a role/],
    ["columns without a pressure", "POST", "/api/import?name=a.csv&columns=date%2Csystolic", withToken(), csv, 400, /Columns names no date, systolic and diastolic/],
    ["empty columns", "POST", "/api/import?name=a.csv&columns=", withToken(), csv, 400, /Columns: "" is not a role/],
    ["an export format the tool lacks", "GET", "/api/export?format=xlsx", { Host: own() }, undefined, 400, /csv, tsv, json or fhir/],
  ];
  for (const [name, method, target, headers, body, status, message] of rows) {
    const answer = await rawRequest(server.port, { method, path: target, headers, body });
    assert.strictEqual(answer.status, status, `${name}: ${answer.body}`);
    assert.match(JSON.parse(answer.body).error, message, name);
  }
  assert.strictEqual(JSON.stringify(server.readings()), before);
});
