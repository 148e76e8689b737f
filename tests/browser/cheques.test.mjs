// A cheque by keyboard alone: taken in with its movement, refused what isn't for it, taken out again.
import assert from "node:assert/strict";
import { test } from "node:test";
import { answered, findMovement, findings, focusIs, keys, openLedger, openScreen, picture, rows, shows, told, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

const begin = deskOfTests();
let page;

// Presses a button by the letter that is underlined on it.
async function press(caption) {
  const button = page.getByRole("button", { name: caption, exact: true }).locator("visible=true").last();
  await keys(page, `Alt+${(await button.locator("u").innerText()).toLowerCase()}`);
}

test("a cheque is taken in with its movement, refused what isn't for it, and taken out", async () => {
  page = await begin();
  await openScreen(page, "cheques", "Controle de Cheques");
  await focusIs(page, "Incluir");
  await keys(page, "Alt+i");
  await focusIs(page, "Banco");
  await keys(page, "903", "Tab", "0012", "Tab", "77-1", "Tab", "CH4711", "Tab", "1250,4", "Tab", "Tab", "5", "Tab", "00050", "Tab");
  await focusIs(page, "Representante");
  await shows(page, "Vencimento", "05/11/2026");
  // Left empty, a code offers its list.
  for (const next of ["Fornecedor", "Observação"]) {
    await keys(page, "Tab");
    await page.getByRole("dialog").waitFor();
    await picture(page, "cheque-lookup");
    await keys(page, "Escape");
    await page.getByRole("dialog").waitFor({ state: "detached" });
    await focusIs(page, next);
  }
  await picture(page, "cheque-new");
  assert.deepEqual(await findings(page), []);
  await press("Confirmar");
  await told(page, "A data de Vencimento não pode ser menor que a data de Emissão.");
  await focusIs(page, "Banco");
  await keys(page, "Tab", "Tab", "Tab", "Tab", "Tab", "Tab", "10/12/2026");
  await press("Confirmar");

  // Its movement is posted from within.
  const entry = page.getByRole("dialog");
  await entry.waitFor();
  await focusIs(page, "Conta");
  await keys(page, "33021-5", "Tab", "Tab", "1101", "Tab", "005", "Tab");
  await picture(page, "cheque-entry");
  assert.deepEqual(await findings(page), []);
  await press("Confirmar");
  await page.getByText("Confira os lançamentos contábeis antes de gravar.").waitFor();
  await keys(page, "s");
  await entry.waitFor({ state: "detached" });
  const taken = async () => (await rows(page, "Cadastro")).filter((row) => row.includes("|CH4711|"));
  await until("o cheque na lista", async () => (await taken()).length === 1);
  assert.match((await taken())[0], /\|903\|0012\|77-1\|CH4711\|1\.250,40\|20\/11\/2026\|10\/12\/2026\|\|Pendente\|Recebido\|00050\|/);
  await picture(page, "cheque-taken");

  // A cheque of a third party isn't cancelled here, a pending one not returned.
  await keys(page, "Alt+c");
  await told(page, "Não é possível cancelar cheques de terceiros.");
  await keys(page, "Alt+d");
  await told(page, "Cheque não pode ser Devolvido.");
  await keys(page, "Alt+e");
  await answered(page, "Deseja eliminar este Registro?", "s");
  await until("o cheque fora da lista", async () => (await taken()).length === 0);

  // The movement stays in the ledger.
  await openLedger(page);
  await findMovement(page, "CH4711");
  await shows(page, "Valor", "1.250,40");
  await shows(page, "Conta", "33021-5");
});
