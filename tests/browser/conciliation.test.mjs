// A bank's file taken in and tied to the ledger, by keyboard alone but for the choice of the file.
import assert from "node:assert/strict";
import { test } from "node:test";
import { answered, findings, focusIs, keys, openLedger, openScreen, picture, rows, rowsAre, shows, told, until } from "./support/browser.mjs";
import { deskOfTests } from "./support/real_desk.mjs";

const kOfx = `OFXHEADER:100
DATA:OFXSGML
<OFX><SIGNONMSGSRSV1><SONRS><DTSERVER>20261120080000[-3:BRT]</SONRS></SIGNONMSGSRSV1>
<BANKMSGSRSV1><STMTTRNRS><STMTRS><BANKACCTFROM><BANKID>0903<ACCTID>330215</BANKACCTFROM>
<BANKTRANLIST>
<STMTTRN>
<TRNTYPE>CREDIT
<DTPOSTED>20261120
<TRNAMT>1234.56
<FITID>N777
<CHECKNUM>000777
<MEMO>DEPÓSITO
</STMTTRN>
</BANKTRANLIST></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>
`;

const begin = deskOfTests();
let page;

test("a file is loaded, looked over, confirmed, and its line tied to a movement and untied", async () => {
  page = await begin();
  await openLedger(page);
  await keys(page, "Alt+i", "33021-5", "Tab", "000777", "Tab", "1202", "Tab", "020", "Tab", "1234,56", "Tab", "ArrowLeft", "Tab");
  await focusIs(page, "Observação");
  await keys(page, "Depósito");
  await shows(page, "Observação", "Depósito");
  await keys(page, "Alt+o");
  await focusIs(page, "Incluir");

  await openScreen(page, "extrato b", "Cadastro de Extrato Bancário");
  await keys(page, "Control+PageDown", "Control+PageDown");
  await focusIs(page, "Pasta");
  const choosing = page.waitForEvent("filechooser");
  await keys(page, "Alt+p");
  await page.getByRole("dialog").waitFor();
  await picture(page, "statement-file");
  await keys(page, "Enter");
  await (await choosing).setFiles({ name: "banco.ofx", mimeType: "application/x-ofx", buffer: Buffer.from(kOfx) });
  await shows(page, "Arquivo", "banco.ofx");
  await focusIs(page, "Procurar...");
  await keys(page, "Tab", "Tab", "Tab", "33021-5", "Alt+r");
  await told(page, "Arquivo carregado com sucesso.");
  await page.getByText("1 linha carregada.").waitFor();
  await rowsAre(page, "Importação", ["000777|20/11/2026|1.234,56|C|DEPÓSITO"]);
  await picture(page, "statement-review");
  assert.deepEqual(await findings(page), []);
  await keys(page, "Alt+c");
  await told(page, "Arquivo importado com sucesso.");
  await rowsAre(page, "Importação", []);

  const both = () => until("movimento e linha", async () => (await rows(page, "Movimento")).length === 1 && (await rows(page, "Extrato")).length === 1);
  await openScreen(page, "concil", "Conciliação");
  await keys(page, "33021-5", "Alt+m", "Tab", "000777", "Alt+c");
  await both();
  await focusIs(page, "Consultar");
  await keys(page, "Tab");
  await focusIs(page, "Movimento");
  await keys(page, " ");
  await shows(page, "Diferença", "1.234,56");
  await page.getByText("Faltam 1.234,56").waitFor();
  await keys(page, "End", "Tab");
  await focusIs(page, "Extrato");
  await keys(page, " ");
  await shows(page, "Diferença", "0,00");
  await picture(page, "workbench-ticked");
  assert.deepEqual(await findings(page), []);
  await page.getByText("Pode conciliar").waitFor();
  await keys(page, "Control+Enter");
  await rowsAre(page, "Movimento", []);
  await rowsAre(page, "Extrato", []);
  // Tied, both stand among the reconciled ones, and are taken apart again.
  const status = (text) => until(`status ${text}`, () => page.evaluate((wanted) => document.activeElement?.closest("label")?.textContent === wanted || document.activeElement?.getAttribute("aria-label") === wanted, text));
  await focusIs(page, "Conciliar");
  await keys(page, "Alt+f");
  await page.getByRole("tab", { name: "Conciliação", exact: true }).waitFor({ state: "detached" });
  await openScreen(page, "concil", "Conciliação");
  await focusIs(page, "Conta");
  await keys(page, "33021-5", "Tab");
  await status("A conciliar");
  await keys(page, "ArrowLeft");
  await status("Conciliados");
  await keys(page, "Tab", "Tab", "000777", "Alt+c");
  await both();
  await picture(page, "workbench-tied");
  await keys(page, "Alt+v");
  await answered(page, "Tem certeza que deseja voltar conciliação?", "s");
  await rowsAre(page, "Movimento", []);
  await rowsAre(page, "Extrato", []);
  await picture(page, "workbench-untied");

  // The line by itself: posted by the quick entry, tied, and kept as a rule.
  await keys(page, "Alt+f");
  await page.getByRole("tab", { name: "Conciliação", exact: true }).waitFor({ state: "detached" });
  await openScreen(page, "concil", "Conciliação");
  await keys(page, "33021-5", "Alt+c");
  await focusIs(page, "Consultar");
  await keys(page, "Tab", "End", "Tab");
  await focusIs(page, "Extrato");
  await keys(page, "Control+End", "Alt+h");
  await focusIs(page, "Classe Ger.");
  await keys(page, "1202", "Tab", "020", "Tab");
  await focusIs(page, "Observação");
  await picture(page, "workbench-line");
  assert.deepEqual(await findings(page), []);
  await keys(page, "Control+Enter");
  await answered(page, /./, "s");
  await page.getByText(/gravado e conciliado com a linha/).waitFor();
  await picture(page, "workbench-line-tied");
  await keys(page, "Alt+s");
  await rowsAre(page, "Regras do Extrato", ["DEPÓSITO|C|||33021-5|1202|020"]);
  await picture(page, "workbench-rules");
});
