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
  assert.equal(file.suggestedFilename(), `${name}.pdf`);
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
  await readReport("Relatório de Lançamentos", "WccFluxo");
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
  await readReport("Relatório de Estatística de Caixa", "WCCEstatistica");
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
  await readReport("Relatorio de Resultado Mensal - Conta Corrente", "WResultOrcaMes");
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
  const last = async () => (await rows(page, "Saldos"))[1].split("|")[1];
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
  await readReport("Relatório de Projeção de Fluxo", "WRelPrevFluxo");
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
  await readReport("Relatório de Análise de Fluxo de Caixa", "WCCAnaliseFluxo");
});
