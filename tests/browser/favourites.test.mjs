// Filters under names, favourite reports and the chart beside the rows, by keyboard alone.
import assert from "node:assert/strict";
import { test } from "node:test";
import { findings, focusIs, grid, keys, openScreen, picture, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

const begin = deskOfTests();

test("filters are kept and used, a report becomes a favourite, and the chart shows its figures", async () => {
  const page = await begin();
  const text = (name) => page.getByRole("textbox", { name, exact: true }).first().inputValue();
  await openScreen(page, "lançamentos", "Relatório de Lançamentos");
  await keys(page, "10250-1", "Alt+c");
  await until("linhas", async () => Number(await grid(page, "Lançamentos").getAttribute("aria-rowcount")) > 1);

  // The chart takes room only when it is asked for.
  const button = page.getByRole("button", { name: /gráfico/i });
  const height = async () => (await grid(page, "Lançamentos").boundingBox()).height;
  const before = await height();
  await keys(page, `Alt+${(await button.getAttribute("aria-keyshortcuts")).slice(-1).toLowerCase()}`);
  await page.locator(".part-picture .chart-bar").first().waitFor();
  const figures = page.getByRole("region", { name: "Números do gráfico" });
  assert.match(await figures.innerText(), /Entradas\s+Saídas\s+Saldo/);
  assert.ok((await height()) < before);
  await picture(page, "statement-chart");
  assert.deepEqual(await findings(page), []);
  await page.emulateMedia({ colorScheme: "dark" });
  await picture(page, "statement-chart-dark");
  assert.deepEqual(await findings(page), []);
  await page.emulateMedia({ colorScheme: "light" });
  await keys(page, `Alt+${(await button.getAttribute("aria-keyshortcuts")).slice(-1).toLowerCase()}`);
  await until("fechado", async () => (await height()) === before);

  // Filters under a name, used again.
  const filters = page.getByRole("button", { name: "Filtros guardados" });
  const key = `Alt+${(await filters.getAttribute("aria-keyshortcuts")).slice(-1).toLowerCase()}`;
  await keys(page, key);
  const box = page.getByRole("dialog", { name: "Filtros: Relatório de Lançamentos" });
  await box.waitFor();
  await focusIs(page, "Nome");
  await keys(page, "Conta do Itaú", "Enter");
  await box.getByRole("option", { name: /Conta do Itaú.*Conta: 10250-1/ }).waitFor();
  await picture(page, "filters");
  assert.deepEqual(await findings(page), []);
  await keys(page, "Escape");
  await box.waitFor({ state: "detached" });
  await keys(page, "F1");
  await page.getByRole("dialog", { name: /Ajuda/ }).getByText("Filtros guardados").waitFor();
  await keys(page, "Escape");
  await page.getByRole("dialog").waitFor({ state: "detached" });
  await keys(page, "Alt+f");
  await openScreen(page, "lançamentos", "Relatório de Lançamentos");
  assert.equal(await text("Conta"), "");
  await keys(page, key);
  await box.waitFor();
  await keys(page, "1");
  await box.waitFor({ state: "detached" });
  await until("preenchida", async () => (await text("Conta")) === "10250-1");
  await focusIs(page, "Consultar");

  // The favourite prints by one key.
  await keys(page, "Enter");
  await until("linhas", async () => Number(await grid(page, "Lançamentos").getAttribute("aria-rowcount")) > 1);
  await keys(page, "Alt+i");
  const pane = page.getByRole("dialog", { name: "Relatório de Lançamentos" });
  await page.frameLocator(".report-frame").getByText("Conta: 10250-1").waitFor();
  await keys(page, "Alt+g");
  await page.getByRole("dialog", { name: "Guardar como favorito" }).waitFor();
  assert.deepEqual(await findings(page), []);
  await keys(page, "Enter");
  await page.getByText("Relatório guardado como favorito. Ctrl+Alt+F mostra os favoritos.").waitFor();
  await keys(page, "Escape");
  await pane.waitFor({ state: "detached" });
  await page.keyboard.press("Control+Alt+f");
  await page.getByRole("dialog", { name: "Relatórios favoritos" }).waitFor();
  await picture(page, "favourites");
  assert.deepEqual(await findings(page), []);
  await keys(page, "1");
  await pane.waitFor();
  await page.frameLocator(".report-frame").getByText("Conta: 10250-1").waitFor();
  await keys(page, "Escape");
});
