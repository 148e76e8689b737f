// The reports over many movements, by keyboard alone: gathered, cancelled, ordered, followed to the source, printed.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { findings, focusIs, grid, keys, openScreen, picture, rows, told, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

// Enough movements that a gathering takes its time.
const begin = deskOfTests(undefined, 8);
let page;

const count = async (name) => Number(await grid(page, name).getAttribute("aria-rowcount")) - 1;
const gathered = (name) => until(name, async () => (await count(name)) > 0);

// Opens the report that stands printed, takes the PDF away and closes it.
async function readReport(title, name) {
  const pane = page.getByRole("dialog", { name: title });
  await pane.waitFor();
  await page.frameLocator(".report-frame").getByRole("heading", { name: title }).waitFor();
  await focusIs(page, "Imprimir");
  await picture(page, `report-${name}`);
  assert.deepEqual(await findings(page), []);
  const download = page.waitForEvent("download");
  await keys(page, "Alt+p");
  const file = await download;
  assert.match(file.suggestedFilename(), new RegExp(`^${name}(_\\d{8}_\\d{8})?\\.pdf$`));
  const bytes = readFileSync(await file.path(), "latin1");
  assert.ok(bytes.startsWith("%PDF-") && bytes.trimEnd().endsWith("%%EOF"));
  assert.ok(bytes.match(/\/Type \/Page\b/g).length >= 1);
  await keys(page, "Escape");
  await pane.waitFor({ state: "detached" });
}

test("the account statement is gathered, cancelled, followed to its source and printed", async () => {
  page = await begin();
  await openScreen(page, "lançamentos", "Relatório de Lançamentos");
  await keys(page, "10250-1", "Alt+c");
  await gathered("Lançamentos");
  const whole = await count("Lançamentos");
  await picture(page, "statement");
  assert.deepEqual(await findings(page), []);
  await keys(page, "Alt+c");
  const progress = page.getByRole("dialog");
  await progress.getByRole("button", { name: "Cancelar" }).waitFor();
  await picture(page, "statement-progress");
  await keys(page, "Escape");
  await progress.waitFor({ state: "detached" });
  await until("vazia", async () => (await count("Lançamentos")) === 0);
  await told(page, "Operação cancelada.");
  // It works as before.
  await keys(page, "Alt+c");
  await until("de novo", async () => (await count("Lançamentos")) === whole);
  await keys(page, "Alt+i");
  await readReport("Relatório de Lançamentos", "relatorio_de_lancamentos");
});

test("the cash-flow statement is gathered, ordered, followed to its source and printed", async () => {
  page = await begin();
  await openScreen(page, "estat", "Relatóro de Estatística de Caixa");
  await keys(page, "Alt+c");
  await gathered("Saldos das contas");
  await gathered("Lançamentos");
  const first = (await rows(page, "Lançamentos"))[0].split("|")[0];
  await picture(page, "cashflow");
  assert.deepEqual(await findings(page), []);
  // In another order.
  const byDay = (await rows(page, "Lançamentos")).join(";");
  await keys(page, "Alt+a", "Tab", "Tab", "Tab", "End", "Alt+a");
  await focusIs(page, "Consultar");
  await keys(page, "Alt+c");
  await until("pela ordem dos números", async () => {
    const now = await rows(page, "Lançamentos");
    const numbers = now.map((row) => row.split("|")[1]);
    return now.join(";") !== byDay && numbers.length > 1 && !numbers.includes("") && numbers.join() === [...numbers].sort().join();
  });
  // From a figure to where it comes from.
  await keys(page, "Tab");
  await focusIs(page, "Lançamentos");
  await keys(page, "Enter");
  const detail = page.getByRole("dialog");
  await detail.getByText(/^Título/).first().waitFor();
  await picture(page, "cashflow-source");
  assert.deepEqual(await findings(page), []);
  await keys(page, "Escape");
  await detail.waitFor({ state: "detached" });
  assert.match(first, /^\d\d\/\d\d\/\d{4}$/);
  await keys(page, "Alt+r");
  await readReport("Relatório de Estatística de Caixa", "relatorio_de_estatistica_de_caixa");
});

