// A desk of two made-up screens that speaks the door, so that the page is measured without a database. It
// keeps the door's order: an object in, objects out, then one "idle" or "waiting".
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import { extname, join, normalize } from "node:path";
import { accept } from "./websocket.mjs";
import { kMenu, makeScreen } from "./small_screens.mjs";

const kTypes = { ".html": "text/html; charset=utf-8", ".js": "text/javascript", ".css": "text/css", ".svg": "image/svg+xml" };
const kPolicy =
  "default-src 'self'; script-src 'self'; style-src 'self'; img-src 'self' data:; connect-src 'self'; object-src 'none'; base-uri 'none'; frame-ancestors 'none'; form-action 'self'";

export class SmallSession {
  constructor(id) {
    // `open` is the question that waits.
    Object.assign(this, { id, screens: [], nextScreen: 1, inbox: [], wake: null, out: () => {}, open: null, last: { on: "idle" }, received: 0, log: [], cancelled: false, uploads: new Map() });
    void this.serve();
  }
  send(object) {
    if (object.on === "idle" || object.on === "waiting") this.last = object;
    this.out(object);
  }
  post(object) {
    if (object.n !== undefined) this.received = object.n;
    if (object.do !== "read") this.log.push(object);
    if (object.do === "answer" && object.value === "cancel" && this.gathering) this.cancelled = true;
    this.inbox.push(object);
    this.wake?.();
  }
  async take() {
    while (this.inbox.length === 0) await new Promise((resolve) => (this.wake = resolve));
    return this.inbox.shift();
  }
  async serve() {
    for (;;) {
      const object = await this.take();
      try {
        await this.act(object);
      } catch (error) {
        this.send({ on: "error", text: error.message });
      }
      this.collect();
      this.send({ on: "idle" });
    }
  }
  get top() {
    return this.screens[this.screens.length - 1];
  }
  // Sends a question and returns the object that answers it.
  async ask(what, question) {
    this.collect();
    this.open = question;
    this.send(question);
    for (;;) {
      this.send({ on: "waiting", for: what });
      const object = await this.take();
      if (object.do === "read") {
        this.send(this.state(object));
      } else {
        this.open = null;
        return object;
      }
    }
  }
  message(kind, text, title, initial = "yes") {
    const question = kind === "question";
    const buttons = question ? ["yes", "no"] : ["ok"];
    return this.ask("answer", { on: "message", kind, title: title ?? this.top?.caption ?? "", text, buttons, default: question ? initial : "ok" }).then((object) => object.value);
  }
  show(name) {
    const screen = makeScreen(name, this, this.nextScreen++);
    this.screens.push(screen);
    this.send(screen.out());
    return screen;
  }
  closeTop() {
    const screen = this.screens.pop();
    this.send({ on: "closed", screen: screen.id });
  }
  async act(object) {
    if (object.do === "open") {
      const there = this.screens.find((screen) => screen.class === object.class);
      if (there === undefined) this.show(object.class);
      else {
        this.screens = [...this.screens.filter((screen) => screen !== there), there];
        this.send({ on: "front", screen: there.id });
      }
    } else if (object.do === "read") {
      this.send(this.state(object));
    } else if (object.do === "report") {
      this.send({ on: "report", id: object.id, format: object.format, address: `/relatorio/x/saldos.${object.format}` });
    } else if (object.do === "close") {
      this.closeTop();
    } else if (object.do !== "answer") {
      await this.top.act(object);
    }
  }
  collect() {
    for (const screen of this.screens) {
      const change = screen.takeChange();
      if (change !== null) this.send(change);
    }
  }
  state({ control, from = 0, count = -1 }) {
    return { on: "state", screens: this.screens.map((screen) => screen.state(control, from, count)) };
  }
  // A browser came, or came back.
  attach(out) {
    this.out = out;
    out({ on: "hello", session: this.id, received: this.received });
    for (const screen of this.screens) {
      screen.forget();
      out(screen.out());
    }
    this.collect();
    if (this.open !== null) out(this.open);
    out(this.last);
  }
}

