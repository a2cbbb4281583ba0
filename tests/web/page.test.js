// The page of `cardiolith serve` in a real browser (Debian's chromium, headless), against a server on a
// fresh data folder and a free port. CARDIOLITH is the built tool; SHOTS, when set, is where the
// screenshots of the page at desktop and phone width go.
"use strict";

const { test, before, after } = require("node:test");
const assert = require("node:assert");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const puppeteer = require("puppeteer-core");
const { startServer, rawRequest } = require("./server.js");

const shots = process.env.SHOTS;
let server, browser, page, base;

before(async () => {
  server = await startServer(process.env.CARDIOLITH);
  base = server.base;
  browser = await puppeteer.launch({
    executablePath: "/usr/bin/chromium",
    headless: true,
    userDataDir: fs.mkdtempSync(path.join(os.tmpdir(), "cardiolith-chromium-")),
    args: ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
      "--disable-background-networking", "--disable-component-update", "--disable-sync"],
  });
  page = await browser.newPage();
  await page.setViewport({ width: 1200, height: 900 });
  page.on("dialog", async (dialog) => {
    await dialog.dismiss();
    assert.fail(`the page opened a dialog: ${dialog.message()}`);
  });
  await page.goto(`${base}/`, { waitUntil: "networkidle0" });
});

after(async () => {
  if (browser) await browser.close();
  if (server) server.stop();
});

async function fieldByLabel(text) {
  const [field] = await page.$$(`xpath/.//label[normalize-space(text())="${text}"]//*[self::input or self::textarea]`);
  assert.ok(field, `a field labelled "${text}"`);
  return field;
}

async function typeInto(label, value) {
  const field = await fieldByLabel(label);
  await field.click({ clickCount: 3 });
  await field.type(value);
}

async function rowsText() {
  return page.$$eval("#reading-table tbody tr", (rows) => rows.map((row) => row.textContent));
}

function logOnDisk() {
  return server.readings();
}

test("a reading added through the labelled form shows in the list, note as text", async () => {
  await typeInto("Systolic", "128");
  await typeInto("Diastolic", "82");
  await typeInto("Pulse", "71");
  await typeInto("Note", "<script>alert(1)</script>");
  const [morning] = await page.$$('xpath/.//label[contains(., "Morning")]/input[@type="checkbox"]');
  await morning.click();
  const [add] = await page.$$('xpath/.//button[normalize-space(text())="Add"]');
  await add.click();
  await page.waitForFunction(() => document.querySelectorAll("#reading-table tbody tr").length === 1);
  const [row] = await rowsText();
  assert.match(row, /128\/82/);
  assert.match(row, /High/);
  assert.match(row, /Morning/);
  assert.ok(row.includes("<script>alert(1)</script>"), row);
  assert.strictEqual(await page.$$eval("#reading-table script", (s) => s.length), 0);
  assert.strictEqual(logOnDisk().length, 1);
});

test("refused input shows the tool's message and keeps what was typed", async () => {
  await typeInto("Systolic", "400");
  await typeInto("Diastolic", "82");
  await typeInto("Pulse", "71");
  const [add] = await page.$$('xpath/.//button[normalize-space(text())="Add"]');
  await add.click();
  await page.waitForFunction(() => document.getElementById("add-message").textContent.includes("not added"));
  assert.match(await page.$eval("#add-message", (m) => m.textContent), /systolic pressure 400/);
  assert.strictEqual(await (await fieldByLabel("Systolic")).evaluate((f) => f.value), "400");
  assert.strictEqual(logOnDisk().length, 1);
});

test("screenshots at desktop and 360 px width", async () => {
  if (!shots) return;
  fs.mkdirSync(shots, { recursive: true });
  await page.waitForFunction(() => !document.getElementById("chart").hidden);
  await page.screenshot({ path: path.join(shots, "page-desktop.png"), fullPage: true });
  await (await page.$("#add")).screenshot({ path: path.join(shots, "add-form-desktop.png") });
  await page.setViewport({ width: 360, height: 780 });
  await page.screenshot({ path: path.join(shots, "page-360.png"), fullPage: true });
  await (await page.$("#add")).screenshot({ path: path.join(shots, "add-form-360.png") });
  await page.setViewport({ width: 1200, height: 900 });
});

test("a form post from another origin and a foreign Host are refused", async () => {
  const port = new URL(base).port;
  const before = logOnDisk().length;
  const forged = await fetch(`${base}/api/readings`, {
    method: "POST",
    headers: { Origin: "http://attacker.example", "Content-Type": "text/plain" },
    body: JSON.stringify({ systolic: 120, diastolic: 80, pulse: 60 }),
  });
  assert.strictEqual(forged.status, 403);
  const rebound = await rawRequest(server.port, { path: "/api/readings", headers: { Host: `attacker.example:${port}` } });
  assert.strictEqual(rebound.status, 403);
  assert.strictEqual(rebound.headers["access-control-allow-origin"], undefined);
  assert.strictEqual(logOnDisk().length, before);
});

test("the report for printing opens from the page with its chart", async () => {
  await page.goto(`${base}/`, { waitUntil: "networkidle0" });
  await Promise.all([page.waitForNavigation(), page.click("#report-link")]);
  assert.match(page.url(), /\/report\?last=7d$/);
  assert.strictEqual(await page.$$eval("svg", (charts) => charts.length), 1);
  assert.match(await page.$eval("body", (body) => body.textContent), /128/);
  if (shots) await page.screenshot({ path: path.join(shots, "report-desktop.png"), fullPage: true });
  await page.goto(`${base}/`, { waitUntil: "networkidle0" });
});

test("the period chooses the readings shown", async () => {
  await page.select('select[name="period"]', "range");
  // Set as values: what typing into a date field takes depends on the browser's locale.
  await (await fieldByLabel("From")).evaluate((field) => (field.value = "2020-01-01"));
  await (await fieldByLabel("To")).evaluate((field) => (field.value = "2020-12-31"));
  await page.click('#period-form button[type="submit"]');
  await page.waitForFunction(() => document.querySelectorAll("#reading-table tbody tr").length === 0);
  await page.select('select[name="period"]', "all");
  await page.waitForFunction(() => document.querySelectorAll("#reading-table tbody tr").length === 1);
  assert.strictEqual(await page.$eval('label.range', (label) => label.hidden), true);
});

test("the chart of the period shows once it has readings", async () => {
  await page.select('select[name="period"]', "30");
  await page.waitForFunction(() => {
    const chart = document.getElementById("chart");
    return !chart.hidden && chart.complete && chart.naturalWidth > 0;
  });
  assert.match(await page.$eval("#chart", (chart) => chart.getAttribute("alt")), /Systolic and diastolic/);
});

test("the keyboard alone adds a reading, and a printout shows the readings without the forms", async () => {
  await page.goto(`${base}/`, { waitUntil: "networkidle0" });
  await (await fieldByLabel("Systolic")).focus();
  await page.keyboard.type("118");
  await page.keyboard.press("Tab");
  await page.keyboard.type("76");
  await page.keyboard.press("Tab");
  await page.keyboard.type("64");
  await page.keyboard.press("Enter");
  await page.waitForFunction(() => document.getElementById("add-message").textContent === "Added.");
  assert.ok((await rowsText()).some((row) => row.includes("118/76")));

  await page.emulateMediaType("print");
  assert.strictEqual(await page.$eval("#add", (add) => getComputedStyle(add).display), "none");
  assert.notStrictEqual(await page.$eval("#reading-table", (table) => getComputedStyle(table).display), "none");
  await page.emulateMediaType(null);
});
