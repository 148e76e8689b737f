// A person's own corner and what stands beside a movement, by keyboard alone.
import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { tmpdir } from "node:os";
import { test, after, before } from "node:test";
import { enter, findings, focusIs, keys, launch, openLedger, openScreen, picture, rows, told, until } from "./support/browser.mjs";
import { startRealDesk } from "./support/real_desk.mjs";

let browser, desk;
before(async () => {
  [browser, desk] = await Promise.all([launch(), startRealDesk()]);
});
after(async () => {
  await browser?.close();
  await desk?.stop();
  desk?.remove();
});

const look = (page) => page.evaluate(() => ({ ...document.documentElement.dataset, back: getComputedStyle(document.body ?? document.documentElement).backgroundColor }));

test("theme, density, letters and the first screen are the person's own, on any machine", async () => {
  const page = await enter(browser, desk);
  await focusIs(page, "Procurar tela");
  await keys(page, "conta:", "Enter");
  const box = page.getByRole("dialog", { name: "Minha conta" });
  await box.getByText("Esta sessão").waitFor();
  assert.equal((await look(page)).theme, "light");
  await picture(page, "account-light");
  await keys(page, "ArrowDown", "ArrowDown", "Tab", "ArrowDown", "Tab", "ArrowDown", "Tab");
  await keys(page, "Movimento de C");
  await picture(page, "account-dark");
  assert.deepEqual(await findings(page), []);
  const { back, ...chosen } = await look(page);
  assert.deepEqual(chosen, { theme: "dark", density: "compact", letters: "large" });
  await keys(page, "Escape", "Control+a");
  await openLedger(page);
  await keys(page, "Control+PageUp", "Alt+c");
  await page.getByText(/^1 de \d+$/).waitFor();
  assert.equal((await page.locator(".grid-row").first().boundingBox()).height, 22);
  await picture(page, "ledger-dark-compact");
  assert.deepEqual(await findings(page), []);

  // Another machine: as the system until the person is known, then as he has it, with his first screen open.
  const other = await enter(browser, desk);
  await other.getByRole("tab", { name: "Movimento de Contas Correntes" }).waitFor();
  assert.equal((await look(other)).back, back);
  // This one shows it from its first paint on, before anybody has logged in.
  await page.context().clearCookies();
  await page.route("**/app.js", () => {});
  await page.goto(desk.url, { waitUntil: "commit" });
  await until("escuro antes da página", async () => (await look(page)).back === back);
  assert.deepEqual([...page.faults, ...other.faults], []);
  await page.context().close();
  await openScreen(other, "conta:", "Movimento");
  await focusIs(other, "Tema");
  await keys(other, "ArrowUp", "ArrowUp", "Tab", "ArrowUp", "Tab", "ArrowUp", "Tab", "Home", "Escape");
  await other.context().close();
});

test("who did what to a movement, and its receipts", async () => {
  const page = await enter(browser, desk);
  await openLedger(page);
  await keys(page, "Control+PageUp", "Alt+c");
  await page.getByText(/^1 de \d+$/).waitFor();
  const number = (await rows(page, "Acesso"))[0].split("|")[0];
  await page.getByRole("button", { name: `Histórico: Lançamento ${number}` }).waitFor();
  await keys(page, "F1");
  await picture(page, "record-keys");
  await page.getByRole("dialog").getByText(`Anexos: Lançamento ${number}`).waitFor();
  await keys(page, "Escape");
  const box = page.getByRole("dialog", { name: `Anexos: Lançamento ${number}` });
  const open = async () => {
    await page.keyboard.press("Control+Alt+a");
    await box.waitFor();
  };
  const give = async (name, bytes) => {
    const path = join(tmpdir(), name);
    writeFileSync(path, bytes);
    await keys(page, "Alt+i");
    await focusIs(page, "Procurar no computador…");
    // The box that was answered may still keep the key to itself.
    let chooser;
    await until("a escolha", async () => ([chooser] = await Promise.all([page.waitForEvent("filechooser", { timeout: 2000 }).catch(() => undefined), keys(page, "Enter")])) && chooser !== undefined);
    await chooser.setFiles(path);
  };
  await open();
  await box.getByText("Nenhum anexo neste lançamento.").waitFor();
  await give("pagina.html", "<script>alert(1)</script>");
  await told(page, "O arquivo não é um PDF nem uma imagem PNG, JPEG ou WebP inteira.");
  await open();
  await give("recibo.pdf", "%PDF-1.4\n1 0 obj <<>> endobj\n%%EOF\n");
  await box.getByRole("option", { name: /recibo\.pdf/ }).waitFor();
  await picture(page, "attachments");
  assert.deepEqual(await findings(page), []);
  const [download] = await Promise.all([page.waitForEvent("download"), keys(page, "Enter")]);
  assert.equal(download.suggestedFilename(), "recibo.pdf");
  assert.match(readFileSync(await download.path(), "latin1"), /^%PDF-1\.4/);
  await keys(page, "Escape");
  await page.getByRole("button", { name: `Anexos: Lançamento ${number} (1)` }).waitFor();

  await page.keyboard.press("Control+Alt+h");
  const history = page.getByRole("dialog", { name: `Histórico: Lançamento ${number}` });
  await history.getByText(/INCLUSAO DO ANEXO recibo\.pdf/).waitFor();
  await picture(page, "history");
  assert.deepEqual(await findings(page), []);
  await keys(page, "Escape");
  await history.waitFor({ state: "detached" });

  await open();
  await keys(page, "Delete");
  await page.getByText('Deseja excluir o anexo "recibo.pdf"?').waitFor();
  await keys(page, "s");
  await box.getByText("Nenhum anexo neste lançamento.").waitFor();
  assert.deepEqual(page.faults, []);
  await page.context().close();
});