test("the monthly result is gathered by accrual, followed to its titles and printed with its budget", async () => {
  page = await begin();
  await openScreen(page, "resultado", "Relatório de Resultado Mensal");
  await keys(page, "ArrowRight", "ArrowRight", "ArrowRight", "Tab", " ", "Alt+c");
  await gathered("Resultado por classe");
  await picture(page, "result");
  assert.deepEqual(await findings(page), []);
  // The titles of a class in its first month.
  const place = (await rows(page, "Resultado por classe")).findIndex((row) => row.startsWith("1.01.01|"));
  await grid(page, "Resultado por classe").locator(".grid-row").nth(place).locator("> *").nth(5).click();
  await keys(page, "Enter");
  await page.getByRole("dialog", { name: "Detalhamento" }).getByText("REC. NORMAL").first().waitFor();
  await keys(page, "Escape");
  await keys(page, "Alt+i");
  await readReport("Relatorio de Resultado Mensal - Conta Corrente", "relatorio_de_resultado_mensal_conta_corrente");
});

test("the forecast is narrowed, gathered, followed to its source, corrected and printed", async () => {
  page = await begin();
  await openScreen(page, "proje", "Projeção de Fluxo");
  await focusIs(page, "Dia");
  // Without the accounts' balances.
  await keys(page, "Shift+Tab", "Shift+Tab", "20112026", "Tab", "31122026", "Alt+a");
  await focusIs(page, "Saldo Inicial");
  await keys(page, " ", "Alt+c");
  await gathered("Entradas");
  await gathered("Saídas");
  await picture(page, "forecast-filters");
  await keys(page, "Alt+a");
  await picture(page, "forecast");
  assert.deepEqual(await findings(page), []);
  const last = async () => (await rows(page, "Saldos"))[1]?.split("|")[1] ?? "";
  const before = await last();
  const entries = await rows(page, "Entradas");
  // What of a class is overdue.
  await keys(page, "Tab");
  await focusIs(page, "Entradas");
  await keys(page, "Control+Home", "ArrowRight", "ArrowRight", "ArrowRight", "Enter");
  const detail = page.getByRole("dialog", { name: /^Vencidas da classe/ });
  await detail.getByText(/^Título/).first().waitFor();
  await keys(page, "Escape");
  await detail.waitFor({ state: "detached" });
  // A typed balance moves the final ones.
  await keys(page, "Control+PageDown");
  await gathered("Contas");
  await keys(page, "Tab");
  await focusIs(page, "Contas");
  await keys(page, "Control+ArrowLeft", "ArrowRight", "ArrowRight", "ArrowRight", "1234,56", "Tab", "ArrowDown");
  await picture(page, "forecast-accounts");
  await keys(page, "Control+PageUp");
  const cents = (text) => Number(text.replace(/[.,]/g, ""));
  await until("saldo digitado", async () => cents(await last()) === cents(before) + 123456);
  // What was out of sight shows the rows that it showed.
  assert.deepEqual(await rows(page, "Entradas"), entries);
  await keys(page, "Alt+i");
  await readReport("Relatório de Projeção de Fluxo", "relatorio_de_projecao_de_fluxo");
});

test("the cash-flow analysis is simulated, opened, charted and printed", async () => {
  page = await begin();
  await openScreen(page, "anális", "Relatório de Análise de Fluxo de Caixa");
  await keys(page, "Alt+c");
  await gathered("Períodos");
  const cell = async (row, column) => (await rows(page, "Períodos"))[row].split("|")[column];
  const before = await cell(1, 14);
  await picture(page, "analysis");
  assert.deepEqual(await findings(page), []);
  // An amount typed as an exit lowers the balance at once.
  await keys(page, "Tab");
  await focusIs(page, "Períodos");
  await keys(page, "Control+Home", "ArrowDown", "Control+ArrowRight", "ArrowLeft", "1000", "Tab");
  const cents = (text) => Number(text.replace(/[.,]/g, ""));
  await until("saldo simulado", async () => cents(await cell(1, 14)) === cents(before) - 100000);
  // The chart shows it; its figures stand in a table too.
  await keys(page, "Control+ArrowLeft", "Control+PageDown", "Control+PageDown");
  await page.locator(".chart-bar").first().waitFor({ state: "attached" });
  const line = page.getByRole("table", { name: "Análise de Caixa" }).getByRole("row").nth(2);
  assert.equal((await line.getByRole("cell").last().textContent()).trim(), (cents(before) / 100 - 1000).toLocaleString("pt-BR", { minimumFractionDigits: 2 }));
  await picture(page, "analysis-chart");
  assert.deepEqual(await findings(page), []);
  // A figure opens as its rows, and F4 leads back.
  await keys(page, "Control+PageUp", "Control+PageUp");
  await grid(page, "Períodos").getByText("Novembro").click();
  await keys(page, "ArrowRight", "F4");
  await gathered("Lançamentos");
  await page.getByText(/Valor Receber: \d+ lançamentos, /).waitFor();
  await picture(page, "analysis-detail");
  await grid(page, "Lançamentos").getByRole("gridcell").first().click();
  await keys(page, "F4");
  await gathered("Períodos");
  await keys(page, "Alt+r");
  await readReport("Relatório de Análise de Fluxo de Caixa", "relatorio_de_analise_de_fluxo_de_caixa");
});

