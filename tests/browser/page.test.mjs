// What the page does with every screen: typing over a slow link, lost connections, grids, looks.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { described, findings, focusIs, grid, keys, openLedger, openScreen, picture, rows, shows, told, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

const begin = deskOfTests();
let page;

const field = (name) => page.getByRole("textbox", { name, exact: true }).locator("visible=true");
const button = (name) => page.getByRole("button", { name, exact: true }).locator("visible=true").last();
const sent = (verb) => page.sent.filter((one) => one.do === verb).map((one) => one.control).join(" ");
const message = () => page.getByRole("alertdialog");
const lost = () => page.getByText("Sem conexão com o servidor.");

// A ledger in which a movement is begun, `delay` ms away.
async function beginMovement(delay = 0) {
  page = await begin(delay);
  await openLedger(page);
  await keys(page, "Alt+i");
  await focusIs(page, "Conta");
}

test("a wrong password is refused, then slowed down; the right one opens the menu", async () => {
  page = await begin.outside();
  await page.getByLabel("Empresa").locator("option").first().waitFor({ state: "attached" });
  await picture(page, "login");
  assert.deepEqual(await findings(page), []);
  await page.getByLabel("Usuário").fill("leo");
  await keys(page, "Tab");
  const slow = page.getByText("Muitas tentativas.");
  for (let tries = 0; tries < 20 && !(await slow.isVisible()); ++tries) {
    await focusIs(page, "Senha");
    const answer = page.waitForResponse(/login/);
    await keys(page, "errada errada", "Enter");
    await answer;
    await page.getByText(/Usuário ou senha inválidos\.|Muitas tentativas\./).waitFor();
  }
  await slow.waitFor();
  const menu = page.getByRole("button", { name: "Telas" });
  await until("a espera passou", async () => {
    const answer = page.waitForResponse(/login/);
    await keys(page, "Control+a", "pao de queijo 7", "Enter");
    return (await answer).status() === 200;
  });
  await menu.waitFor();
  await focusIs(page, "Procurar tela");
  assert.deepEqual(await findings(page), []);
  await picture(page, "home");
});

describe("typing", () => {
  test("a refused exit keeps the focus, and what was typed ahead doesn't reach the question", async () => {
    await beginMovement(100);
    // The rest was meant for the fields that follow; its Enter must not answer a message that nobody has read.
    await keys(page, "9999", "Tab", "DOC 1", "Enter", "Enter");
    await told(page, "Conta inexistente.");
    await focusIs(page, "Conta");
    await shows(page, "Conta", "9999");
    await shows(page, "Documento", "");
    assert.doesNotMatch(sent("set"), /EdtNumDoc/);
  });

  test("a late answer doesn't overwrite what is being typed; an amount that is none stays to be put right", async () => {
    await beginMovement(120);
    await keys(page, "10250-1");
    await until("ouvido", () => sent("set") !== "");
    // The answer to the first part is under way while the second is typed.
    await keys(page, "Home", "X");
    await described(page, "BANCO DA SERRA");
    assert.equal(await field("Conta").inputValue(), "X10250-1");
    await keys(page, "Home", "Delete");
    await shows(page, "Conta", "10250-1");
    begin.link().delay = 0;
    await field("Valor").click();
    await focusIs(page, "Valor");
    await keys(page, "12a3", "Tab");
    await told(page, '"12a3" não é um valor.');
    await focusIs(page, "Valor");
    await shows(page, "Valor", "12a3");
    await keys(page, "Escape");
    await shows(page, "Valor", "");
    // Enter at once: what was typed narrows the list before it is taken.
    begin.link().delay = 60;
    await field("Conta").click();
    await focusIs(page, "Conta");
    await keys(page, "F4");
    await page.getByRole("dialog").waitFor();
    await keys(page, "33021", "Enter");
    await shows(page, "Conta", "33021-5");
    await focusIs(page, "Conta");
  });

  for (const delay of [0, 150]) {
    test(`two presses in one burst do one thing, ${delay} ms away`, async () => {
      page = await begin(delay);
      await openLedger(page);
      // Where the first one stood the second finds nothing to press, another button, or another screen.
      await button("Incluir").dblclick();
      await focusIs(page, "Conta");
      await button("Cancelar").dblclick();
      await until("cancelado", () => button("Incluir").isEnabled());
      assert.equal(sent("click"), "BitBtn1 SpeedButton1");
      await button("Transferência").dblclick();
      const box = page.getByRole("dialog");
      await box.waitFor();
      await focusIs(page, "Conta Origem");
      await box.getByRole("button", { name: "Fechar" }).last().dblclick();
      await box.waitFor({ state: "detached" });
      await focusIs(page, "Transferência");
      assert.equal(page.sent.filter((one) => ["click", "close"].includes(one.do)).length, 4);
      await keys(page, "Alt+i");
      await focusIs(page, "Conta");
    });
  }
});

