// The page against a small desk: typing over a slow link, questions, lost connections, every kind of control.
import assert from "node:assert/strict";
import { after, afterEach, before, beforeEach, describe, test } from "node:test";
import { dist, findings, focusIs, keys, launch, logIn, openPage, openScreen, picture, until } from "./support/browser.mjs";
import { startSmallDesk } from "./support/small_desk.mjs";

let browser;
let desk;
let pages = [];

before(async () => (browser = await launch()));
after(() => browser?.close());
beforeEach(async () => {
  desk = await startSmallDesk(dist);
  pages = [];
});
afterEach(async () => {
  for (const page of pages) {
    assert.deepEqual(page.faults, []);
    await page.context().close();
  }
  await desk.stop();
});

async function enter(options = {}) {
  const page = await openPage(browser, desk.url, options);
  pages.push(page);
  if (!desk.logged) await logIn(page);
  await page.getByRole("button", { name: "Telas" }).waitFor();
  return page;
}

const field = (page, name) => page.getByRole("textbox", { name, exact: true });
const sentSets = () => desk.session().log.filter((one) => one.do === "set").map((one) => [one.control, one.value]);
describe("login", () => {
  test("a wrong password is refused, then slowed down; the right one opens the menu", async () => {
    const page = await openPage(browser, desk.url);
    pages.push(page);
    await page.getByLabel("Empresa").locator("option").nth(1).waitFor({ state: "attached" });
    await picture(page, "login");
    assert.deepEqual(await findings(page), []);
    await logIn(page, "errada");
    await page.getByText("Usuário ou senha inválidos.").waitFor();
    await focusIs(page, "Senha");
    for (const _ of [1, 2]) {
      await keys(page, "outra", "Enter");
      await page.getByText(/Usuário ou senha inválidos\.|Muitas tentativas\./).waitFor();
    }
    await page.getByText("Muitas tentativas.").waitFor();
    await keys(page, "cafe com acucar", "Enter");
    await page.getByRole("heading", { name: "Comercial Aroeira Ltda." }).waitFor();
    await focusIs(page, "Procurar tela");
    assert.deepEqual(await findings(page), []);
    await picture(page, "home");
    await page.getByRole("button", { name: "Sair" }).click();
    await page.getByLabel("Senha").waitFor();
  });
});

