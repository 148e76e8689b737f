// The page on the desk itself: a demo company, its database and its rules, by keyboard alone.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { answered, described, findMovement, findings, focusIs, keys, logIn, openLedger, picture, shows, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

const begin = deskOfTests();

async function logInAgain(page) {
  await page.getByLabel("Empresa").locator("option").first().waitFor({ state: "attached" });
  await logIn(page);
  await page.getByRole("button", { name: "Telas" }).waitFor();
}
// Begins a movement and types it in, from the account to the note, without looking.
const typePosting = (page, account, document, amount, note) =>
  keys(page, account, "Tab", document, "Tab", "1202", "Tab", "020", "Tab", amount, "Tab", "Tab", note);

describe("a movement", () => {
  for (const delay of [0, 75]) {
    test(`is posted, altered and deleted by keyboard, ${delay} ms away`, async () => {
      const page = await begin(delay);
      await openLedger(page);
      const document = `RECIBO ${delay}`;
      page.strokes = 0;
      await keys(page, "Alt+i");
      // Typed at once, whatever the way takes.
      await typePosting(page, "10250-1", document, "1250,4", "Primeiro");
      await shows(page, "Observação", "Primeiro");
      await shows(page, "Valor", "1.250,40");
      await shows(page, "Conta", "10250-1");
      await shows(page, "Documento", document);
      await described(page, "RECEITAS EVENTUAIS");
      await picture(page, `posting-${delay}`);
      await keys(page, "Control+Enter");
      await focusIs(page, "Incluir");
      await shows(page, "Documento", "");
      assert.ok(page.strokes <= 8, `${page.strokes} teclas de comando`);

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
});

test("a second window is a session of its own, and logging out ends both", async () => {
  const page = await begin();
  await openLedger(page);
  await keys(page, "Alt+i", "10250-1", "Tab");
  const other = await page.context().newPage();
  other.faults = [];
  await other.goto(begin.desk().url);
  await openLedger(other);
  await keys(other, "Alt+i", "20418-7", "Tab");
  await shows(other, "Conta", "20418-7");
  await shows(page, "Conta", "10250-1");
  await other.getByRole("button", { name: "Sair" }).click();
  await keys(other, "s");
  await other.getByLabel("Senha").waitFor();
  await page.getByLabel("Senha").waitFor();
});

test("a desk that dies takes nothing along that was typed", async () => {
  const page = await begin();
  await openLedger(page);
  await keys(page, "Alt+i");
  await typePosting(page, "10250-1", "RECIBO 7", "77,5", "Sobrevive");
  await shows(page, "Observação", "Sobrevive");
  await begin.desk().crash();
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
  const page = await begin.outside();
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
  const page = await begin();
  await openLedger(page);
  await keys(page, "Alt+i");
  await typePosting(page, "10250-1", "RECIBO 5", "4321,09", "Nunca");
  await shows(page, "Observação", "Nunca");
  const desk = begin.desk();
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
  await page.locator(".offers:not(.guide)").waitFor({ state: "hidden" });
});
