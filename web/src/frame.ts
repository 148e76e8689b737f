// The frame around the screens: who and where one is, the menu, a tab for each open screen.
import { el, icon } from "./dom.ts";
import { MenuBoard } from "./menu.ts";
import type { Me, MenuEntry, RecordInFront } from "./protocol.ts";

export interface FrameUser {
  open(entry: MenuEntry): void;
  goHome(): void;
  recent(): string[];
  raise(id: number): void;
  close(id: number): void;
  leave(): void;
  favourites(): void;
  menuClosed(): void;
  // Of the record in front: "history", "attachments".
  beside(verb: string): void;
}

export const recordKeys = (record: RecordInFront): { key: string; caption: string; verb: string }[] => [
  { key: "Ctrl+Alt+H", caption: `Histórico: ${record.title}`, verb: "history" },
  ...(record.attachments === undefined ? [] : [{ key: "Ctrl+Alt+A", caption: `Anexos: ${record.title}`, verb: "attachments" }]),
];

export interface Tab {
  id: number;
  caption: string;
  badge: string;
}

export class Frame {
  readonly element: HTMLElement;
  readonly main: HTMLElement;
  private tabs: HTMLElement;
  private home: MenuBoard;
  private homeBox: HTMLElement;
  // What stands beside the menu; the user works there rather than in the menu.
  readonly panel = el("div", { class: "home-panel" });
  atPanel = false;
  private over: MenuBoard;
  private overBox: HTMLElement;
  private menuButton: HTMLButtonElement;
  private status: HTMLElement;
  private beside = el("div", { class: "record", hidden: true });
  private bar: HTMLElement;
  private barTimer = 0;
  private toasts = el("div", { class: "toasts", role: "status" });

  constructor(
    me: Me,
    private user: FrameUser,
    offers: HTMLElement[],
  ) {
    const key = (letter: string): (Node | string)[] => [el("kbd", {}, "Ctrl"), " + ", el("kbd", {}, "Alt"), " + ", el("kbd", {}, letter)];
    const recent = (): string[] => user.recent();
    this.home = new MenuBoard(me.menu, recent, (entry) => user.open(entry), () => {});
    this.homeBox = el(
      "section",
      { class: "home", "aria-label": "Início" },
      el(
        "div",
        { class: "home-menu" },
        el("h1", { class: "home-title" }, me.companyName),
        this.home.element,
        el("p", { class: "home-hint" }, "De qualquer tela, ", ...key("M"), " abre este menu", ...(me.home === undefined ? [] : [" e ", ...key("I"), " volta aqui"]), "."),
      ),
      this.panel,
    );
    this.homeBox.addEventListener("focusin", (event) => (this.atPanel = this.panel.contains(event.target as Node)));
    this.over = new MenuBoard(me.menu, recent, (entry) => {
      this.closeMenu(false);
      user.open(entry);
    }, () => this.closeMenu());
    this.overBox = el("div", { class: "menu-over", hidden: true, role: "dialog", "aria-label": "Menu de telas" }, this.over.element);
    this.menuButton = el(
      "button",
      { type: "button", class: "top-button", "aria-expanded": "false", "aria-keyshortcuts": "Control+Alt+M", title: "Menu de telas (Ctrl+Alt+M)" },
      icon("menu"),
      el("span", {}, "Telas"),
    );
    this.menuButton.addEventListener("click", () => this.toggleMenu());
    const favourites = el("button", { type: "button", class: "top-button", "aria-keyshortcuts": "Control+Alt+F", title: "Relatórios favoritos (Ctrl+Alt+F)" }, icon("star"), el("span", { class: "wide-only" }, "Favoritos"));
    favourites.addEventListener("click", () => user.favourites());
    this.overBox.addEventListener("focusout", (event) => {
      const to = event.relatedTarget;
      if (to === this.menuButton) return;
      if (!(to instanceof Node) || !this.overBox.contains(to)) this.closeMenu(to === null);
    });
    this.tabs = el("div", { class: "tabs", role: "tablist", "aria-label": "Telas abertas" });
    const out = el("button", { type: "button", class: "top-button", title: "Sair" }, icon("out"), el("span", { class: "wide-only" }, "Sair"));
    out.addEventListener("click", () => user.leave());
    this.bar = el("div", { class: "busy-bar", hidden: true, role: "progressbar", "aria-label": "Aguarde" });
    const mark = [el("span", { class: "brand-mark" }), el("span", {}, "orv"), el("strong", {}, "CC")];
    const brand =
      me.home === undefined
        ? el("div", { class: "brand", "aria-label": "orvCC", role: "img" }, ...mark)
        : el("button", { type: "button", class: "brand", "aria-label": "Início", "aria-keyshortcuts": "Control+Alt+I", title: "Início (Ctrl+Alt+I)" }, ...mark);
    if (me.home !== undefined) brand.addEventListener("click", () => user.goHome());
    const top = el(
      "header",
      { class: "top" },
      brand,
      this.menuButton,
      favourites,
      this.tabs,
      this.beside,
      el(
        "div",
        { class: "who" },
        el("span", { class: "who-part who-company", title: `${me.companyName} (${me.company})` }, icon("building"), el("span", {}, me.companyName)),
        el("span", { class: "who-part", title: "Usuário" }, icon("user"), el("span", {}, me.user)),
        out,
      ),
      this.bar,
    );
    this.status = el("div", { class: "link-status", role: "status", hidden: true });
    this.main = el("main", { class: "desk" }, this.homeBox);
    this.element = el("div", { class: "frame" }, top, this.status, ...offers, this.main, this.overBox, this.toasts);
  }

