// A bank's file taken in and tied to the ledger, a cheque taken in: by keyboard alone.
import assert from "node:assert/strict";
import { after, afterEach, before, test } from "node:test";
import { enter, findings, focusIs, keys, launch, openScreen, picture, rows, shows, told, until } from "./support/browser.mjs";
import { startRealDesk } from "./support/real_desk.mjs";

let browser;
let desk;
let page;

before(async () => {
  [browser, desk] = await Promise.all([launch(), startRealDesk()]);
});
after(async () => {
  await browser?.close();
  await desk?.stop();
  desk?.remove();
});
afterEach(async () => {
  assert.deepEqual(page.faults, []);
  await page.context().close();
});

test("x", async () => {
  page = await enter(browser, desk);
  for (const [letters, caption] of [["extrato b", /Extrato Bancário/], ["concil", /Concilia/], ["estat", /Estat/], ["relatório de lan", /Lançamentos/]]) {
    await openScreen(page, letters, caption);
    await page.waitForTimeout(600);
    await picture(page, `x-${letters.slice(0, 5)}`);
    for (const n of [2, 3]) { await keys(page, "Control+PageDown"); await page.waitForTimeout(400); await picture(page, `x-${letters.slice(0, 5)}-${n}`); }
    console.log(letters, await page.evaluate(() => document.activeElement.outerHTML.slice(0, 150)));
  }
});
