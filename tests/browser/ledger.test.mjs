// A clerk's day on the ledger, by keyboard alone: a movement with its split, a run of clearings, a transfer, the
// balances.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { findMovement, findings, focusIs, keys, openLedger, picture, rows, rowsAre, shows, told, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

const begin = deskOfTests((run) => ["30", "50"].forEach((number) => run(["param", "set", "FIN", number, "S"])));
let page;

const enterLedger = async () => openLedger((page = await begin()));

// Sets filters that are seldom set, from the first of them on, and folds them away again.
async function moreFilters(...list) {
  await keys(page, "Alt+l");
  await focusIs(page, "Classe Ger.");
  await keys(page, ...list);
  await keys(page, "Alt+l");
  await focusIs(page, "Consultar");
}

const type = (account, document, kind, history, amount, note) =>
  keys(page, "Alt+i", account, "Tab", document, "Tab", kind, "Tab", history, "Tab", amount, "Tab", "Tab", note, "Tab");

test("a movement with its split: proposed, completed in the grids, refused, stored", async () => {
  await enterLedger();
  // The class's own rules fill both grids.
  await type("10250-1", "NF 900", "3103", "012", "100", "Luz");
  await focusIs(page, "Confirmar");
  await rowsAre(page, "Contabilidade", ["1.1.02.001|CONTA MOVIMENTO|4.1.03.001|ENERGIA ELETRICA|65,00", "1.1.02.001|CONTA MOVIMENTO|4.1.03.002|AGUA E TELEFONE|35,00"]);
  await rowsAre(page, "Centro de Custo", ["0200|TECELAGEM|60,00|39,00", "0300|CONFECCAO|40,00|26,00"]);
  await picture(page, "split-proposed");
  // Another entry, other cost centres.
  await keys(page, "Shift+Tab", "Shift+Tab", "ArrowDown");
  await rowsAre(page, "Centro de Custo", ["0100|ADMINISTRACAO|100,00|35,00"]);
  await keys(page, "Alt+o");
  await focusIs(page, "Incluir");

  // A class without rules leaves them to the clerk.
  await type("10250-1", "NF 901", "2102", "002", "1.100,50", "Papel");
  await focusIs(page, "Confirmar");
  await rowsAre(page, "Contabilidade", ["1.1.02.001|CONTA MOVIMENTO|||1.100,50"]);
  await keys(page, "Shift+Tab", "Shift+Tab", "ArrowRight", "ArrowRight", "4.1.04.001", "Tab", "Alt+o");
  await told(page, "Diferença no percentual de Rateio de Centro de Custo de 100.00%");
  await focusIs(page, "Confirmar");
  await keys(page, "Shift+Tab", "Insert", "F4");
  await page.getByRole("dialog").waitFor();
  await keys(page, "CONFEC");
  await page.getByRole("dialog").getByText("1 linha").waitFor();
  await picture(page, "split-lookup");
  await keys(page, "Enter", "Tab", "Tab", "33,3", "Tab");
  await rowsAre(page, "Centro de Custo", ["0300|CONFECCAO|33,30|366,47"]);
  await keys(page, "ArrowDown", "Home", "0400", "Tab", "Tab", "Tab", "734,03", "Tab");
  await rowsAre(page, "Centro de Custo", ["0300|CONFECCAO|33,30|366,47", "0400|LOJA|66,70|734,03"]);
  await focusIs(page, "Confirmar");
  await picture(page, "split-completed");
  assert.deepEqual(await findings(page), []);
  await keys(page, "Alt+o");
  await focusIs(page, "Incluir");

  await findMovement(page, "NF 901");
  await rowsAre(page, "Contabilidade", ["1.1.02.001|CONTA MOVIMENTO|4.1.04.001|DESPESAS GERAIS|1.100,50"]);
  await rowsAre(page, "Centro de Custo", ["0300|CONFECCAO|33,30|366,47", "0400|LOJA|66,70|734,03"]);
});

test("cheques are cleared down the list, and one is taken back", async () => {
  await enterLedger();
  // Cheques among the pending ones, of whatever account.
  await keys(page, "Control+PageUp");
  await moreFilters("Tab", "Tab", "Tab", "Tab", "Tab", "End");
  await keys(page, "Alt+c");
  await page.getByText(/^1 de \d+$/).waitFor();
  const pending = await rows(page, "Acesso");
  assert.ok(pending.length >= 4, `poucos cheques: ${pending.length}`);
  const numbers = pending.map((row) => row.split("|")[0]);
  await picture(page, "clearing-list");
  const at = (number) => until(`em ${number}`, async () => (await page.locator(".grid-row.is-current").innerText()).startsWith(number));
  const question = page.getByRole("dialog");
  for (const number of numbers.slice(0, 3)) {
    await at(number);
    await keys(page, "Alt+m");
    await question.getByText(/COMPENSAÇÃO DOCTO NR/).first().waitFor();
    if (number === numbers[0]) {
      await picture(page, "clearing-accounting");
      assert.deepEqual(await findings(page), []);
      // A refusal leaves it where it was.
      await keys(page, "n");
      await question.waitFor({ state: "detached" });
      await at(number);
      await keys(page, "Alt+m");
      await question.waitFor();
    }
    await keys(page, "s");
    await question.waitFor({ state: "detached" });
  }
  await at(numbers[3]);
  assert.equal((await rows(page, "Acesso"))[0].split("|")[0], numbers[3]);

  // Among the settled cheques stands the second, and goes back.
  const of = async (number, step) => {
    await moreFilters("Tab", "Tab", number);
    await keys(page, "Shift+Tab", step, "Alt+c");
  };
  await of(numbers[1], "ArrowRight");
  const found = (pattern) => until(`${pattern}`, async () => pattern.test((await rows(page, "Acesso")).join(";")));
  await found(new RegExp(`^${numbers[1]}\\|[^;]*\\|20/11/2026\\|-\\|[\\d.,]+\\|Baixado\\|[^;]*$`));
  await keys(page, "Alt+r");
  await found(/^$/);
  await of(numbers[1], "ArrowLeft");
  await found(new RegExp(`^${numbers[1]}\\|[^;]*\\|20/11/2026\\|-\\|[\\d.,]+\\|Pendente\\|[^;]*$`));
  await picture(page, "clearing-taken-back");
});

