// The server's life: a port in use is refused with a message, and SIGTERM ends it cleanly after the
// change under way has been saved.
"use strict";

const { test } = require("node:test");
const assert = require("node:assert");
const { spawnSync } = require("node:child_process");
const { startServer, rawRequest } = require("./server.js");

const tool = process.env.CARDIOLITH;

test("a port in use is refused with what to do", async () => {
  const server = await startServer(tool);
  try {
    const second = spawnSync(tool, ["--data-dir", server.dataDir, "serve", "--port", String(server.port)], { timeout: 10000 });
    assert.strictEqual(second.status, 1);
    assert.match(second.stderr.toString(), new RegExp(`127\\.0\\.0\\.1:${server.port}.*--port`));
  } finally {
    server.stop();
  }
});

test("SIGTERM while adding: the answered adds are saved and the server ends with status 0", async () => {
  const server = await startServer(tool);
  const exited = new Promise((resolve) => server.child.on("exit", (code, signal) => resolve({ code, signal })));
  let output = "";
  server.child.stdout.on("data", (chunk) => (output += chunk));
  const adds = Array.from({ length: 5 }, (_, i) =>
    rawRequest(server.port, {
      method: "POST",
      path: "/api/readings",
      headers: { Host: `127.0.0.1:${server.port}`, "X-Cardiolith-Token": server.token },
      body: JSON.stringify({ systolic: 120 + i, diastolic: 80, pulse: 60 }),
    }),
  );
  setTimeout(() => server.stop(), 5);
  const answers = await Promise.all(adds);
  assert.deepStrictEqual(await exited, { code: 0, signal: null });
  assert.match(output, /Stopped\./);
  const added = answers.filter((answer) => answer.status === 201).length;
  assert.ok(answers.every((answer) => answer.status === 201 || answer.status === 0), JSON.stringify(answers));
  assert.strictEqual(server.readings().length, added);
});
