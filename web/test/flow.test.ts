import { strict as assert } from "node:assert";
import { test } from "node:test";
import { Blocks, kBlock } from "../src/grid/blocks.ts";
import { naturalWidth, readColumn } from "../src/grid/columns.ts";
import { kTallest, Scroll } from "../src/grid/scroll.ts";
import { belongsToBrowser, type Press } from "../src/keys.ts";
import { isActions, units } from "../src/layout.ts";
import type { TreeNode } from "../src/protocol.ts";
import { OutQueue, type Item } from "../src/queue.ts";

function item(name: string, more: Partial<Item> = {}): Item {
  return { object: { do: name }, purpose: "screen", hold: true, ...more };
}

test("the queue sends one at a time, in order, rows last", () => {
  const queue = new OutQueue();
  const sent: string[] = [];
  const pump = (): void => void sent.push(queue.next()?.do ?? "-");
  queue.push(item("read", { purpose: "read", hold: false, key: "read:G" }));
  pump();
  queue.push(item("read", { purpose: "read", hold: false, key: "read:G" }));
  queue.push(item("set", { hold: false }));
  queue.push(item("key"));
  pump();
  queue.answered();
  pump();
  assert.ok(queue.holding);
  queue.answered();
  pump();
  queue.answered();
  assert.ok(!queue.holding);
  pump();
  assert.deepEqual(sent, ["read", "-", "set", "key", "read"]);
});

test("only the last may be replaced, and each is told once how it went", () => {
  const queue = new OutQueue();
  const told: string[] = [];
  const row = (n: number): Item => ({ ...item("row", { hold: false, key: "row:G", done: (how) => told.push(`${n} ${how}`) }), object: { do: "row", row: n } });
  queue.push(item("first"));
  queue.next();
  queue.push(row(1));
  queue.push(row(2));
  queue.push(item("key"));
  queue.push(row(3));
  queue.answered();
  assert.deepEqual(queue.next(), { do: "row", row: 2 });
  queue.refuse();
  queue.answered();
  assert.deepEqual(told, ["1 refused", "2 refused"]);
  assert.equal(queue.next()?.do, "key");
  // A question: what was meant for the screen goes, its answer stays.
  queue.push(item("answer", { purpose: "answer" }));
  queue.dropScreen();
  assert.deepEqual(told, ["1 refused", "2 refused", "3 dropped"]);
  queue.answered();
  assert.equal(queue.next()?.do, "answer");
  // Lost on the way: it is sent again, before what came after.
  queue.push(item("later"));
  queue.requeue();
  assert.equal(queue.next()?.do, "answer");
});

test("blocks of an older version are shown but asked for again", () => {
  const blocks = new Blocks();
  const rows = (mark: string): string[][] => Array.from({ length: kBlock }, (_, i) => [`${mark}${i}`]);
  blocks.renew(1, 1000);
  assert.deepEqual(blocks.missing(150, 320), [1, 2, 3]);
  assert.ok(blocks.store(1, 1, rows("a")));
  assert.deepEqual(blocks.missing(150, 320), [2, 3]);
  blocks.renew(2, 1000);
  assert.ok(!blocks.store(1, 2, rows("b")));
  assert.deepEqual(blocks.row(101), ["a1"]);
  assert.ok(!blocks.fresh(101));
  assert.deepEqual(blocks.missing(100, 199), [1]);
  blocks.renew(3, 150);
  assert.equal(blocks.row(180), undefined);
  assert.deepEqual(blocks.missing(0, 5000), [0, 1]);
  // However far one scrolls, memory stays.
  blocks.renew(4, 10_000_000);
  for (let at = 0; at < 5000; ++at) blocks.store(4, at, rows("c"));
  assert.ok(blocks.held < 100);
  assert.ok(blocks.row(4999 * kBlock) !== undefined);
});

test("a million rows are reached without a gap", () => {
  for (const count of [0, 1, 10, 1000, 1_000_000]) {
    const scroll = new Scroll(26, count, 400);
    const bottom = scroll.moveTo(Infinity);
    assert.ok(bottom <= kTallest);
    assert.equal(scroll.last, count - 1);
    scroll.moveTo(0);
    assert.equal(scroll.first, 0);
  }
  const scroll = new Scroll(26, 1_000_000, 400);
  assert.ok(scroll.scaled);
  // Row by row, though many rows share a place of the bar.
  scroll.reveal(499_999);
  for (let row = 500_000; row < 500_100; ++row) {
    const bar = scroll.reveal(row);
    assert.ok(scroll.first <= row && scroll.last >= row);
    assert.equal(scroll.last, row);
    // The bar's own echo of it moves nothing.
    assert.ok(!scroll.scrolled(bar));
  }
  assert.ok(scroll.scrolled(kTallest));
  assert.equal(scroll.last, 999_999);
});

test("a column is read from the desk's text", () => {
  const column = readColumn("PENDENTE\tPendente\t1\tcheck\t1\t2\tS\tN");
  assert.deepEqual(column, { field: "PENDENTE", title: "Pendente", width: 1, kind: "check", readOnly: true, decimals: 2, checked: "S", unchecked: "N" });
  assert.ok(naturalWidth(readColumn("OBS\tObservação\t1000\ttext\t0\t2\t\t")) < 400);
});

test("what belongs together stands together", () => {
  const node = (kind: string, name: string, more: Record<string, string | number | boolean> = {}): TreeNode => ({ kind, name, ...more });
  const row = [
    node("edit", "Numero", { caption: "Número", readOnly: true }),
    node("edit", "Conta", { caption: "Conta", maxLength: 13 }),
    node("lookup", "PqConta"),
    node("edit", "Banco", { caption: "Banco", readOnly: true }),
    node("edit", "NomeBanco", { readOnly: true }),
    node("check", "Marca", { caption: "Marca" }),
  ];
  const found = units(row);
  assert.deepEqual(found.map((unit) => unit.nodes.map((one) => one.name)), [["Numero"], ["Conta", "PqConta"], ["Banco", "NomeBanco"], ["Marca"]]);
  // All widths are of one lattice, so that rows align.
  for (const unit of found) assert.equal(unit.width === 0 ? 0 : (unit.width + 8) % 64, 0);
  const buttons = [node("button", "A"), { ...node("panel", "P"), layout: [[node("smallButton", "B")]] }];
  assert.ok(isActions(buttons));
  assert.ok(!isActions([...buttons, node("edit", "E")]));
});

test("the browser keeps its own keys, and no more", () => {
  const press = (key: string, more: Partial<Press> = {}): Press => ({ key, ctrl: false, alt: false, shift: false, ...more });
  for (const one of [press("F5"), press("r", { ctrl: true }), press("c", { ctrl: true }), press("F4", { alt: true })]) assert.ok(belongsToBrowser(one));
  for (const one of [press("F4"), press("F2"), press("i", { alt: true }), press("ArrowDown", { alt: true }), press("Delete", { ctrl: true })]) {
    assert.ok(!belongsToBrowser(one));
  }
});