test("a transfer posts both sides; a movement found in the inquiry comes to the form", async () => {
  await enterLedger();
  await keys(page, "Alt+t");
  const dialog = page.getByRole("dialog");
  await dialog.waitFor();
  await picture(page, "transfer");
  assert.deepEqual(await findings(page), []);
  await keys(page, "10250-1", "Tab", "33021-5", "Tab", "TRF 77", "Tab", "1.234,5", "Tab", "Tab", "Tab", "4101", "Tab", "006", "Tab", "4102", "Tab", "007", "Tab", "Tab");
  await shows(page, "Observação", "Trf. cc - de 10250-1 para 33021-5");
  await picture(page, "transfer-filled");
  await keys(page, "Alt+c");
  await page.getByText(/TRANSFERENCIA - SAIDA/).first().waitFor();
  await picture(page, "transfer-accounting");
  await keys(page, "s");
  await dialog.waitFor({ state: "detached" });

  await keys(page, "Control+PageUp");
  await moreFilters("Tab", "Tab", "Tab", "TRF 77");
  await keys(page, "Shift+Tab", "Home", "Alt+c");
  await page.getByText("1 de 2").waitFor();
  assert.deepEqual((await rows(page, "Acesso")).map((row) => row.split("|").slice(1, 9).join("|")), [
    "TRF 77|901|10250-1|20/11/2026|20/11/2026|20/11/2026|-|1.234,50",
    "TRF 77|903|33021-5|20/11/2026|20/11/2026|20/11/2026|+|1.234,50",
  ]);
  await keys(page, "Tab");
  await until("grade", () => page.evaluate(() => document.activeElement?.getAttribute("role") === "grid"));
  await keys(page, "ArrowDown", "Enter");
  await shows(page, "Conta", "33021-5");
  await shows(page, "Documento", "TRF 77");
  await picture(page, "inquiry-loaded");
});

test("the balances are read beside the screen, printed and taken away", async () => {
  await enterLedger();
  await keys(page, "Alt+s");
  const pane = page.getByRole("dialog", { name: "Saldos das Contas Correntes" });
  const view = page.frameLocator(".report-frame");
  await view.getByText("CONTA MOVIMENTO").waitFor();
  await focusIs(page, "Imprimir");
  await picture(page, "balances");
  assert.deepEqual(await findings(page), []);
  await page.evaluate(() => (document.querySelector(".report-frame").contentWindow.print = () => (window.printed = true)));
  await keys(page, "Enter");
  await until("impresso", () => page.evaluate(() => window.printed === true));
  for (const [key, name, begins] of [["p", "saldos_das_contas_correntes.pdf", "%PDF-"], ["c", "saldos_das_contas_correntes.csv", "\ufeff"], ["e", "saldos_das_contas_correntes.xlsx", "PK"]]) {
    const download = page.waitForEvent("download");
    await keys(page, `Alt+${key}`);
    const file = await download;
    assert.equal(file.suggestedFilename(), name);
    assert.ok(readFileSync(await file.path(), key === "c" ? "utf8" : "latin1").startsWith(begins), name);
  }
  await keys(page, "Escape");
  await pane.waitFor({ state: "detached" });
  await focusIs(page, "Saldos");
});

test("what was posted comes again by a key, and a template on its day", async () => {
  await enterLedger();
  await type("10250-1", "NF 910", "3103", "012", "100", "Luz");
  await focusIs(page, "Confirmar");
  await keys(page, "Alt+n", "Alt+v");
  const dialog = page.getByRole("dialog");
  await dialog.waitFor();
  await focusIs(page, "Nome");
  await keys(page, "LUZ DA FÁBRICA", "Tab", "1", "Tab");
  await shows(page, "Próxima vez", "20/12/2026");
  await keys(page, "20/11/2026");
  await picture(page, "template");
  await keys(page, "Control+Enter");
  await dialog.waitFor({ state: "detached" });
  await focusIs(page, "Manter conta e data");
  await keys(page, "Alt+o");
  await page.getByText("1 modelo vence hoje").waitFor();
  await picture(page, "template-due");
  assert.deepEqual(await findings(page), []);
  // The whole of it, but the amount.
  page.strokes = 0;
  await keys(page, "Alt+p", "1234,57", "Control+Enter");
  await focusIs(page, "Incluir");
  assert.equal(page.strokes, 2);
  // The template fills the form and is posted by the clerk; it isn't proposed again.
  await keys(page, "Alt+u");
  await focusIs(page, "Valor");
  await shows(page, "Observação", "Luz");
  await keys(page, "Control+Enter");
  await focusIs(page, "Incluir");
  await page.getByText("1 modelo vence hoje").waitFor({ state: "hidden" });

  // An amount that was typed is found in the list, whose latest row stands first.
  await keys(page, "Alt+c");
  await page.getByRole("dialog").waitFor();
  await keys(page, "1234,57");
  await until("o valor", async () => /20\/11\/2026\|NF 910\|1\.234,57/.test((await rows(page, "Resultados")).join(";")));
  await page.getByText("1 linha", { exact: true }).waitFor();
  await picture(page, "movements-amount");
  assert.deepEqual(await findings(page), []);
});
