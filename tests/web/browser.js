// Opens the page of a started server in Debian's chromium, headless, with a fresh profile. A page that
// opens a dialog fails the test: the page never needs one.
"use strict";

const assert = require("node:assert");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const puppeteer = require("puppeteer-core");

async function launchBrowser(server, { width = 1200, height = 900 } = {}) {
  const browser = await puppeteer.launch({
    executablePath: "/usr/bin/chromium",
    headless: true,
    userDataDir: fs.mkdtempSync(path.join(os.tmpdir(), "cardiolith-chromium-")),
    args: ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
      "--disable-background-networking", "--disable-component-update", "--disable-sync"],
  });
  const page = await browser.newPage();
  await page.setViewport({ width, height });
  page.on("dialog", async (dialog) => {
    await dialog.dismiss();
    assert.fail(`the page opened a dialog: ${dialog.message()}`);
  });
  await page.goto(`${server.base}/`, { waitUntil: "networkidle0" });
  return { browser, page };
}

module.exports = { launchBrowser };
