// Files in and out of the log from the page: an upload is previewed (what would be added, refused, the
// account) before the Import button imports it, and the export links download exactly what `cardiolith
// export` writes for the period shown.
"use strict";

const { test, before, after } = require("node:test");
const assert = require("node:assert");
const { execFileSync } = require("node:child_process");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const { startServer } = require("./server.js");
const { launchBrowser } = require("./browser.js");

let server, browser, page;
const folder = fs.mkdtempSync(path.join(os.tmpdir(), "cardiolith-files-"));

before(async () => {
  server = await startServer(process.env.CARDIOLITH);
  execFileSync(server.tool, ["--data-dir", server.dataDir, "add", "118/76/64", "--at", "-1h", "--note", "a, \"quoted\" note"]);
  ({ browser, page } = await launchBrowser(server));
});

after(async () => {
  if (browser) await browser.close();
  if (server) server.stop();
});

function yesterday(time) {
  const day = new Date(Date.now() - 24 * 3600 * 1000);
  const pad = (n) => String(n).padStart(2, "0");
  return `${day.getFullYear()}-${pad(day.getMonth() + 1)}-${pad(day.getDate())} ${time}`;
}

test("an upload shows its preview first; Import then adds the valid row as one undo step", async () => {
  const file = path.join(folder, "monitor.csv");
  fs.writeFileSync(file, `date,systolic,diastolic,pulse\n${yesterday("07:45")},131,84,70\n${yesterday("21:00")},abc,80,60\n`);
  const input = await page.$('xpath/.//label[normalize-space(text())="File to import"]/input');
  await input.uploadFile(file);
  await page.click('xpath/.//label[contains(., "Import the valid rows")]/input');
  await page.click('xpath/.//button[normalize-space(text())="Preview"]');
  await page.waitForSelector("#import-preview:not([hidden])");
  const preview = await page.$eval("#import-preview", (node) => node.textContent);
  assert.match(preview, /Dry run, nothing changed: 1 would be added, 0 already there, 0 skipped, 1 refused\./);
  assert.match(preview, /Would add .*07:45\s+131\/84/);
  assert.match(preview, /Refused monitor\.csv line 3: the systolic pressure "abc"/);
  assert.strictEqual(server.readings().length, 1, "the preview changes nothing");
  assert.strictEqual(await page.evaluate(() => document.activeElement.id), "import-confirm");

  await page.keyboard.press("Enter");
  await page.waitForFunction(() => document.getElementById("import-message").textContent.startsWith("Imported: 1 added"));
  await page.waitForFunction(() => [...document.querySelectorAll("#reading-table tbody tr")].some((row) => row.textContent.includes("131/84")));
  assert.strictEqual(server.readings().length, 2);
  const undone = execFileSync(server.tool, ["--data-dir", server.dataDir, "undo"]).toString();
  assert.match(undone, /^Undid: cardiolith import monitor\.csv --skip-invalid\n  removed .*131\/84/);
});

test("More choices read a German table: its columns and date format are named on the page", async () => {
  const day = (daysAgo) => {
    const date = new Date(Date.now() - daysAgo * 24 * 3600 * 1000);
    return [date.getDate(), date.getMonth() + 1].map((n) => String(n).padStart(2, "0")).join(".") + `.${date.getFullYear()}`;
  };
  const file = path.join(folder, "messgeraet.csv");
  fs.writeFileSync(file, `Datum;Uhrzeit;Oben;Unten;Puls\n${day(2)};07:10;142;91;77\n${day(3)};19:30;127;83;68\n`);
  const form = await page.$("#import-form");
  await (await form.$('xpath/.//label[normalize-space(text())="File to import"]/input')).uploadFile(file);
  const preview = async () => {
    await page.click('xpath/.//button[normalize-space(text())="Preview"]');
    await page.waitForFunction(() => document.getElementById("import-message").textContent || !document.getElementById("import-preview").hidden);
    return page.$eval("#import-message", (node) => node.textContent);
  };
  assert.match(await preview(), /messgeraet\.csv: line 1: the header "Datum,Uhrzeit,Oben,Unten,Puls" names no column .* name the columns with More choices › Columns date,time/);

  await page.click("#import-choices summary");
  const field = async (label, text) => {
    const input = await form.$(`xpath/.//label[starts-with(normalize-space(.), "${label}")]/input`);
    await input.click({ clickCount: 3 });
    await input.type(text);
  };
  await field("Columns", "date,oben");
  assert.match(await preview(), /^More choices › Columns: "oben" is not a role; use date, time/);

  await field("Columns", "date, time, systolic, diastolic, pulse");
  await field("Date format", "dd.MM.yyyy");
  assert.strictEqual(await preview(), "");
  const shown = await page.$eval("#import-preview", (node) => node.textContent);
  assert.match(shown, /2 would be added, 0 already there, 0 skipped, 0 refused\./);
  const before = server.readings().length;
  await page.click("#import-confirm");
  await page.waitForFunction(() => document.getElementById("import-message").textContent.startsWith("Imported: 2 added"));
  const added = server.readings().slice(before).map((r) => `${r.systolic}/${r.diastolic}/${r.pulse}`);
  assert.deepStrictEqual(added.sort(), ["127/83/68", "142/91/77"]);
  const undone = execFileSync(server.tool, ["--data-dir", server.dataDir, "undo"]).toString();
  assert.match(undone, /^Undid: cardiolith import messgeraet\.csv --columns '?date, time, systolic, diastolic, pulse'? --date-format dd\.MM\.yyyy/);
});

test("the CSV link downloads the period's readings as `export --format csv` writes them", async () => {
  const downloads = fs.mkdtempSync(path.join(folder, "downloads-"));
  const session = await page.createCDPSession();
  await session.send("Browser.setDownloadBehavior", { behavior: "allow", downloadPath: downloads });
  await page.click('xpath/.//a[normalize-space(text())="CSV"]');
  const name = "cardiolith-readings-last-7d.csv";
  for (let waited = 0; !fs.existsSync(path.join(downloads, name)) && waited < 5000; waited += 100) {
    await new Promise((resolve) => setTimeout(resolve, 100));
  }
  const expected = execFileSync(server.tool, ["--data-dir", server.dataDir, "export", "--format", "csv", "--last", "7d"]);
  assert.deepStrictEqual(fs.readFileSync(path.join(downloads, name)), expected);
  assert.match(expected.toString(), /118,76,64,.*"a, ""quoted"" note"/);
});
