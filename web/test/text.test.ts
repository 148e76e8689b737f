import { strict as assert } from "node:assert";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { readCaption } from "../src/text/caption.ts";
import { completeDate, fromNeutral, showDate } from "../src/text/date.ts";
import { fit } from "../src/text/match.ts";
import { addAmounts, isAmount, readAmount, showAmount, showCount } from "../src/text/money.ts";
import { periods } from "../src/text/periods.ts";
import { acceptOf } from "../src/dialogs/file.ts";
import { shownCell } from "../src/dialogs/cells.ts";
import { scale } from "../src/controls/chart_scale.ts";
import { itemByKey } from "../src/controls/choice.ts";

const today = { year: 2028, month: 2, day: 10 };

test("a date is completed from what was typed", () => {
  const cases: [string, string][] = [
    ["5", "05/02/2028"],
    ["29", "29/02/2028"],
    ["h", "10/02/2028"],
    ["5/3", "05/03/2028"],
    ["0503", "05/03/2028"],
    ["050327", "05/03/2027"],
    ["05032027", "05/03/2027"],
    ["5/3/99", "05/03/1999"],
    ["5.3.27", "05/03/2027"],
    [" 05/03/2027 ", "05/03/2027"],
    ["  /  /    ", ""],
    ["", ""],
  ];
  for (const [typed, wanted] of cases) assert.equal(completeDate(typed, today), wanted, typed);
  // What is no date stays as it was typed, for the desk to refuse.
  for (const typed of ["30", "31/4", "29/02/2027", "0", "123", "5/13", "32/01/2027", "abc", "1/2/3/4"]) {
    assert.equal(completeDate(typed, today), typed);
  }
});

test("relative periods have the days that the desk gives them", () => {
  // The desk's own tests read the same cases.
  for (const line of readFileSync("../tests/toolkit/files/periods.txt", "utf8").trimEnd().split("\n")) {
    const [today = "", code, ...days] = line.split(" ");
    const period = periods(fromNeutral(today)!).find((one) => one.code === code);
    assert.deepEqual(period?.days, days.map(fromNeutral), line);
  }
});

test("amounts are known and written in the Brazilian form", () => {
  assert.ok(isAmount("") && isAmount(" "));
  // The desk's own tests read the same cases.
  const cases = readFileSync("../tests/toolkit/files/amounts.txt", "utf8").trimEnd().split("\n");
  assert.ok(cases.length > 30);
  for (const line of cases) {
    const [typed = "", decimals, wanted = ""] = line.split("|");
    assert.equal(isAmount(typed, Number(decimals)), /\d/.test(wanted), line);
  }
  assert.equal(showAmount("1234.5600"), "1.234,56");
  assert.equal(showAmount("-0.0040"), "0,00");
  assert.equal(addAmounts(["0.1", "0.2000", "9007199254740993", "-0.0001", "x"]), "9007199254740993.2999");
  assert.equal(addAmounts(["-0.5"]), "-0.5000");
  assert.equal(addAmounts(["1.234,56", "12,5", "-3"].map(readAmount)), "1244.0600");
  assert.equal(showAmount("-1234567.005"), "-1.234.567,01");
  assert.equal(showAmount("922337203685477.5807"), "922.337.203.685.477,58");
  assert.equal(showAmount("99.995"), "100,00");
  assert.equal(showAmount("7", 0), "7");
  assert.equal(showAmount("sem valor"), "sem valor");
  assert.equal(showCount(1000000), "1.000.000");
  assert.equal(showDate("2026-11-23"), "23/11/2026");
  // A code that looks like an amount or a date is a text all the same.
  assert.equal(shownCell("1.0001", "text"), "1.0001");
  assert.equal(shownCell("2026-11-23", undefined), "2026-11-23");
});

test("captions tell their access key", () => {
  assert.deepEqual(readCaption("&Incluir"), { text: "Incluir", at: 0, key: "i" });
  assert.deepEqual(readCaption("Atenç&ão"), { text: "Atenção", at: 5, key: "a" });
  assert.deepEqual(readCaption("Débito && Crédito"), { text: "Débito & Crédito", at: -1, key: "" });
  assert.deepEqual(readCaption("Fim&"), { text: "Fim", at: -1, key: "" });
});

test("a screen is found by a few letters, the closest first", () => {
  const caption = "Movimento de Contas Correntes";
  assert.ok(fit("movi", caption) > fit("mov cor", caption));
  assert.ok(fit("mov cor", caption) > fit("mcc", caption));
  assert.ok(fit("mcc", caption) > fit("rentes", caption));
  assert.ok(fit("rentes", caption) > 0);
  assert.ok(fit("conciliacao", "Conciliação Bancária") > 0);
  assert.equal(fit("xyz", caption), 0);
});

test("small pieces of controls", () => {
  assert.equal(acceptOf("Planilhas|*.xls;*.xlsx|Texto|*.txt"), ".xls,.xlsx,.txt");
  assert.equal(acceptOf("*.ret"), ".ret");
  assert.equal(acceptOf("Planilhas|*.xlsx|Todos|*.*"), "");
  const items = ["Analítico", "&Sintético", "Por classe", "Por centro"];
  assert.equal(itemByKey("p", 2, items), 3);
  assert.equal(itemByKey("s", 0, items), 1);
  assert.equal(itemByKey("ArrowUp", 0, items), 0);
  assert.equal(itemByKey("ArrowDown", -1, items), 0);
  assert.equal(itemByKey("End", 0, []), -1);
  for (const values of [[0], [1, 2, 3], [-5, 120000], [-0.01, 0.02], []]) {
    const { low, high, ticks } = scale(values);
    assert.ok(low <= Math.min(0, ...values) && high >= Math.max(0, ...values));
    assert.ok(ticks.length >= 2 && ticks.length <= 9, String(ticks));
  }
});
