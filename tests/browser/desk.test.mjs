// The page on the desk itself: a demo company, its database and its rules, by keyboard alone.
import assert from "node:assert/strict";
import { after, afterEach, before, describe, test } from "node:test";
import { answered, described, enter as logInAt, findMovement, findings, focusIs, keys, launch, logIn, openLedger, openPage, picture, shows, told, until } from "./support/browser.mjs";
import { startRealDesk } from "./support/real_desk.mjs";

let browser;
let desk;
let pages = [];

before(async () => {
  [browser, desk] = await Promise.all([launch(), startRealDesk()]);
});
after(async () => {
  await browser?.close();
  await desk?.stop();
  desk?.remove();
});
afterEach(async () => {
  desk.link.delay = 0;
  for (const page of pages) {
    assert.deepEqual(page.faults, []);
    await page.context().close();
  }
  pages = [];
});

async function enter(options) {
  const page = await logInAt(browser, desk, options);
  pages.push(page);
  return page;
}

async function logInAgain(page) {
  await page.getByLabel("Empresa").locator("option").first().waitFor({ state: "attached" });
  await logIn(page);
  await page.getByRole("button", { name: "Telas" }).waitFor();
}
// Begins a movement and types it in, from the account to the note, without looking.
const typePosting = (page, account, document, amount, note) =>
  keys(page, account, "Tab", document, "Tab", "Tab", "Tab", "Tab", "1202", "Tab", "020", "Tab", "Tab", amount, "Tab", "Tab", note);

describe("a movement", () => {
  for (const delay of [0, 75]) {
    test(`is posted, altered and deleted by keyboard, ${delay} ms away`, async () => {
      const page = await enter();
      desk.link.delay = delay;
      await openLedger(page);
      const document = `RECIBO ${delay}`;
      await keys(page, "Alt+i");
      // Typed at once, whatever the way takes.
      await typePosting(page, "10250-1", document, "1250,4", "Primeiro");
      await shows(page, "Observação", "Primeiro");
      await shows(page, "Valor", "1.250,40");
      await shows(page, "Conta", "10250-1");
      await shows(page, "Documento", document);
      await described(page, "RECEITAS EVENTUAIS");
      await picture(page, `posting-${delay}`);
      await keys(page, "Alt+o");
      await focusIs(page, "Incluir");
      await shows(page, "Documento", "");

      await findMovement(page, document);
      await keys(page, "Alt+a");
      await focusIs(page, "Vencimento");
      await keys(page, "5", "Tab");
      await shows(page, "Vencimento", "05/11/2026");
      await keys(page, "Tab", "Tab", "Tab", "750", "Alt+o");
      await focusIs(page, "Incluir");

      await findMovement(page, document);
      await shows(page, "Valor", "750,00");
      await keys(page, "Alt+e");
      await focusIs(page, "Sim");
      await picture(page, `deletion-${delay}`);
      await answered(page, "Deseja eliminar este Registro?", "s");
      await shows(page, "Documento", "");
      await keys(page, "Alt+c");
      await page.getByRole("dialog").waitFor();
      await keys(page, document);
      await page.getByText("0 linhas").waitFor();
      await keys(page, "Escape");
    });
  }

  test("is refused with the focus where it is to be put right", async () => {
    const page = await enter();
    await openLedger(page);
    await keys(page, "Alt+i", "10250-1", "Tab", "Alt+o");
    await told(page, "Valor Inválido.");
    await focusIs(page, "Valor");
    await keys(page, "10", "Alt+o");
    await told(page, "Classe Gerencial Inválida.");
    await focusIs(page, "Classe Ger.");
    await keys(page, "9999", "Tab");
    await page.getByRole("alertdialog").waitFor();
    await picture(page, "refusal");
    await keys(page, "Enter");
    await focusIs(page, "Classe Ger.");
    // Left empty, the field offers what there is.
    await keys(page, "Delete", "Tab");
    const list = page.getByRole("dialog");
    await list.waitFor();
    await picture(page, "lookup");
    await keys(page, "EVENTUAIS");
    await list.getByText("1 linha").waitFor();
    await keys(page, "Enter");
    await list.waitFor({ state: "detached" });
    await described(page, "RECEITAS EVENTUAIS");
    await keys(page, "Alt+o");
    await told(page, "Histórico Inválido.");
    await focusIs(page, "Histórico");
    await keys(page, "020", "Alt+o");
    await told(page, "Documento Inexistente.");
    await focusIs(page, "Documento");
    await keys(page, "Shift+Tab");
    await focusIs(page, "Conta");
    await keys(page, "20418-7", "Tab");
    // The account's period is closed.
    await keys(page, "RECIBO 1", "Alt+o");
    await page.getByRole("alertdialog").getByText(/fechad|bloquead|conciliad/i).waitFor();
    await picture(page, "closed-period");
    await keys(page, "Enter");
    await shows(page, "Documento", "RECIBO 1");
    await keys(page, "Alt+c");
    await focusIs(page, "Incluir");
  });
});

