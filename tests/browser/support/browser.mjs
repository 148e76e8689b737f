// The system's Chromium, and a page at a desk.
import assert from "node:assert/strict";
import { existsSync, mkdirSync } from "node:fs";
import { createRequire } from "node:module";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

export const root = join(dirname(fileURLToPath(import.meta.url)), "..", "..", "..");
const require = createRequire(join(root, "web", "package.json"));
const { chromium } = require("playwright-core");
export const axeSource = require.resolve("axe-core/axe.min.js");
export const dist = join(root, "web", "dist");

const kFlags = ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking", "--disable-component-update", "--disable-sync"];

export function launch() {
  const executablePath = ["/usr/bin/chromium", "/usr/bin/chromium-browser"].find((path) => existsSync(path));
  return chromium.launch({ executablePath, args: kFlags });
}

export async function openPage(browser, url, { dark = false, width = 1366, height = 650, scale = 1 } = {}) {
  const context = await browser.newContext({ viewport: { width: Math.round(width / scale), height: Math.round(height / scale) }, deviceScaleFactor: scale, colorScheme: dark ? "dark" : "light", locale: "pt-BR" });
  const page = await context.newPage();
  page.faults = [];
  // What went to the desk through the door.
  page.sent = [];
  page.on("websocket", (link) => link.on("framesent", ({ payload }) => page.sent.push(JSON.parse(payload))));
  page.on("console", (message) => {
    if (message.type() === "error" && !/Failed to load resource|WebSocket connection/.test(message.text())) page.faults.push(message.text());
  });
  page.on("pageerror", (error) => page.faults.push(error.message));
  await page.goto(url);
  return page;
}

export async function logIn(page, password = "cafe com acucar") {
  await page.getByLabel("Usuário").fill("ana");
  await page.getByLabel("Senha").fill(password);
  await page.keyboard.press("Enter");
}

// Opens a screen by a few letters.
export async function openScreen(page, letters, caption) {
  await page.getByRole("button", { name: "Telas" }).waitFor();
  // A box that is just going keeps the key to itself.
  const open = () => page.evaluate(() => document.activeElement?.getAttribute("aria-label") === "Procurar tela");
  for (let tries = 0; tries < 20 && !(await open()); ++tries) {
    await page.keyboard.press("Control+Alt+m");
    await open().then((there) => there || new Promise((resolve) => setTimeout(resolve, 100 * tries)));
  }
  await focusIs(page, "Procurar tela");
  await page.keyboard.type(letters);
  await page.keyboard.press("Enter");
  await page.getByRole("tab", { name: caption }).first().waitFor();
}

// Keys by name, which `page.strokes` counts, other texts typed letter by letter. A shortcut is pressed by whoever sees
// what he presses it for: once the desk has answered what went before.
export async function keys(page, ...list) {
  for (const key of list) {
    if (/^(Alt|Control)\+./.test(key)) await until(`resposta antes de ${key}`, () => page.evaluate(() => !document.documentElement.classList.contains("is-waiting")));
    if (key.length > 1 && /^(Tab|Enter|Escape|F\d+|Arrow\w+|Page\w+|Home|End|Delete|Shift\+\w+|Alt\+\w+|Control\+\w+)$/.test(key)) {
      page.strokes = (page.strokes ?? 0) + 1;
      await page.keyboard.press(key);
    } else await page.keyboard.type(key);
  }
}

// Waits for what the desk or the page comes to.
export async function until(what, check) {
  const end = Date.now() + 30_000;
  for (;;) {
    if (await check()) return;
    if (Date.now() > end) assert.fail(`nunca: ${what}`);
    await new Promise((resolve) => setTimeout(resolve, 10));
  }
}

// The field, button or grid that has the browser's focus, by what a person reads on it.
export const focusIs = (page, name) => until(`foco em ${name}`, () => page.evaluate((label) => document.activeElement?.getAttribute("aria-label") === label || document.activeElement?.labels?.[0]?.textContent === label || document.activeElement?.textContent === label, name));

const valueOf = (page, name) => page.getByRole("textbox", { name, exact: true }).locator("visible=true").last().inputValue();
// Waits until a field shows a text.
export const shows = (page, name, value) => until(`${name} = ${value}`, async () => (await valueOf(page, name)) === value);
// Waits until any field shows it.
export const described = (page, text) => until(text, () => page.evaluate((wanted) => [...document.querySelectorAll("input, output")].some((one) => one.value === wanted), text));

// A message of the desk, closed with Enter.
export async function told(page, text) {
  const box = page.getByRole("alertdialog");
  await box.getByText(text).waitFor();
  await keys(page, "Enter");
  await box.waitFor({ state: "detached" });
}

// A question, answered by a key and gone.
export async function answered(page, text, key) {
  const box = page.getByRole("alertdialog").or(page.getByRole("dialog")).first();
  await box.getByText(text).first().waitFor();
  await keys(page, key);
  await box.waitFor({ state: "detached" });
}

// Chooses the one row of the ledger's own list that bears a document.
export async function findMovement(page, document) {
  await keys(page, "Alt+c");
  await page.getByRole("dialog").waitFor();
  await keys(page, document);
  await page.getByText("1 linha").waitFor();
  await keys(page, "Enter");
  await shows(page, "Documento", document);
}

// Opens the ledger, ready to begin a movement.
export async function openLedger(page) {
  await openScreen(page, "corr", "Movimento de Contas Correntes");
  await focusIs(page, "Incluir");
}

// The grid of a name in sight, and the rows that it shows once they are there, cells joined by "|".
export const grid = (page, name) => page.getByRole("grid", { name, exact: true }).locator("visible=true");
export async function rows(page, name) {
  const one = grid(page, name);
  let there = null;
  // In one look: a change that comes in between makes the rows wait for their cells again.
  const seen = (grid) =>
    grid.querySelector(".grid-row.is-loading") === null ? [...grid.querySelectorAll(".grid-row")].map((row) => [...row.children].map((cell) => cell.textContent).join("|")) : null;
  await until(`linhas de ${name}`, async () => (there = await one.evaluate(seen)) !== null);
  return there;
}
export async function rowsAre(page, name, wanted) {
  let there = [];
  const same = async () => (there = await rows(page, name)).join(";") === wanted.join(";");
  await until(`${name}: ${wanted.join(";")}`, same).catch((error) => {
    throw new Error(`${error.message}, mas ${there.join(";")}`);
  });
}

// Logs in at a desk.
export async function enter(browser, desk, options = {}) {
  const page = await openPage(browser, desk.url, options);
  await page.getByLabel("Empresa").locator("option").first().waitFor({ state: "attached" });
  await logIn(page);
  await page.getByRole("button", { name: "Telas" }).waitFor();
  return page;
}

// Where the page's pictures go, if anywhere.
export async function picture(page, name) {
  const folder = process.env.ORV_PICTURES;
  if (!folder) return;
  mkdirSync(folder, { recursive: true });
  await page.screenshot({ path: join(folder, `${name}.png`) });
}

// Serious findings of axe-core, as texts.
export async function findings(page) {
  if (!(await page.evaluate(() => "axe" in window))) {
    const { readFileSync } = await import("node:fs");
    await page.evaluate(readFileSync(axeSource, "utf8"));
  }
  const result = await page.evaluate(() => window.axe.run(document, { resultTypes: ["violations"] }));
  return result.violations
    .filter((one) => ["serious", "critical"].includes(one.impact))
    .map((one) => `${one.id}: ${one.help}: ${one.nodes.map((node) => node.html.slice(0, 160)).slice(0, 3).join(" | ")}`);
}
