// The home by keyboard alone: from a figure to its screen and back, to the register of an account and to the
// ledger, and a session taken up again.
import assert from "node:assert/strict";
import { test } from "node:test";
import { findings, focusIs, grid, keys, openScreen, picture, rows, shows, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

const begin = deskOfTests();

const inFront = (page, caption) => page.getByRole("tab", { name: caption, selected: true }).waitFor();
const home = async (page) => {
  await page.keyboard.press("Control+Alt+i");
  await grid(page, "Posição").waitFor();
};

test("each figure of the home leads to its screen, and every way leads back", async () => {
  const page = await begin();
  await grid(page, "Posição").waitFor();
  await focusIs(page, "Procurar tela");
  assert.equal(await page.getByRole("tab").count(), 0);
  const [, lowest] = await rows(page, "Posição");
  await picture(page, "home");
  assert.deepEqual(await findings(page), []);

  await keys(page, "Tab");
  await focusIs(page, "Posição");
  await keys(page, "ArrowDown", "Enter");
  await inFront(page, "Análise de Fluxo");
  const [, amount, day] = lowest.split("|");
  await page.getByText(`Menor saldo: ${amount} em ${day}.`).waitFor();
  await keys(page, "Shift+Tab");
  await home(page);
  await focusIs(page, "Posição");
  await keys(page, "Escape");
  await focusIs(page, "Procurar tela");

  // The register, by the menu; what was used last comes first there.
  await openScreen(page, "registro", "Registro da conta");
  await home(page);
  await keys(page, "Escape");
  await until("usadas há pouco", async () => (await page.getByRole("option").first().innerText()) === "Registro da conta");
  await keys(page, "Tab", "Tab", "Tab", "Tab");
  await focusIs(page, "Saldos de hoje");
  const [account] = await rows(page, "Saldos de hoje");
  await keys(page, "Enter");
  await inFront(page, "Registro da conta");
  await page.getByText(`: ${account.split("|")[2]}.`).waitFor();
  await focusIs(page, "Movimentos da conta");
  assert.deepEqual(await findings(page), []);
  // The session is taken up where it was.
  await page.reload();
  await inFront(page, "Registro da conta");
  await focusIs(page, "Movimentos da conta");
  const last = (await rows(page, "Movimentos da conta")).at(-1).split("|");
  await keys(page, "Shift+Tab", "Shift+Tab", last[3]);
  await until("uma linha", async () => (await rows(page, "Movimentos da conta")).every((row) => row.includes(last[3])));
  await keys(page, "Tab", "Tab");
  await focusIs(page, "Movimentos da conta");
  await keys(page, "Enter");
  await inFront(page, "Movimento de Contas Correntes");
  await shows(page, "Documento", last[4]);
  await home(page);
  assert.equal(await page.getByRole("tab").count(), 3);
});