describe("typing", () => {
  for (const delay of [0, 150]) {
    test(`what is typed fast arrives in order, ${delay} ms away`, async () => {
      desk.delay = delay;
      const page = await enter();
      await openScreen(page, "mcc", "Movimento");
      await focusIs(page, "Conta");
      for (let round = 1; round <= 3; ++round) {
        await keys(page, "0001-5", "Tab", `DOC ${round}`, "Enter", "5", "Enter", "0212", "Tab", `${round}234,5`, "Enter", "ArrowUp", "Tab", "ArrowDown", "Tab", "texto digitado com pressa", "Alt+o");
        await page.getByRole("dialog", { name: "Confirmação contábil" }).waitFor();
        await keys(page, "Enter");
        await until("gravado", () => desk.session().posted?.length === round);
        await focusIs(page, "Conta");
        assert.deepEqual(desk.session().posted.at(-1), { conta: "0001-5", documento: `DOC ${round}`, valor: `${round}.234,50`, obs: "texto digitado com pressa" });
      }
      // Both lines count in the totals; where an account isn't there, Enter says no.
      await keys(page, "0001-5", "Tab", "SEM CONTA", "Enter", "5", "Enter", "0212", "Tab", "1234,5", "Enter", "Alt+o");
      const confirm = page.getByRole("dialog", { name: "Confirmação contábil" });
      await confirm.waitFor();
      assert.match(await confirm.locator("tfoot").innerText(), /Total a débito\s+1\.247,00\s+Total a crédito\s+1\.247,00/);
      await focusIs(page, "Não");
      await keys(page, "Enter");
      await confirm.waitFor({ state: "detached" });
      assert.equal(desk.session().posted.length, 3);
      const dates = sentSets().filter(([name]) => name === "Lancamento" || name === "Vencimento").map(([, value]) => value);
      assert.deepEqual([...new Set(dates)], ["05/11/2026", "02/12/2026"]);
    });
  }

  test("a refused exit keeps the focus, and what was typed ahead doesn't reach the question", async () => {
    desk.delay = 100;
    const page = await enter();
    await openScreen(page, "mcc", "Movimento");
    await focusIs(page, "Conta");
    // The rest was meant for the fields that follow; its Enter must not answer a message that nobody has read.
    await keys(page, "9999", "Tab", "DOC 1", "Enter", "Enter");
    const message = page.getByRole("alertdialog");
    await message.getByText("Conta inexistente.").waitFor();
    await picture(page, "message");
    await keys(page, "Enter");
    await message.waitFor({ state: "detached" });
    await focusIs(page, "Conta");
    assert.equal(await field(page, "Conta").inputValue(), "9999");
    assert.equal(await field(page, "Documento").inputValue(), "");
    assert.ok(!sentSets().some(([name]) => name === "Documento"));
  });

  test("a late answer doesn't overwrite what is being typed", async () => {
    desk.delay = 250;
    const page = await enter();
    await openScreen(page, "mcc", "Movimento");
    await focusIs(page, "Conta");
    await keys(page, "0001-5");
    await until("ouvido", () => sentSets().length > 0);
    // The answer to the first part is under way while the second is typed.
    await keys(page, "Home", "X");
    await page.getByLabel("Conta, descrição").and(page.locator("[title*='Central']")).waitFor({ state: "attached" });
    assert.equal(await field(page, "Conta").inputValue(), "X0001-5");
    await keys(page, "Escape");
    assert.equal(await field(page, "Conta").inputValue(), "0001-5");
  });

  test("an amount that is none stays to be put right, and Escape gives it up", async () => {
    const page = await enter();
    await openScreen(page, "mcc", "Movimento");
    await field(page, "Valor").click();
    await page.getByRole("dialog", { name: "Pesquisa: Conta" }).waitFor();
    await keys(page, "Escape");
    await focusIs(page, "Valor");
    await keys(page, "12a3", "Tab");
    await page.getByRole("alertdialog").getByText('"12a3" não é um valor.').waitFor();
    await keys(page, "Enter");
    await focusIs(page, "Valor");
    assert.equal(await field(page, "Valor").inputValue(), "12a3");
    await keys(page, "Escape");
    assert.equal(await field(page, "Valor").inputValue(), "");
  });

  test("lookups: F4, a search, arrows; several rows with the space bar", async () => {
    desk.delay = 60;
    const page = await enter();
    await openScreen(page, "mcc", "Movimento");
    await focusIs(page, "Conta");
    await keys(page, "F4");
    await page.getByRole("dialog", { name: "Pesquisa: Conta" }).waitFor();
    await page.getByText("Banco da Serra").waitFor();
    assert.deepEqual(await findings(page), []);
    // Enter at once: what was typed narrows the list before it is taken.
    await keys(page, "litoral", "Enter");
    await until("escolhida", async () => (await field(page, "Conta").inputValue()) === "0010-0");
    await focusIs(page, "Conta");
    await openScreen(page, "todos", "Todos os Controles");
    await page.getByRole("button", { name: "Pesquisar Contas" }).click();
    await page.getByText("Banco da Serra").waitFor();
    await keys(page, "ArrowDown", " ", "ArrowDown", " ", "Enter");
    await until("escolhidas", async () => (await field(page, "Contas").inputValue()) === "0002-3,9000-1");
  });
});

