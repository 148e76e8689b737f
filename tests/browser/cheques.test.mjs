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

test("a pile of cheques is read with a bar reader and posted without the mouse", async () => {
  page = await begin();
  await openScreen(page, "controle", "Controle de Cheques");
  await keys(page, "Alt+l");
  await page.getByRole("dialog", { name: "Cheques Recebidos" }).waitFor();
  await keys(page, "10250-1", "Tab", "1101", "Tab", "005", "Tab");
  const grid = "Cheques do lote";
  await focusIs(page, grid);
  for (let i = 1; i <= 3; i++) {
    await page.keyboard.press(i === 1 ? "Insert" : "ArrowDown");
    await keys(page, `<34112345<01800077${i}4>900000567890:`, "Enter");
    await until("a linha lida", async () => (await rows(page, grid)).at(-1)?.startsWith(`00077${i}|341|005678|1234|20/11/2026|20/11/2026`));
    await keys(page, `10${i},5`, "Enter");
  }
  await picture(page, "batch");
  assert.deepEqual(await findings(page), []);
  await keys(page, "Alt+c");
  await page.getByText("3 cheques lançados na conta 10250-1: 307,50.").waitFor();
  await page.getByRole("dialog").waitFor({ state: "detached" });
});

test("a cheque is issued, printed, and picked for a reprint", async () => {
  page = await begin();
  await openScreen(page, "emissão de cheque", "Emissão de cheque");
  await focusIs(page, "Pagto de AP");
  await keys(page, "ArrowRight", "ArrowRight", "Tab");
  await focusIs(page, "Conta");
  await keys(page, "10250-1", "Tab");
  await focusIs(page, "Nº do Cheque");
  const field = page.getByLabel("Nº do Cheque", { exact: true });
  await until("o número proposto", async () => /^\d{6}$/.test(await field.inputValue()));
  const number = await field.inputValue();
  await keys(page, "Tab", "004", "Tab", "2101", "Tab", "Tab", "Tecelagem Ltda", "Tab", "1250,4", "Tab", "Tab", "Tab");
  await shows(page, "Credor", "TECELAGEM LTDA");
  await shows(page, "Observação", "PAGTO DE CHEQUE A TECELAGEM LTDA");
  await picture(page, "issue");
  assert.deepEqual(await findings(page), []);
  await press("Incluir");
  await page.getByText("Confira os lançamentos contábeis antes de gravar.").waitFor();
  await keys(page, "s");
  await told(page, /^Concluído\. Lançamento \d{6}$/);
  await focusIs(page, "Nº do Cheque");
  await shows(page, "Nº do Cheque", String(Number(number) + 1).padStart(6, "0"));
  const queue = async () => (await rows(page, "Fila de Impressão")).map((row) => row.split("|").slice(0, 3).join("|"));
  assert.deepEqual(await queue(), [`${number}|TECELAGEM LTDA|1.250,40`]);

  // Printed it leaves the queue; picked it is there again.
  const print = async () => {
    await press("Cheque");
    await page.frameLocator(".report-frame").getByText("UM MIL DUZENTOS E CINQUENTA REAIS").first().waitFor();
    await focusIs(page, "Imprimir");
    await picture(page, "issue-printed");
    await keys(page, "Escape");
    await page.locator(".report-frame").waitFor({ state: "detached" });
    await page.getByText("Nenhum registro").last().waitFor();
  };
  await print();
  await keys(page, "Control+PageUp");
  await focusIs(page, "Conta");
  await keys(page, "10250-1", "Tab", number, "Control+Enter");
  await until("o cheque emitido", async () => (await rows(page, "Acesso")).some((row) => row.includes(`${number}|20/11/2026`)));
  await keys(page, "Tab", "Enter");
  await page.getByText(`Cheque ${number} na fila de impressão.`).waitFor();
  await picture(page, "issue-picked");
  await keys(page, "Control+PageDown");
  await until("o cheque na fila", async () => (await queue()).join() === `${number}|PAGTO DE CHEQUE A TECELAGEM LTDA|1.250,40`);
  await print();
});
