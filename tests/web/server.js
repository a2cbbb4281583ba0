// Starts `cardiolith serve` on a fresh data folder and a free port for a test or a bench, and reads the
// run's token from its page.
"use strict";

const { spawn, execFileSync } = require("node:child_process");
const fs = require("node:fs");
const http = require("node:http");
const os = require("node:os");
const path = require("node:path");

async function startServer(tool) {
  const dataDir = fs.mkdtempSync(path.join(os.tmpdir(), "cardiolith-web-"));
  const child = spawn(tool, ["--data-dir", dataDir, "serve", "--port", "0"]);
  const base = await new Promise((resolve, reject) => {
    let output = "";
    child.stdout.on("data", (chunk) => {
      output += chunk;
      const found = output.match(/http:\/\/127\.0\.0\.1:(\d+)\//);
      if (found) resolve(found[0].slice(0, -1));
    });
    child.on("exit", (code) => reject(new Error(`the server ended with ${code}: ${output}`)));
  });
  const page = await (await fetch(`${base}/`)).text();
  const token = page.match(/name="cardiolith-token" content="([0-9a-f]+)"/)[1];
  return {
    child,
    tool,
    base,
    port: Number(new URL(base).port),
    token,
    dataDir,
    readings: () => JSON.parse(execFileSync(tool, ["--data-dir", dataDir, "list", "--json"])).readings,
    stop: () => child.kill("SIGTERM"),
  };
}

// One raw request with whatever method, path and headers, so that nothing between test and server
// normalises them. Resolves to {status, body}, or {status: 0} when the server closed the connection.
function rawRequest(port, { method = "GET", path: target = "/", headers = {}, body }) {
  return new Promise((resolve) => {
    const request = http.request({ host: "127.0.0.1", port, method, path: target, headers, agent: false }, (response) => {
      let text = "";
      response.on("data", (chunk) => (text += chunk));
      response.on("end", () => resolve({ status: response.statusCode, headers: response.headers, body: text }));
    });
    request.on("error", () => resolve({ status: 0 }));
    if (body !== undefined) request.write(body);
    request.end();
  });
}

module.exports = { startServer, rawRequest };