describe("a press is for what was seen", () => {
  for (const delay of [0, 150]) {
    test(`two in one burst do one thing, ${delay} ms away`, async () => {
      desk.delay = delay;
      const page = await enter();
      await openScreen(page, "cheques", "Cheques");
      const button = (name) => page.getByRole("button", { name, exact: true });
      const clicks = () => desk.session().log.filter((one) => one.do === "click").map((one) => one.control).join(" ");
      await button("Compensar").dblclick();
      await focusIs(page, "Compensar");
      await keys(page, "Enter", "Enter");
      await page.getByText("3 de 5", { exact: true }).waitFor();
      // Where the first one stood the second finds another button, or another screen.
      await button("Incluir").dblclick();
      await focusIs(page, "Confirmar");
      await keys(page, "Alt+o");
      await focusIs(page, "Incluir");
      await keys(page, "Alt+d");
      await focusIs(page, "Conta Origem");
      await button("Fechar").last().dblclick();
      await focusIs(page, "Diálogo");
      assert.equal(clicks(), "Compensar Compensar Incluir Confirmar Dialogo Fechar");
      await keys(page, "Alt+d");
      await focusIs(page, "Conta Origem");
      if (delay > 0) await keys(page, "Alt+f", "Alt+c", "Tab", "Enter");
      else await keys(page, "Alt+f");
      await focusIs(page, "Diálogo");
      assert.equal(clicks(), "Compensar Compensar Incluir Confirmar Dialogo Fechar Dialogo Fechar");
    });
  }
});

describe("connection", () => {
  test("it comes back to the open question, and to what was typed", async () => {
    const page = await enter();
    await openScreen(page, "mcc", "Movimento");
    await focusIs(page, "Conta");
    await keys(page, "9999", "Tab");
    const message = page.getByRole("alertdialog");
    await message.waitFor();
    desk.reachable = false;
    desk.drop();
    await page.getByText("Sem conexão com o servidor.").waitFor();
    await picture(page, "lost");
    desk.reachable = true;
    await page.getByText("Sem conexão com o servidor.").waitFor({ state: "hidden" });
    assert.equal(await message.count(), 1);
    await keys(page, "Enter");
    await message.waitFor({ state: "detached" });
    await focusIs(page, "Conta");
    await keys(page, "Control+a", "0001");
    desk.drop();
    await page.getByText("Sem conexão com o servidor.").waitFor();
    await page.getByText("Sem conexão com o servidor.").waitFor({ state: "hidden" });
    assert.equal(await field(page, "Conta").inputValue(), "0001");
    await keys(page, "-5", "Tab", "DOC");
    await focusIs(page, "Documento");
    assert.equal(desk.sessions.size, 1);
  });

  test("what was sent and never taken is sent again, once", async () => {
    const page = await enter();
    await openScreen(page, "mcc", "Movimento");
    await focusIs(page, "Conta");
    await keys(page, "0001-5", "Tab");
    await focusIs(page, "Documento");
    desk.delay = 400;
    await keys(page, "ABC", "Tab", "H", "Tab");
    // The first of them is on its way when the link breaks.
    desk.drop();
    desk.delay = 0;
    await focusIs(page, "Vencimento");
    assert.equal(await field(page, "Documento").inputValue(), "ABC");
    assert.deepEqual(sentSets().filter(([name]) => name === "Documento"), [["Documento", "ABC"]]);
  });

  test("the page loaded anew finds its screens; a second window is a second session", async () => {
    const page = await enter();
    await openScreen(page, "mcc", "Movimento");
    await page.reload();
    await page.getByRole("tab", { name: "Movimento de Contas Correntes" }).waitFor();
    await focusIs(page, "Conta");
    const second = await enter();
    await openScreen(second, "cem", "Cem Mil");
    assert.equal(desk.sessions.size, 2);
    assert.equal(await page.getByRole("tab", { name: "Cem Mil" }).count(), 0);
  });

  test("a session that is gone is told, and login stands there when nobody is logged in", async () => {
    const page = await enter();
    await openScreen(page, "mcc", "Movimento");
    await focusIs(page, "Conta");
    await keys(page, "F4");
    await page.getByText("Banco do Litoral").waitFor();
    await keys(page, "litoral", "Enter");
    await focusIs(page, "Conta");
    await keys(page, "Tab", "DOC 1");
    await field(page, "Valor").click();
    await focusIs(page, "Valor");
    await keys(page, "12");
    await until("guardado", () => page.evaluate(() => JSON.stringify(sessionStorage).includes("Valor")));
    desk.sessions.clear();
    desk.drop();
    await page.getByText("A sessão anterior terminou").waitFor();
    await keys(page, "Enter");
    // What stood typed in the form is offered again, the last field unsent as it was.
    await page.getByText("3 campos digitados").waitFor();
    assert.deepEqual(await findings(page), []);
    await page.keyboard.press("Control+Alt+r");
    await until("preenchida", async () => (await field(page, "Valor").inputValue()) === "12,00");
    assert.deepEqual(sentSets(), [["Conta", "0010-0"], ["Documento", "DOC 1"], ["Valor", "12"]]);
    await page.locator(".offers").waitFor({ state: "hidden" });
    await keys(page, "Alt+o");
    await page.getByRole("dialog", { name: "Confirmação contábil" }).waitFor();
    await keys(page, "Enter");
    await until("gravado", () => desk.session().posted?.length === 1);
    assert.equal(await page.evaluate(() => Object.keys(sessionStorage).filter((key) => key.startsWith("orv-drafts")).length), 0);
    await keys(page, "0001-5", "Tab");
    await focusIs(page, "Documento");
    await page.getByRole("tab", { name: "Movimento" }).locator(".tab-close").click();
    await focusIs(page, "Procurar tela");
    desk.logged = false;
    desk.drop();
    await page.getByText("Sua sessão terminou.").waitFor();
  });
});

