// The page begins: either someone is logged in, or the login page stands here.
import { logout, me, preferences } from "./api.ts";
import { Desk } from "./desk.ts";
import { applyDisplay } from "./display.ts";
import { el } from "./dom.ts";
import { LoginPage } from "./login.ts";

const kSession = "orv-session";
const root = document.getElementById("app")!;
let desk: Desk | null = null;

// A page loaded anew comes back to its session; a window that was duplicated has one of its own.
function hold(session: string): Promise<boolean> {
  if (navigator.locks === undefined) return Promise.resolve(true);
  return new Promise((resolve) => {
    void navigator.locks.request(`orv-${session}`, { ifAvailable: true }, (lock) => {
      resolve(lock !== null);
      if (lock === null) return undefined;
      // Until the window goes.
      return new Promise<void>(() => {});
    });
  });
}

function showLogin(notice = ""): void {
  desk?.destroy();
  desk = null;
  sessionStorage.removeItem(kSession);
  document.title = "Tesouraria";
  const page = new LoginPage(() => void start(), notice);
  root.replaceChildren(page.element);
  page.focus();
}

async function start(): Promise<void> {
  let who;
  try {
    who = await me();
  } catch {
    root.replaceChildren(
      el("main", { class: "login" }, el("p", { class: "login-form", role: "alert" }, "O servidor não responde. A página tenta de novo em instantes.")),
    );
    window.setTimeout(() => void start(), 3000);
    return;
  }
  if (who === null) {
    showLogin();
    return;
  }
  let session = sessionStorage.getItem(kSession);
  if (session !== null && !(await hold(session))) session = null;
  const set = await preferences();
  applyDisplay((key) => set.get(key) ?? null);
  desk?.destroy();
  desk = new Desk(root, who, {
    session,
    preferences: set,
    loggedOut: (notice) => showLogin(notice),
    leave: () => void logout().then(() => showLogin()),
  });
  let held = session;
  desk.claim = (name) => {
    if (name !== held) void hold(name);
    held = name;
  };
}

void start();
