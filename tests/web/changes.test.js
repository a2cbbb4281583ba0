// Correcting the log from the page: edit a reading in its row, delete it, and take changes back with Undo,
// each saved in the log on disk and each one step of the same undo history as the command line's.
"use strict";

const { test, before, after } = require("node:test");
const assert = require("node:assert");
const { execFileSync } = require("node:child_process");
const { startServer } = require("./server.js");
const { launchBrowser } = require("./browser.js");

let server, browser, page;

before(async () => {
  server = await startServer(process.env.CARDIOLITH);
  execFileSync(server.tool, ["--data-dir", server.dataDir, "add", "128/82", "--pulse", "71", "--at", "-1h", "--note", "first"]);
  ({ browser, page } = await launchBrowser(server));
});

after(async () => {
  if (browser) await browser.close();
  if (server) server.stop();
});

function rowButton(label) {
  return page.waitForSelector(`#reading-table button[aria-label^="${label} the reading"]`);
}

test("Edit opens a labelled form in the row; a refusal keeps what was typed, Save changes the log", async () => {
  await (await rowButton("Edit")).click();
  assert.strictEqual(await page.evaluate(() => document.activeElement.name), "systolic", "focus moves to the form");
  const systolic = await page.$('xpath/.//form[@id="edit-form"]//label[normalize-space(text())="Systolic"]/input');
  await systolic.click({ clickCount: 3 });
  await systolic.type("400");
  await page.click("#edit-form button[type=submit]");
  await page.waitForFunction(() => document.getElementById("edit-message").textContent.includes("not changed"));
  assert.strictEqual(await systolic.evaluate((field) => field.value), "400");

  await page.click('xpath/.//form[@id="edit-form"]//label[contains(., "Evening")]/input');
  await systolic.click({ clickCount: 3 });
  await systolic.type("135");
  await page.keyboard.press("Enter");
  await page.waitForFunction(() => document.getElementById("change-message").textContent === "Saved.");
  const [reading] = server.readings();
  assert.deepStrictEqual([reading.systolic, reading.diastolic, reading.pulse, reading.notes, reading.tags], [135, 82, 71, "first", ["Evening"]]);
  assert.match(await page.evaluate(() => document.activeElement.getAttribute("aria-label")), /^Edit the reading/);
});

test("Delete removes the reading; Undo brings it back and says what it took back", async () => {
  await (await rowButton("Delete")).click();
  await page.waitForFunction(() => document.getElementById("change-message").textContent.startsWith("Deleted"));
  assert.strictEqual(server.readings().length, 0);
  assert.strictEqual(await page.evaluate(() => document.activeElement.id), "undo-button");

  await page.keyboard.press("Enter");
  await page.waitForFunction(() => document.querySelectorAll("#reading-table tbody tr").length === 1);
  assert.match(await page.$eval("#change-message", (m) => m.textContent), /^Undid: delete [0-9A-Fa-f-]+\nbrought back/);
  assert.strictEqual(server.readings()[0].systolic, 135);
});

test("each page change is one undo step, the command line's history included", async () => {
  await page.click("#undo-button");
  await page.waitForFunction(() => document.getElementById("change-message").textContent.startsWith("Undid: edit"));
  // Named by what was changed, as one would type the edit.
  assert.match(await page.$eval("#change-message", (m) => m.textContent), /^Undid: edit [0-9A-Fa-f-]+ 135\/82 --tag Evening\nput back/);
  assert.strictEqual(server.readings()[0].systolic, 128);
  const undone = execFileSync(server.tool, ["--data-dir", server.dataDir, "undo"]).toString();
  assert.match(undone, /^Undid: cardiolith .*add 128\/82 --pulse 71/);
  assert.strictEqual(server.readings().length, 0);
});

test("values corrected into the crisis range are saved with the advice to measure again", async () => {
  execFileSync(server.tool, ["--data-dir", server.dataDir, "add", "150/90", "--pulse", "70", "--at", "-1h"]);
  await page.reload({ waitUntil: "networkidle0" });
  await (await rowButton("Edit")).click();
  const systolic = await page.$('xpath/.//form[@id="edit-form"]//label[normalize-space(text())="Systolic"]/input');
  await systolic.click({ clickCount: 3 });
  await systolic.type("185");
  await page.keyboard.press("Enter");
  await page.waitForFunction(() => document.getElementById("change-message").textContent.startsWith("Saved."));
  const message = await page.$eval("#change-message", (m) => m.textContent + " " + m.className);
  assert.match(message, /^Saved\. This is in the hypertensive-crisis range .* seek medical help\. message$/);
  assert.strictEqual(server.readings()[0].systolic, 185);
});
