// A cheque's life by keyboard alone: taken in with its movement, transferred by nobody, found again.
import assert from "node:assert/strict";
import { test } from "node:test";
import { described, findings, focusIs, grid, keys, openScreen, picture, rows, shows, told, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

const begin = deskOfTests();
let page;

// Presses a button by the letter that is underlined on it.
async function press(caption) {
  const button = page.getByRole("button", { name: caption, exact: true }).locator("visible=true").last();
  await keys(page, `Alt+${(await button.locator("u").innerText()).toLowerCase()}`);
}

test("a cheque is taken in with its movement, cleared, returned by the bank and presented again", async () => {
  page = await begin();
  await openScreen(page, "cheques", "Controle de Cheques");
  await focusIs(page, "Incluir");
  await keys(page, "Alt+i");
  await focusIs(page, "Banco");
  await keys(page, "903", "Tab", "0012", "Tab", "77-1", "Tab", "004711", "Tab", "1250,4", "Tab", "Tab", "5", "Tab", "00050", "Tab");
  await page.getByRole("dialog").waitFor();
  await picture(page, "cheque-lookup");
  await keys(page, "Escape");
  await shows(page, "Vencimento", "05/11/2026");
  await picture(page, "cheque-new");
  await press("Confirmar");
  await told(page, "A data de Vencimento não pode ser menor que a data de Emissão.");
  await focusIs(page, "Banco");
  await picture(page, "cheque-refused");
});
