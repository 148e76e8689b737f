// What the acquirers of cards sent for the demo company, by keyboard alone but for the choice of the file.
import assert from "node:assert/strict";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, test } from "node:test";
import { findings, focusIs, grid, keys, openScreen, picture, shows, told, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

const folder = mkdtempSync(join(tmpdir(), "cartoes-"));
// Of each file how many of its transactions the company still has open.
const open = {};
const begin = deskOfTests((run) => {
  for (const line of run(["demo", "files", folder]).trim().split("\n")) {
    const [name, , , , , , left] = line.split("\t");
    open[name] = Number(left.split(" ")[0]);
  }
});
after(() => rmSync(folder, { recursive: true, force: true }));
let page;

const rowsIn = async (name) => Number(await grid(page, name).getAttribute("aria-rowcount")) - 1;

// From "Operadora" on: the acquirer, the kind, the file, the bank of its columns.
async function consult(acquirer, kind, file, bank) {
  await focusIs(page, "Operadora");
  await keys(page, acquirer, "Tab");
  if (kind) await keys(page, kind, "Tab");
  await focusIs(page, "Arquivo");
  const choosing = page.waitForEvent("filechooser");
  await keys(page, "Alt+u");
  await page.getByRole("dialog").waitFor();
  await keys(page, "Enter");
  await (await choosing).setFiles(join(folder, file));
  await shows(page, "Arquivo", file);
  await focusIs(page, "Arquivo");
  await keys(page, "Tab", bank, "Alt+n");
  await until(`linhas de ${file}`, async () => (await rowsIn("No arquivo")) > 2);
}

for (const [acquirer, kind, file, bank] of [
  ["Cielo", "Venda", "CIELO_EDI_VENDAS.txt", ""],
  ["Getnet", "Conta", "GETNET_PAGTOS.csv", "953"],
  ["Pagar.me", "", "PAGARME.xlsx", "956"],
]) {
  test(`${acquirer}: what ${file} has is ticked, compared and written`, async () => {
    page = await begin();
    await openScreen(page, "concil", "Conciliação");
    await keys(page, "Control+PageDown", "Control+PageDown");
    await consult(acquirer, kind, file, bank);
    const listed = await rowsIn("No sistema");
    await page.getByLabel("Conferência").locator("visible=true").click();
    await page.getByText(/linhas no arquivo, [1-9]\d* conciliadas?,/).waitFor();
    await picture(page, `cards-${acquirer.toLowerCase()}`);
    assert.deepEqual(await findings(page), []);
    if (acquirer === "Pagar.me") {
      await page.getByRole("button", { name: /Mais filtros/ }).locator("visible=true").click();
      await page.getByRole("textbox", { name: "Conta", exact: true }).locator("visible=true").fill("10250-1");
      await keys(page, "Alt+g");
      await page.getByText("Informe a data de contabilização").waitFor();
      await picture(page, "cards-date");
      await keys(page, "Enter");
    } else {
      await keys(page, "Alt+g");
    }
    if (kind !== "Venda") {
      await page.getByText("Confira os lançamentos contábeis antes de gravar.").waitFor();
      await picture(page, `cards-${acquirer.toLowerCase()}-posting`);
      await keys(page, "s");
    }
    await told(page, "Operação concluída com sucesso.");
    // What was written isn't open any more.
    await keys(page, "Alt+n");
    await until("menos linhas", async () => (await rowsIn("No sistema")) < listed);
  });
}