describe("grid", () => {
  const grid = (page) => page.getByRole("grid", { name: /Mil Lançamentos|Milhão/ });
  const currentRow = (page) => page.locator(".grid-row.is-current").innerText();

  test("100,000 rows are scrolled, sorted and edited", async () => {
    desk.delay = 30;
    const page = await enter();
    await openScreen(page, "cem", "Cem Mil");
    await page.getByText("0000001").waitFor();
    await Promise.all(Array.from({ length: 300 }, () => page.keyboard.press("ArrowDown")));
    await until("linha 301", () => desk.session().top.sets.TbConsulta.row === 300);
    await page.getByText("301 de 100.000").waitFor();
    // Typed at once after a leap, into a row whose cells aren't there yet.
    await keys(page, "Control+End", "ArrowRight", "ArrowRight", "ArrowRight", "Acerto", "Tab", "12a3", "Enter");
    // What is no amount stays in its cell, to be put right.
    await page.getByRole("alertdialog").getByText('"12a3" não é um valor.').waitFor();
    await keys(page, "Enter");
    assert.equal(await page.locator(".grid-editor").inputValue(), "12a3");
    await keys(page, "12,5", "Enter", " ");
    await until("editada", () => desk.session().top.sets.TbConsulta.edits.get(99_999)?.length === 3);
    assert.deepEqual(desk.session().top.sets.TbConsulta.edits.get(99_999), [[3, "Acerto"], [4, "12,50"], [5, "N"]]);
    await until("mostrada", async () => /Acerto\s+12,50/.test(await currentRow(page)));
    await picture(page, "grid");
    await page.getByRole("columnheader", { name: "Lançamento" }).click();
    await page.getByText("0000001").waitFor();
    await keys(page, "Control+Home", "Delete");
    await until("tecla", () => desk.session().log.at(-1).key === "Delete");
    assert.deepEqual({ ...desk.session().log.at(-1), n: 0 }, { screen: desk.session().top.id, do: "key", control: "Grade1", key: "Delete", row: 0, column: "PENDENTE", n: 0 });
    assert.deepEqual(await findings(page), []);
    assert.equal(await grid(page).getAttribute("aria-rowcount"), "100001");
  });

  test("a bar reader fills row after row, over a slow link", async () => {
    desk.delay = 120;
    const page = await enter();
    await openScreen(page, "lote", "Lote");
    await page.getByRole("grid", { name: "Lote" }).waitFor();
    const bars = ["1237000490180001234565000250012346", "1341004520180004321765000260098761"];
    await keys(page, bars[0], "Enter", bars[1], "Enter");
    const { lines } = desk.session().top.sets.TbCheque;
    await until("lidos", () => lines.length === 3);
    assert.deepEqual(lines, [["001234", "237", bars[0]], ["004321", "341", bars[1]], ["", "", ""]]);
    // The columns that the user reaches are told to a desk that hears of them.
    await keys(page, "ArrowRight", "34", "Tab", "Shift+Tab", "ArrowLeft");
    const cells = () => desk.session().log.slice(-5).map((one) => [one.do, one.row, one.column]);
    await until("contado", () => JSON.stringify(cells()) === JSON.stringify([["row", 2, "BANCO"], ["cell", 2, "BANCO"], ["key", 2, "BANCO"], ["row", 2, "BANCO"], ["row", 2, "NUMERO"]]));
  });

  test("a million rows: the bar, the wheel and the keys reach every one; memory stays", async () => {
    const page = await enter();
    await openScreen(page, "milhao", "Um Milhão");
    await page.getByText("0000001").waitFor();
    const scroller = page.getByRole("grid");
    const counted = () => page.evaluate(() => document.querySelectorAll(".grid-row").length);
    const before = await counted();
    for (let step = 1; step <= 20; ++step) {
      await scroller.evaluate((one, part) => (one.scrollTop = (one.scrollHeight - one.clientHeight) * part), step / 20);
      await page.locator(".grid-row").last().waitFor();
    }
    await page.getByText("1000000", { exact: true }).waitFor();
    assert.ok((await counted()) <= before + 1);
    await scroller.hover();
    await page.mouse.wheel(0, -26 * 3);
    await page.getByText("0999985", { exact: true }).waitFor();
    await keys(page, "Control+Home");
    await page.getByText("0000001", { exact: true }).waitFor();
    await keys(page, "PageDown", "PageDown", "ArrowUp");
    await until("linha", async () => desk.session().top.sets.TbConsulta.row > 10);
    await picture(page, "million");
  });

  test("rows are copied as text, columns keep their width", async () => {
    const page = await enter();
    await page.context().grantPermissions(["clipboard-read", "clipboard-write"]);
    await openScreen(page, "cem", "Cem Mil");
    await page.getByText("0000001").waitFor();
    await keys(page, "Shift+ArrowDown", "Control+c");
    const copied = () => page.evaluate(() => navigator.clipboard.readText());
    await until("copiada", async () => (await copied()).includes("\n"));
    assert.equal(await copied(), "Lançamento\tData\tConta\tHistórico\tValor\tPendente\n0000001\t01/01/2026\t0001-5\tRecebimento de duplicata\t-1.500,00\tSim\n0000002\t02/02/2026\t0002-3\tPagamento a fornecedor\t-1.420,81\tNão");
    // Rows that were never seen are fetched for it.
    await page.keyboard.press("Control+Home");
    for (let i = 0; i < 30; ++i) await page.keyboard.press("Shift+PageDown");
    await page.keyboard.press("Control+c");
    await until("copiadas", async () => (await copied()).split("\n").length > 300);
    const box = await page.getByRole("columnheader", { name: "Conta" }).boundingBox();
    await page.mouse.move(box.x + box.width, box.y + 10);
    await page.mouse.down();
    await page.mouse.move(box.x + box.width + 64, box.y + 10, { steps: 4 });
    await page.mouse.up();
    await page.reload();
    await page.locator(".grid-row.is-current").waitFor();
    const wider = await page.getByRole("columnheader", { name: "Conta" }).boundingBox();
    assert.ok(Math.abs(wider.width - box.width - 64) < 3, `${box.width} -> ${wider.width}`);
  });
});

