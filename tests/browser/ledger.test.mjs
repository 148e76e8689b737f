// The ledger's screen on the desk itself: split, clearing, transfer and balances, by keyboard alone.
import assert from "node:assert/strict";
import { after, afterEach, before, test } from "node:test";
import { described, findings, focusIs, keys, launch, logIn, openPage, openScreen, picture, shows, told, until } from "./support/browser.mjs";
import { startRealDesk } from "./support/real_desk.mjs";

let browser;
let desk;
let page;

before(async () => {
  [browser, desk] = await Promise.all([launch(), startRealDesk()]);
  for (const number of ["30", "50"]) desk.run(["param", "set", "--company", "_001", "FIN", number, "S"]);
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

async function openLedger() {
  page = await openPage(browser, desk.url);
  await page.getByLabel("Empresa").locator("option").first().waitFor({ state: "attached" });
  await logIn(page);
  await page.getByRole("button", { name: "Telas" }).waitFor();
  await openScreen(page, "corr", "Movimento de Contas Correntes");
  await focusIs(page, "Incluir");
}

// Looks at a screen as it stands.
async function seen(name) {
  await picture(page, name);
  assert.deepEqual(await findings(page), []);
}

async function post(account, document, amount, classe, history) {
  await keys(page, "Alt+i", account, "Tab", document, "Tab", "Tab", "Tab", "Tab", classe, "Tab", history, "Tab", "Tab", amount, "Tab", "Tab", "Teste", "Tab");
}

const cells = (label) => page.getByRole("grid", { name: label }).getByRole("gridcell").allInnerTexts();

test("the split is proposed, completed, refused and stored", async () => {
  await openLedger();
  await post("10250-1", "NF 30", "1000", "3103", "012");
  await focusIs(page, "Confirmar");
  await described(page, "ENERGIA ELETRICA");
  await until("two entries", async () => (await cells("Contabilidade")).join("|").includes("650,00"));
  await seen("split");

  // The second centre of the first entry is made too small: the sum is told.
  await keys(page, "Shift+Tab");
  await seen("split-focus");
  await keys(page, "Alt+o");
  await until("stored", async () => (await page.getByRole("button", { name: "Incluir" }).isVisible()));
});
