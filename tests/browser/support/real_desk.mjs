// The desk itself on a demo company of its own, behind a link that can be slow.
import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { existsSync, mkdtempSync, readFileSync, rmSync } from "node:fs";
import { connect, createServer } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { createInterface } from "node:readline";
import { after, afterEach, before } from "node:test";
import { dist, enter, launch, openPage, root } from "./browser.mjs";

const kProgram = process.env.ORVCC ?? ["debug", "release"].map((build) => join(root, "build", build, "bin", "orvcc")).find((path) => existsSync(path));

// A link to the port `to` that holds what passes for `delay` milliseconds, and can break and stay broken.
async function startLink() {
  const link = { delay: 0, port: 0, to: 0, broken: false };
  const sockets = new Set();
  const carry = (from, to) => {
    from.on("data", (bytes) => (link.delay === 0 ? to.write(bytes) : setTimeout(() => to.destroyed || to.write(bytes), link.delay)));
    from.on("close", () => to.destroy());
    from.on("error", () => to.destroy());
  };
  const server = createServer((near) => {
    if (link.broken) return near.destroy();
    const far = connect(link.to, "127.0.0.1");
    for (const one of [near, far]) {
      sockets.add(one);
      one.on("close", () => sockets.delete(one));
    }
    carry(near, far);
    carry(far, near);
  });
  await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
  link.port = server.address().port;
  link.drop = () => sockets.forEach((one) => one.destroy());
  link.stop = () => {
    server.close();
    link.drop();
  };
  return link;
}

// `prepare` gets the program on the database before it is served; a `scale` has some 4,000 movements.
export async function startRealDesk(prepare = () => {}, scale = 1) {
  assert.ok(kProgram, "o programa orvcc não está construído");
  const folder = mkdtempSync(join(tmpdir(), "orvcc-"));
  const database = join(folder, "demo.fdb");
  const run = (args, input = "") => execFileSync(kProgram, [...args, "--database", database], { input, encoding: "utf8" });
  // Of one day, whatever day it is: what the tests look for stands in the company's last weeks.
  run(["init", "--demo", "--scale", String(scale), "--date", "2026-11-23"]);
  run(["user", "add", "ana", "--admin"], "cafe com acucar\n");
  run(["user", "add", "leo"], "pao de queijo 7\n");
  run(["user", "grant", "leo", "TfmCC", "E"]);
  run(["lock", "set", "--account", "20418-7", "--until", "2026-11-30"]);
  prepare(run);
  let process_ = null;
  const link = await startLink();
  const end = async (signal) => {
    if (process_ === null) return 0;
    const ended = new Promise((resolve) => process_.once("exit", resolve));
    process_.kill(signal);
    process_ = null;
    return await ended;
  };
  const desk = {
    run,
    link,
    // Where browsers find it, however often it is started.
    url: `http://127.0.0.1:${link.port}`,
    async start() {
      process_ = spawn(kProgram, ["serve", "--database", database, "--listen", "127.0.0.1:0", "--data", join(folder, "data"), "--web", dist, "--log", join(folder, "log"), "--today", "2026-11-20"], { stdio: ["ignore", "pipe", "inherit"] });
      const lines = createInterface({ input: process_.stdout });
      const [line] = await new Promise((resolve, reject) => {
        lines.once("line", (text) => resolve([text]));
        process_.once("exit", (code) => reject(new Error(`orvcc serve: ${code}`)));
      });
      link.to = Number(/:(\d+) /.exec(line)[1]);
    },
    // Ended in the middle of whatever it does, and started anew.
    async crash() {
      await end("SIGKILL");
      await desk.start();
    },
    log: () => readFileSync(join(folder, "log"), "utf8"),
    // A clean end; the result is the exit code.
    stop: () => end("SIGTERM"),
    remove: () => {
      link.stop();
      rmSync(folder, { recursive: true, force: true });
    },
  };
  await desk.start();
  return desk;
}

// A desk and a browser for the tests of a file; what it gives opens a page that is logged in, one a test, over a
// link that is then `delay` ms long.
export function deskOfTests(...options) {
  let browser;
  let desk;
  let pages = [];
  before(async () => {
    [browser, desk] = await Promise.all([launch(), startRealDesk(...options)]);
  });
  after(async () => {
    await browser?.close();
    await desk?.stop();
    desk?.remove();
  });
  afterEach(async () => {
    Object.assign(desk.link, { delay: 0, broken: false });
    for (const page of pages) {
      assert.deepEqual(page.faults, []);
      await page.context().close();
    }
    pages = [];
  });
  const kept = (page) => (pages.push(page), page);
  const begin = async (delay = 0, view = {}) => {
    const page = kept(await enter(browser, desk, view));
    desk.link.delay = delay;
    return page;
  };
  // A page that stands at the log-in.
  begin.outside = async () => kept(await openPage(browser, desk.url));
  begin.link = () => desk.link;
  begin.desk = () => desk;
  return begin;
}