  // --- The menu over the screens.

  get menuOpen(): boolean {
    return !this.overBox.hidden;
  }
  toggleMenu(): void {
    if (this.menuOpen) this.closeMenu();
    else if (!this.homeBox.hidden) this.home.focus();
    else {
      this.overBox.hidden = false;
      this.menuButton.setAttribute("aria-expanded", "true");
      this.over.reset();
      this.over.focus();
    }
  }
  closeMenu(back = true): void {
    if (!this.menuOpen) return;
    this.overBox.hidden = true;
    this.menuButton.setAttribute("aria-expanded", "false");
    if (back) this.user.menuClosed();
  }


  // --- Tabs.

  // Without an active one the user is at home.
  show(tabs: Tab[], active: number): void {
    const away = tabs.some((tab) => tab.id === active);
    if (!away && this.homeBox.hidden) this.home.reset();
    this.homeBox.hidden = away;
    // What isn't in sight isn't on the page either: its rows aren't taken for those of the screen in front.
    if (away) this.panel.remove();
    else if (!this.panel.isConnected) this.homeBox.append(this.panel);
    this.tabs.hidden = tabs.length === 0;
    this.tabs.replaceChildren(
      ...tabs.map((tab) => {
        const button = el(
          "button",
          {
            type: "button",
            role: "tab",
            class: `tab ${tab.id === active ? "is-active" : ""}`,
            "aria-selected": String(tab.id === active),
            "aria-controls": `screen-${tab.id}`,
            tabindex: tab.id === active || (!away && tab === tabs[0]) ? "0" : "-1",
            title: tab.caption,
          },
          el("span", { class: "tab-text" }, tab.caption),
          tab.badge === "" ? null : el("span", { class: "tab-badge" }, tab.badge),
        );
        const cross = el("span", { class: "tab-close", "aria-hidden": "true", title: "Fechar" }, icon("close"));
        button.append(cross);
        button.addEventListener("mousedown", (event) => event.preventDefault());
        button.addEventListener("click", (event) => {
          if (cross.contains(event.target as Node)) this.user.close(tab.id);
          else this.user.raise(tab.id);
        });
        button.addEventListener("auxclick", (event) => {
          if (event.button === 1) this.user.close(tab.id);
        });
        return button;
      }),
    );
    this.tabs.querySelector(".is-active")?.scrollIntoView({ block: "nearest", inline: "nearest" });
  }

  // What is offered beside the record in front.
  showRecord(record: RecordInFront | null): void {
    this.beside.hidden = record === null;
    if (record === null) return;
    this.beside.replaceChildren(
      ...recordKeys(record).map(({ key, caption, verb }) => {
        const files = verb === "attachments";
        const button = el(
          "button",
          { type: "button", class: "top-button", "aria-label": files ? `${caption} (${record.attachments})` : caption, "aria-keyshortcuts": key.replace("Ctrl", "Control"), title: `${caption} (${key})` },
          icon(files ? "file" : "clock"),
          el("span", {}, files ? String(record.attachments) : "Histórico"),
        );
        button.addEventListener("mousedown", (event) => event.preventDefault());
        button.addEventListener("click", () => this.user.beside(verb));
        return button;
      }),
    );
  }

  focusHome(): void {
    if (!this.homeBox.hidden) this.home.focus();
  }

  // --- Marks.

  private marked = false;
  busy(on: boolean): void {
    if (on === this.marked) return;
    this.marked = on;
    document.documentElement.classList.toggle("is-waiting", on);
    window.clearTimeout(this.barTimer);
    if (!on) {
      this.bar.hidden = true;
      document.documentElement.classList.remove("is-busy");
      return;
    }
    // What is over in a moment needs no mark.
    this.barTimer = window.setTimeout(() => {
      this.bar.hidden = false;
      document.documentElement.classList.add("is-busy");
    }, 250);
  }

  // Six seconds, a warning longer, and never in the way of a key.
  toast(kind: string, text: string): void {
    for (const same of [...this.toasts.children]) if (same.textContent === text) same.remove();
    const toast = el("div", { class: `toast toast-${kind}` }, icon(kind === "stored" ? "check" : kind === "warning" ? "warning" : "information"), el("span", {}, text));
    this.toasts.append(toast);
    while (this.toasts.childElementCount > 3) this.toasts.firstElementChild!.remove();
    window.setTimeout(() => toast.remove(), kind === "warning" ? 30_000 : 6000);
  }

  link(text: string): void {
    this.status.hidden = text === "";
    if (text !== "") this.status.replaceChildren(icon("warning"), text);
  }
}