test("a grid is searched, sorted, added up, arranged and taken away, by keyboard alone", async () => {
  page = await begin();
  await openScreen(page, "lançamentos", "Relatório de Lançamentos");
  await keys(page, "10250-1", "Alt+c");
  await gathered("Lançamentos");
  const whole = await count("Lançamentos");
  const head = (name) => grid(page, "Lançamentos").getByRole("columnheader", { name, exact: true });
  const cells = async (at) => (await rows(page, "Lançamentos")).map((row) => row.split("|")[at]);
  await keys(page, "Tab");
  await focusIs(page, "Lançamentos");
  await keys(page, "Control+f");
  await focusIs(page, "Procurar na grade");
  await keys(page, "folha pagámento 12/2024");
  const found = page.locator(".grid-find-count").first();
  await until("achadas", async () => /^\d+ de /.test(await found.textContent()));
  assert.ok((await count("Lançamentos")) < whole / 10);
  assert.deepEqual(await findings(page), []);
  // On to the rows, which are ordered by their amounts, the greatest first.
  await keys(page, "Enter");
  await focusIs(page, "Lançamentos");
  await until("só as achadas", async () => (await rows(page, "Lançamentos")).every((row) => /FOLHA DE PAGAMENTO/.test(row) && row.includes("12/2024")));
  await keys(page, ...Array.from({ length: 7 }, () => "ArrowRight"), "Alt+ArrowUp", "Alt+ArrowUp");
  await until("ordenada", async () => (await head("Valor").getAttribute("aria-sort")) === "descending");
  const amounts = async () => (await cells(7)).map((text) => Math.round(Number(text.replaceAll(".", "").replace(",", ".")) * 100));
  await until("decrescente", async () => (await amounts()).every((amount, at, all) => at === 0 || amount <= all[at - 1]));
  await keys(page, "Home", "Shift+ArrowDown", "Shift+ArrowDown");
  const sum = (await amounts()).slice(0, 3).reduce((a, b) => a + b) / 100;
  const shown = sum.toLocaleString("pt-BR", { minimumFractionDigits: 2 });
  await page.getByText(`Valor: ${shown}`).waitFor();
  await page.getByText("3 linhas escolhidas").waitFor();
  await picture(page, "grid-sums");
  // The row on which the desk stands is the one that is seen.
  const number = (await cells(3))[2];
  await keys(page, "Escape", "Enter");
  await page.getByRole("dialog").getByText(number).first().waitFor();
  await keys(page, "Escape");
  await page.getByRole("dialog").waitFor({ state: "detached" });
  await focusIs(page, "Lançamentos");

  // The second column goes, the first one changes places; the file has what is seen.
  await keys(page, "Control+g");
  const box = page.getByRole("dialog", { name: "Colunas: Lançamentos" });
  await box.waitFor();
  assert.deepEqual(await findings(page), []);
  await keys(page, "ArrowDown", " ", "ArrowUp", "Control+ArrowDown", "Control+ArrowDown");
  await picture(page, "grid-columns");
  const download = page.waitForEvent("download");
  await keys(page, "c");
  const file = await download;
  assert.equal(file.suggestedFilename(), "relatorio_de_lancamentos_20261120.csv");
  const lines = readFileSync(await file.path(), "utf8").trimEnd().split("\r\n");
  assert.match(lines[0], /^\uFEFFVencimento;Lançamento;Número;/);
  assert.equal(lines.length - 1, await count("Lançamentos"));
  await box.waitFor({ state: "detached" });
  await page.getByText("foi entregue ao navegador").waitFor();
  await head("Contabilização").waitFor({ state: "detached" });

  // It is so on the next day too, until it is restored; the search is over with Escape.
  await focusIs(page, "Lançamentos");
  await page.reload();
  await head("Vencimento").waitFor();
  assert.equal(await head("Contabilização").count(), 0);
  await keys(page, "Control+g", "Alt+r", "Escape");
  await head("Contabilização").waitFor();
  await keys(page, "Escape");
  await until("todas", async () => (await count("Lançamentos")) === whole);
  assert.equal(await page.getByRole("textbox", { name: "Procurar na grade" }).count(), 0);
});