describe("every kind of control and dialog", () => {
  for (const [name, options] of [["claro", {}], ["escuro", { dark: true }], ["zoom de 200 %", { scale: 2, width: 1366, height: 768 }]]) {
    test(`without serious findings: ${name}`, async () => {
      const page = await enter(options);
      const look = async (what) => {
        await picture(page, `${name.replace(/\W+/g, "-")}-${what}`);
        assert.deepEqual(await findings(page), [], what);
      };
      await openScreen(page, "mcc", "Movimento");
      await focusIs(page, "Conta");
      await look("movement");
      const sideways = await page.evaluate(() => document.querySelector(".screen:not([hidden])").scrollWidth - document.querySelector(".screen:not([hidden])").clientWidth);
      assert.ok(sideways <= 0, `a tela passa da janela em ${sideways} px`);
      await openScreen(page, "todos", "Todos os Controles");
      await focusIs(page, "Texto");
      await page.locator(".chart-bar").first().waitFor({ state: "attached" });
      await look("controls");
      const boxes = { i: "information", o: "warning", p: "question", c: "input", a: "file", d: "detail", g: "dialog", r: "report" };
      for (const [key, what] of Object.entries(boxes)) {
        await keys(page, `Alt+${key}`);
        await page.locator(".layer .dialog").first().waitFor();
        await look(what);
        await keys(page, "Escape");
        await page.locator(".layer").first().waitFor({ state: "detached" });
      }
      await keys(page, "Alt+l");
      await page.getByRole("dialog", { name: "Aguarde" }).waitFor();
      await look("progress");
      await keys(page, "Escape");
      await page.getByText("Operação cancelada.").waitFor();
      await keys(page, "Enter");
      await page.keyboard.press("Control+Alt+m");
      await look("menu");
    });
  }

  test("keys: access keys, pages, options, menus, messages, tabs, files", async () => {
    const page = await enter();
    // Listened for from the start: the browser has to be told beforehand that its own window isn't wanted.
    const chosen = new Promise((resolve) => page.once("filechooser", resolve));
    await openScreen(page, "mcc", "Movimento");
    await focusIs(page, "Conta");
    await keys(page, "0001-5");
    await keys(page, "Alt+b");
    await until("opção", () => sentSets().some(([name, value]) => name === "Situacao" && value === "1"));
    await keys(page, "Alt+e");
    const question = page.getByRole("alertdialog");
    await question.getByText("Deseja eliminar este Registro?").waitFor();
    assert.equal(await page.evaluate(() => document.activeElement.textContent), "Não");
    await keys(page, "s");
    await question.waitFor({ state: "detached" });
    assert.equal(desk.session().log.at(-1).value, "yes");
    await keys(page, "Alt+a");
    await field(page, "De").waitFor();
    await page.keyboard.press("Alt+Shift+PageDown");
    await field(page, "Documento").waitFor();
    await openScreen(page, "todos", "Todos os Controles");
    await keys(page, "Alt+PageUp");
    await page.getByRole("tab", { name: "Movimento", selected: true }).waitFor();
    await keys(page, "Alt+PageDown");
    await page.getByRole("tab", { name: "Todos", selected: true }).waitFor();
    await page.getByRole("button", { name: "Ações" }).click();
    assert.deepEqual(await findings(page), []);
    await keys(page, "Enter");
    await page.getByText("Baixados.").waitFor();
    await keys(page, "Enter");
    await page.getByRole("alertdialog").waitFor({ state: "detached" });
    await keys(page, "Alt+a");
    await focusIs(page, "Procurar no computador…");
    await keys(page, "Enter");
    await (await chosen).setFiles({ name: "extrato.txt", mimeType: "text/plain", buffer: Buffer.from("12345") });
    await until("arquivo", async () => (await field(page, "Texto").inputValue()) === "extrato.txt 5");
    // Shift+Tab goes back past what takes no focus.
    await field(page, "Contas").click();
    await focusIs(page, "Contas");
    await keys(page, "Shift+Tab");
    await focusIs(page, "Texto");
    await page.getByRole("tab", { name: "Todos" }).locator(".tab-close").click();
    await page.getByRole("tab", { name: "Todos" }).waitFor({ state: "detached" });
    await focusIs(page, "Excluir");
  });
});