test("a second window is a session of its own, and logging out ends both", async () => {
  const page = await enter();
  await openLedger(page);
  await keys(page, "Alt+i", "10250-1", "Tab");
  const other = await page.context().newPage();
  other.faults = [];
  await other.goto(desk.url);
  await openLedger(other);
  await keys(other, "Alt+i", "20418-7", "Tab");
  await shows(other, "Conta", "20418-7");
  await shows(page, "Conta", "10250-1");
  await other.getByRole("button", { name: "Sair" }).click();
  await keys(other, "s");
  await other.getByLabel("Senha").waitFor();
  await page.getByLabel("Senha").waitFor();
});

test("only what the user may open and do", async () => {
  const page = await openPage(browser, desk.url);
  pages.push(page);
  await page.getByLabel("Empresa").locator("option").first().waitFor({ state: "attached" });
  await page.getByLabel("Usuário").fill("leo");
  await keys(page, "Tab", "pao de queijo 7", "Enter");
  await page.getByRole("button", { name: "Telas" }).waitFor();
  await openLedger(page);
  await keys(page, "Alt+i");
  await page.getByRole("alertdialog").waitFor();
  await picture(page, "no-right");
});

test("a desk that dies takes nothing along that was typed", async () => {
  const page = await enter();
  await openLedger(page);
  await keys(page, "Alt+i");
  await typePosting(page, "10250-1", "RECIBO 7", "77,5", "Sobrevive");
  await shows(page, "Observação", "Sobrevive");
  await desk.crash();
  await logInAgain(page);
  await page.getByText("Movimento de Contas Correntes”").waitFor();
  await picture(page, "offer");
  await page.getByRole("button", { name: "Retomar" }).click();
  await shows(page, "Observação", "Sobrevive");
  await shows(page, "Valor", "77,50");
  await described(page, "RECEITAS EVENTUAIS");
  await keys(page, "Alt+o");
  await focusIs(page, "Incluir");
  await findMovement(page, "RECIBO 7");
  await shows(page, "Conta", "10250-1");
});

async function enterAsLeo() {
  const page = await openPage(browser, desk.url);
  pages.push(page);
  // The desk is just coming back when the login page opens.
  await page.route("**/companies", (route) => route.abort());
  await page.reload();
  await page.getByLabel("Usuário").fill("leo");
  await keys(page, "Tab", "pao de queijo 7", "Enter");
  await page.getByText("O servidor não responde. A página tenta de novo em instantes.").waitFor();
  await page.unroute("**/companies");
  await page.getByLabel("Empresa").locator("option").first().waitFor({ state: "attached" });
  await keys(page, "Enter");
  await page.getByRole("button", { name: "Telas" }).waitFor();
  await focusIs(page, "Procurar tela");
  return page;
}

test("the own password and sessions, by keyboard", async () => {
  const [page, other] = [await enterAsLeo(), await enterAsLeo()];
  await keys(page, "senha", "Enter");
  const box = page.getByRole("dialog", { name: "Minha conta" });
  await box.getByText("Esta sessão").waitFor();
  await keys(page, "Tab", "Tab", "Tab", "Tab", "não é esta", "Tab", "outra mesa 2026", "Tab", "outra mesa 2027", "Enter");
  await box.getByText("As duas senhas novas não são iguais.").waitFor();
  await keys(page, "Control+a", "outra mesa 2026", "Alt+t");
  await box.getByText("A senha atual não confere.").waitFor();
  await picture(page, "account");
  assert.deepEqual(await findings(page), []);
  await keys(page, "Control+a", "pao de queijo 7", "Enter");
  await box.getByText("Senha trocada.").waitFor();
  await other.getByText("Sua senha foi trocada em outra sessão. Entre de novo.").waitFor();
  await until("uma sessão", async () => (await box.locator(".own-item").count()) === 1);
  await keys(page, "Alt+e");
  await box.getByText("use Sair").waitFor();
  await keys(page, "Escape");
  await focusIs(page, "Procurar tela");
});

test("a stop tells the users, undoes what is open, and leaves a log without amounts", async () => {
  const page = await enter();
  await openLedger(page);
  await keys(page, "Alt+i");
  await typePosting(page, "10250-1", "RECIBO 5", "4321,09", "Nunca");
  await shows(page, "Observação", "Nunca");
  assert.equal(await desk.stop(), 0);
  await page.getByText("A mesa está sendo encerrada.").or(page.getByText("Sem conexão com o servidor.")).first().waitFor();
  const log = desk.log();
  assert.ok(log.split("\n").filter((line) => line !== "").every((line) => JSON.parse(line).event !== ""));
  assert.doesNotMatch(log, /4\.?321[,.]|pao de queijo|cafe com/);
  assert.match(desk.run(["audit", "--last", "60"]), /EXCLUS/);
  assert.match(desk.run(["check"]), /nada|nenhum|sem/i);
  await desk.start();
  // The page that stood at the log-in all the while finds the companies by itself.
  await logInAgain(page);
  await page.getByRole("button", { name: "Descartar" }).click();
  await page.locator(".offers").waitFor({ state: "hidden" });
});