describe("connection", () => {
  test("it comes back to the open question, and to what was typed; loaded anew the page finds its screens", async () => {
    await beginMovement();
    await keys(page, "9999", "Tab");
    await message().waitFor();
    const link = begin.link();
    link.broken = true;
    link.drop();
    await lost().waitFor();
    await picture(page, "lost");
    link.broken = false;
    await lost().waitFor({ state: "hidden" });
    await message().waitFor();
    assert.equal(await message().count(), 1);
    await told(page, "Conta inexistente.");
    await focusIs(page, "Conta");
    await keys(page, "Control+a", "10250");
    link.drop();
    await lost().waitFor();
    await lost().waitFor({ state: "hidden" });
    await shows(page, "Conta", "10250");
    await keys(page, "-1", "Tab", "DOC", "Tab");
    await focusIs(page, "Classe Ger.");
    await page.reload();
    await page.getByRole("tab", { name: "Movimento de Contas Correntes" }).waitFor();
    await shows(page, "Documento", "DOC");
    await shows(page, "Conta", "10250-1");
  });

  test("what was sent and never taken is sent again, once", async () => {
    await beginMovement();
    await keys(page, "10250-1", "Tab");
    await focusIs(page, "Documento");
    const link = begin.link();
    link.delay = 400;
    await keys(page, "ABC", "Tab", "1202", "Tab");
    // The first of them is on its way when the link breaks.
    link.drop();
    link.delay = 0;
    await focusIs(page, "Histórico");
    await shows(page, "Documento", "ABC");
    await shows(page, "Classe Ger.", "1202");
    await shows(page, "Conta", "10250-1");
  });
});

describe("grid", () => {
  const name = "Lançamentos";
  const whole = async () => Number(await grid(page, name).getAttribute("aria-rowcount")) - 1;
  const current = () => page.locator(".grid-row.is-current").locator("visible=true").innerText();

  test("thousands of rows are scrolled, sorted, copied; columns keep their width", async () => {
    page = await begin(30);
    await page.context().grantPermissions(["clipboard-read", "clipboard-write"]);
    await openScreen(page, "lançamentos", "Relatório de Lançamentos");
    await keys(page, "10250-1", "Alt+c");
    await until("lançamentos", async () => (await whole()) > 500);
    const all = await whole();
    const one = grid(page, name);
    await one.click();
    await keys(page, "Control+Home");
    await Promise.all(Array.from({ length: 300 }, () => page.keyboard.press("ArrowDown")));
    await page.getByText(`301 de ${all.toLocaleString("pt-BR")}`).waitFor();
    await keys(page, "Control+End");
    await page.getByText(`${all.toLocaleString("pt-BR")} de ${all.toLocaleString("pt-BR")}`).waitFor();
    let last;
    await until("a última", async () => (last = /\b\d{6}\b/.exec(await current())?.[0]) !== undefined);
    // No more rows are built than are in sight, wherever one goes.
    const built = () => one.locator(".grid-row").count();
    const most = await built();
    for (let step = 0; step <= 10; ++step) {
      await one.evaluate((grid, part) => (grid.scrollTop = (grid.scrollHeight - grid.clientHeight) * part), step / 10);
      await rows(page, name);
    }
    assert.ok((await built()) <= most + 1);
    await one.getByText(last, { exact: true }).first().waitFor();
    await keys(page, "Control+Home", "Shift+ArrowDown", "Control+c");
    const copied = () => page.evaluate(() => navigator.clipboard.readText());
    await until("copiadas", async () => (await copied()).split("\n").length === 3);
    const first = (await rows(page, name)).slice(0, 2).map((row) => row.replaceAll("|", ""));
    assert.deepEqual((await copied()).split("\n").slice(1).map((row) => row.replaceAll("\t", "")), first);
    // Rows that were never seen are fetched for it.
    for (let i = 0; i < 30; ++i) await page.keyboard.press("Shift+PageDown");
    await page.keyboard.press("Control+c");
    await until("copiadas todas", async () => (await copied()).split("\n").length > 300);
    const heading = one.getByRole("columnheader").nth(1);
    const box = await heading.boundingBox();
    await page.mouse.move(box.x + box.width, box.y + 10);
    await page.mouse.down();
    await page.mouse.move(box.x + box.width + 64, box.y + 10, { steps: 4 });
    await page.mouse.up();
    await page.reload();
    await page.locator(".grid-row.is-current").waitFor();
    const wider = await heading.boundingBox();
    assert.ok(Math.abs(wider.width - box.width - 64) < 3, `${box.width} -> ${wider.width}`);
  });

  test("a cell that is left with what it can't hold stays to be put right", async () => {
    page = await begin(60);
    await openScreen(page, "anális", "Relatório de Análise de Fluxo de Caixa");
    await keys(page, "Alt+c");
    await until("períodos", async () => (await rows(page, "Períodos")).length > 1);
    await keys(page, "Tab");
    await focusIs(page, "Períodos");
    await keys(page, "Control+Home", "ArrowDown", "Control+ArrowRight", "ArrowLeft", "12a3", "Tab");
    await told(page, '"12a3" não é um valor.');
    assert.equal(await page.locator(".grid-editor").inputValue(), "12a3");
    await keys(page, "12,5", "Enter");
    await until("mostrada", async () => /12,50/.test(await current()));
  });
});