export async function startSmallDesk(folder, { delay = 0 } = {}) {
  const sessions = new Map();
  const links = new Set();
  const desk = { delay, sessions, logged: false, failures: 0, reachable: true, preferences: new Map() };
  const json = (response, status, body) => {
    response.writeHead(status, { "Content-Type": "application/json", "Cache-Control": "no-store" });
    response.end(JSON.stringify(body));
  };
  const routes = {
    "GET /companies": (_, response) => json(response, 200, [{ suffix: "_001", name: "Comercial Aroeira Ltda." }, { suffix: "_002", name: "Aroeira Transportes" }]),
    "GET /preferences": (_, response) => json(response, 200, Object.fromEntries(desk.preferences)),
    "PUT /preferences": (body, response) => {
      const { key, value } = JSON.parse(body);
      if (value === "") desk.preferences.delete(key);
      else desk.preferences.set(key, value);
      json(response, 200, {});
    },
    "GET /relatorio/x/saldos.html": (_, response) => {
      response.writeHead(200, { "Content-Type": "text/html; charset=utf-8", "Content-Security-Policy": "default-src 'none'; frame-ancestors 'self'" });
      response.end('<!doctype html><html lang="pt-BR"><title>Saldos</title><h1>Saldos das contas</h1></html>');
    },
    "GET /me": (_, response) =>
      desk.logged
        ? json(response, 200, { user: "ana", company: "_001", companyName: "Comercial Aroeira Ltda.", menu: kMenu, today: "2026-11-23" })
        : json(response, 401, { text: "Entre com seu usuário." }),
    "POST /upload": (body, response, query) => {
      const { uploads } = sessions.get(query.get("session"));
      uploads.set(`u${uploads.size}`, body);
      json(response, 200, { upload: `u${uploads.size - 1}` });
    },
    "POST /logout": (_, response) => {
      desk.logged = false;
      json(response, 200, {});
    },
    "POST /login": (body, response) => {
      const { password } = JSON.parse(body);
      desk.logged = password === "cafe com acucar";
      if (desk.logged) return json(response, 200, {});
      desk.failures += 1;
      return desk.failures > 2
        ? json(response, 429, { text: "Muitas tentativas. Espere 30 segundos." })
        : json(response, 401, { text: "Usuário ou senha inválidos." });
    },
  };
  const server = createServer((request, response) => {
    const { pathname: path, searchParams } = new URL(request.url, "http://desk");
    const route = routes[`${request.method} ${path}`];
    if (route !== undefined) {
      let body = "";
      request.on("data", (chunk) => (body += chunk));
      request.on("end", () => route(body, response, searchParams));
      return;
    }
    try {
      const file = normalize(path === "/" ? "/index.html" : path);
      const content = readFileSync(join(folder, file));
      response.writeHead(200, { "Content-Type": kTypes[extname(file)] ?? "application/octet-stream", "Content-Security-Policy": kPolicy, "X-Content-Type-Options": "nosniff" });
      response.end(content);
    } catch {
      response.writeHead(404);
      response.end();
    }
  });
  let next = 1;
  server.on("upgrade", (request, socket) => {
    if (!desk.logged || !desk.reachable) {
      socket.end(desk.reachable ? "HTTP/1.1 401 Unauthorized\r\n\r\n" : "");
      return;
    }
    const wanted = new URL(request.url, "http://desk").searchParams.get("session");
    let session = sessions.get(wanted);
    if (session === undefined) {
      session = new SmallSession(`s${next++}`);
      sessions.set(session.id, session);
    }
    const later = (run) => (desk.delay > 0 ? setTimeout(run, desk.delay / 2) : run());
    const link = accept(
      request,
      socket,
      (text) => later(() => session.post(JSON.parse(text))),
      () => {
        links.delete(link);
        if (session.link === link) session.out = () => {};
      },
    );
    links.add(link);
    session.link = link;
    session.attach((object) => later(() => link.send(JSON.stringify(object))));
  });
  await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
  desk.url = `http://127.0.0.1:${server.address().port}/`;
  desk.drop = () => links.forEach((link) => link.drop());
  desk.session = () => [...sessions.values()].at(-1);
  desk.stop = () => {
    desk.drop();
    server.closeAllConnections?.();
    return new Promise((resolve) => server.close(resolve));
  };
  return desk;
}
