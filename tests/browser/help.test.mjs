// The help of a screen, the page of all keys, and the walk through a first posting.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { findings, focusIs, keys, openLedger, openScreen, picture, root, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

const begin = deskOfTests();
const guide = (page) => page.getByRole("status").filter({ hasText: "Primeiro lançamento" });
const step = (page, number) => guide(page).getByText(`Primeiro lançamento, ${number} de 8:`).waitFor();

test("the first log-in walks through a posting, and only the first", async () => {
  const page = await begin();
  await step(page, 1);
  await picture(page, "guide");
  assert.deepEqual(await findings(page), []);
  // It is in nobody's way.
  await focusIs(page, "Procurar tela");
  await openLedger(page);
  await step(page, 2);
  await keys(page, "Alt+i", "10250-1", "Tab");
  await step(page, 4);
  await keys(page, "RECIBO 17", "Tab", "1202", "Tab", "020", "Tab");
  await step(page, 7);
  await keys(page, "1250,4", "Tab");
  await step(page, 8);
  await picture(page, "guide-last");
  await keys(page, "Control+Enter");
  await guide(page).waitFor({ state: "detached" });
  await page.reload();
  await page.getByRole("button", { name: "Telas" }).waitFor();
  await focusIs(page, "Incluir");
  assert.equal(await guide(page).count(), 0);
  // It comes back when it is asked for, and goes again.
  await keys(page, "F1", "Alt+p");
  await step(page, 2);
  await focusIs(page, "Incluir");
  await page.keyboard.press("Control+Alt+g");
  await until("sem guia", async () => (await guide(page).count()) === 0);
});

test("F1 tells what a screen is for, its keys, and all keys, and every one of them is there", async () => {
  const page = await begin();
  await keys(page, "F1");
  const box = page.getByRole("dialog");
  await box.getByText("O menu abre qualquer tela").waitFor();
  await keys(page, "Escape");
  await openScreen(page, "resultado", "Relatório de Resultado Mensal");
  await openLedger(page);
  await keys(page, "F1");
  await box.getByText("Lança, altera, exclui").waitFor();
  for (const key of ["Ctrl+Enter", "Alt+I"]) await box.getByText(key, { exact: true }).waitFor();
  assert.deepEqual(await findings(page), []);
  await picture(page, "help");
  await keys(page, "Alt+t");
  await box.getByText("Tudo se faz pelo teclado").waitFor();
  await keys(page, "End");
  await picture(page, "help-keys");
  await keys(page, "Escape");

  await page.evaluate(() => addEventListener("keydown", (event) => (window.latest = event), { capture: true }));
  const account = page.getByRole("textbox", { name: "Conta", exact: true }).locator("visible=true");
  const places = { "Na tela": account, "Num campo": account, "Numa grade": null, "Num movimento, cheque ou linha de extrato": null, "Entre telas": null };
  const sections = readFileSync(join(root, "docs", "ajuda", "teclas.md"), "utf8").split("\n## ").slice(1);
  assert.deepEqual(sections.map((one) => one.split("\n")[0]), Object.keys(places));
  for (const section of sections) {
    const place = section.split("\n")[0];
    // Of a grid's keys the tests of grids make use.
    if (place === "Numa grade") continue;
    for (const [, list] of section.matchAll(/^- ((?:`[^`]+`(?:, )?)+):/gm)) {
      for (const [, key] of list.matchAll(/`([^`]+)`/g)) {
        // The desk may still be at the key before.
        await until(`${place}: ${key}`, async () => {
          await keys(page, "Escape");
          const there = places[place];
          if (there !== null && !(await there.isVisible())) await page.getByRole("tab", { name: "Acesso" }).click();
          if (there !== null && !(await there.focus({ timeout: 1000 }).then(() => true, () => false))) return false;
          if (key === "Escape") await keys(page, "F1");
          await page.keyboard.press(key);
          return page.evaluate(() => window.latest.defaultPrevented);
        });
      }
    }
  }
});