for (const [name, view] of [["escuro", { dark: true }], ["zoom de 200 %", { scale: 2, width: 1366, height: 768 }]]) {
  test(`screens and boxes without serious findings: ${name}`, async () => {
    page = await begin(0, view);
    const look = async (what) => {
      await picture(page, `${name.replace(/\W+/g, "-")}-${what}`);
      assert.deepEqual(await findings(page), [], what);
    };
    await openLedger(page);
    await keys(page, "Alt+i", "10250-1", "Tab", "Alt+o");
    await message().waitFor();
    await look("warning");
    await keys(page, "Enter", "F4");
    await shows(page, "Conta", "10250-1");
    const sideways = await page.evaluate(() => document.querySelector(".screen:not([hidden])").scrollWidth - document.querySelector(".screen:not([hidden])").clientWidth);
    assert.ok(sideways <= 0, `a tela passa da janela em ${sideways} px`);
    await look("movement");
    await keys(page, "Alt+c");
    await until("cancelado", () => button("Incluir").isEnabled());
    await button("Consultar").click();
    await page.getByRole("dialog").waitFor();
    await look("lookup");
    await keys(page, "Escape");
    await page.locator(".layer").first().waitFor({ state: "detached" });
    await button("Transferência").click();
    await page.getByRole("dialog").waitFor();
    await look("dialog");
    await keys(page, "Escape");
    for (const [letters, caption] of [["controle de", "Controle de Cheques"], ["concil", "Conciliação"], ["extrato b", "Cadastro de Extrato Bancário"], ["anális", "Relatório de Análise de Fluxo de Caixa"]]) {
      await openScreen(page, letters, caption);
      await look(letters);
    }
    await keys(page, "Alt+c");
    await until("períodos", async () => (await rows(page, "Períodos")).length > 1);
    await keys(page, "Control+PageDown", "Control+PageDown");
    await page.locator(".chart-bar").first().waitFor({ state: "attached" });
    await look("chart");
    // Tabs by key, there and back.
    await keys(page, "Alt+PageUp");
    await page.getByRole("tab", { name: "Cadastro de Extrato Bancário", selected: true }).waitFor();
    await keys(page, "Alt+PageDown");
    await page.getByRole("tab", { name: "Relatório de Análise", selected: true }).waitFor();
    await page.keyboard.press("Control+Alt+m");
    await focusIs(page, "Procurar tela");
    await look("menu");
    await keys(page, "Escape");
  });
}
