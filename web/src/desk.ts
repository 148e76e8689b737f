// The desk's page: it shows what the desk tells, sends what the user does, and keeps the focus where the desk
// has it. What is asked stands in boxes.ts, what is typed in typing.ts.
import { me as askMe, setPreference, upload } from "./api.ts";
import { Boxes, type BoxesUser } from "./boxes.ts";
import type { DeskContext } from "./context.ts";
import type { ControlView } from "./controls/control.ts";
import { TextView } from "./controls/text.ts";
import { AccountDialog } from "./dialogs/account.ts";
import type { Dialog } from "./dialogs/dialog.ts";
import { HelpDialog, type HelpOf } from "./dialogs/help.ts";
import { ErrorDialog } from "./dialogs/message.ts";
import { applyDisplay, kMenuAlone, kStart } from "./display.ts";
import { Door, type DoorUser, type Link } from "./door.ts";
import { Drafts } from "./drafts.ts";
import { Frame, type FrameUser } from "./frame.ts";
import { Guide } from "./guide.ts";
import type { Press } from "./keys.ts";
import { kAccount } from "./menu.ts";
import type { ChangeOut, In, Me, MenuEntry, Out, StateOut } from "./protocol.ts";
import type { Item } from "./queue.ts";
import { ScreenView } from "./screen.ts";
import { TakeUp, type TakeUpUser } from "./takeup.ts";
import { fromNeutral, localToday, type Day } from "./text/date.ts";
import { Typing, type TypingUser } from "./typing.ts";

// Kept once the user was walked through a posting, or didn't want to be.
const kGuide = "guia";
const kGuided = "TfmCC";
// The screens opened last, kept for the user.
const kRecent = "menu.recent";
const kMostRecent = 5;
// Milliseconds in which a second Escape is still meant for the box that has gone.
const kAfterBox = 600;

export interface DeskOptions {
  // The session to come back to, null for a new one.
  session: string | null;
  preferences: Map<string, string>;
  loggedOut: (notice: string) => void;
  leave: () => void;
}

export class Desk implements DeskContext, BoxesUser, DoorUser, FrameUser, TakeUpUser, TypingUser {
  private frame: Frame;
  private drafts: Drafts;
  private takeUp: TakeUp;
  private guide = new Guide(() => {
    this.remember(kGuide, "1");
    this.settle();
  });
  private door: Door;
  private boxes: Boxes;
  private typing: Typing;
  // From bottom to top.
  private screens: ScreenView[] = [];
  private busy = false;
  private draft: { id: number; name: string; text: string } | null = null;
  private greeted = false;
  // The home has been asked for since a screen was shown.
  private homed = false;
  // When the user answered a box: an Escape that follows was meant for it.
  private seenAt = 0;
  // A desk that is new to its user: his own first screen is still to come.
  private begins = false;
  private abort = new AbortController();

  constructor(
    private root: HTMLElement,
    private me: Me,
    private options: DeskOptions,
  ) {
    this.drafts = new Drafts(`orv-drafts:${me.user}:${me.company}`, sessionStorage);
    this.takeUp = new TakeUp(this.drafts, this);
    this.frame = new Frame(me, this, [this.takeUp.element, this.guide.element]);
    root.replaceChildren(this.frame.element);
    const { signal } = this.abort;
    this.boxes = new Boxes(root, this);
    this.typing = new Typing(this, signal);
    window.addEventListener("orv-refocus", () => this.settle(), { signal });
    this.frame.focusHome();
    this.door = new Door(this, options.session, async () => {
      try {
        return (await askMe()) !== null;
      } catch {
        return null;
      }
    });
  }

  destroy(): void {
    this.abort.abort();
    this.door.close();
    for (const screen of this.screens) screen.destroy();
    this.boxes.destroy();
    document.documentElement.classList.remove("is-busy");
    this.root.replaceChildren();
  }

  // --- DeskContext.

  send(object: In, options: Partial<Item> = {}): void {
    // A report belongs to the window, everything else to the screen that the user sees.
    const screen = this.top?.id;
    const meant = screen === undefined || object.do === "report" ? object : { screen, ...object };
    this.door.push({ object: meant, purpose: "screen", hold: true, ...options });
    this.typing.sent(options.press ?? false);
    if (object.do === "set" || object.do === "check") this.typed(this.top?.find(String(object["control"])));
    this.mark();
  }
  read(control: string, from: number, count: number, asked: Record<string, unknown> = {}): void {
    const key = `read:${control}${"sums" in asked ? ":sums" : ""}`;
    this.door.push({ object: { do: "read", control, from, count, ...asked }, purpose: "read", hold: false, key });
  }
  readFirst(control: string, from: number, count: number, asked: Record<string, unknown>, done: (answered: boolean) => void): void {
    const object = { do: "read", control, from, count, ...asked };
    this.door.push({ object, purpose: "read", hold: true, done: (outcome) => done(outcome === "answered") });
  }
  has(key: string): boolean {
    return this.door.queue.has(key);
  }
  act(run: () => void): void {
    const on = this.top;
    this.typing.later(() => on === this.top && run());
  }
  press(control: ControlView, clicks: number, run: () => void): void {
    this.typing.press(control, clicks, run);
  }
  typed(control: ControlView | undefined): void {
    const top = this.top;
    if (top === undefined || control?.screen !== top) return;
    top.touch(control);
    this.drafts.keep(top.drafted());
  }
  get holding(): boolean {
    return this.typing.holding;
  }
  get today(): Day {
    return (this.me.today !== undefined ? fromNeutral(this.me.today) : null) ?? localToday();
  }
  help(of: HelpOf): void {
    this.box((close) => {
      const walk = (): void => {
        close();
        this.walk();
      };
      return new HelpDialog(of, { close, walk });
    });
  }
  box(make: (close: () => void) => Dialog): void {
    const box: Dialog = make(() => this.boxes.close(box));
    this.boxes.show(box);
  }
  filters(): void {
    this.act(() => this.send({ do: "filters" }));
  }
  favourites(): void {
    this.typing.later(() => {
      this.top?.commit();
      this.send({ do: "favourites" });
    });
  }
  remember(key: string, value: string | null): void {
    if (value === null) this.options.preferences.delete(key);
    else this.options.preferences.set(key, value);
    void setPreference(key, value ?? "");
  }
  remembered(key: string): string | null {
    return this.options.preferences.get(key) ?? null;
  }

  // --- FrameUser.

  open(entry: MenuEntry): void {
    if (entry !== kAccount) {
      this.remember(kRecent, [entry.class, ...this.recent().filter((name) => name !== entry.class)].slice(0, kMostRecent).join(","));
      this.openScreen(entry.class);
      return;
    }
    const user = {
      remembered: (key: string) => this.remembered(key),
      set: (key: string, value: string | null) => {
        this.remember(key, value);
        if (key !== kStart) applyDisplay((one) => this.remembered(one));
      },
      loggedOut: () => this.loggedOut(),
    };
    const box: AccountDialog = new AccountDialog(this.me, user, () => this.boxes.close(box));
    this.boxes.show(box);
  }
  recent(): string[] {
    return (this.remembered(kRecent) ?? "").split(",").filter((name) => name !== "");
  }
  goHome(): void {
    if (this.me.home !== undefined && !this.top?.dialog && this.topChild !== this.home) this.openScreen(this.me.home);
    else this.settle();
  }
  raise(id: number): void {
    const screen = this.screens.find((one) => one.id === id);
    if (screen !== undefined && screen !== this.topChild) this.openScreen(screen.screenClass);
  }
  close(id: number): void {
    this.raise(id);
    this.typing.later(() => {
      const go = (): void => {
        this.top?.commit();
        this.send({ do: "close", screen: id });
      };
      const badge = this.screens.find((one) => one.id === id)?.badge ?? "";
      if (badge === "") go();
      else this.boxes.confirm("Fechar", `${badge}: o que não foi confirmado será perdido.\nDeseja fechar?`, go);
    });
  }

  // --- TakeUpUser.

  mayOpen(screenClass: string): boolean {
    return !this.top?.dialog && this.me.menu.some((entry) => entry.class === screenClass);
  }
  openScreen(screenClass: string): void {
    this.typing.later(() => {
      this.top?.commit();
      this.send({ do: "open", class: screenClass });
    });
  }
  leave(): void {
    if (this.tabbed.length === 0) {
      this.goOut();
      return;
    }
    this.boxes.confirm("Sair", "Há telas abertas. O que não foi confirmado será perdido.\nDeseja sair?", () => this.goOut());
  }
  private goOut(): void {
    this.drafts.clear();
    this.options.leave();
  }
  menuClosed(): void {
    this.settle();
  }

  // --- DoorUser.

  linkChanged(link: Link): void {
    this.frame?.link(link === "lost" ? "Sem conexão com o servidor. Tentando de novo; nada do que foi digitado se perde." : "");
  }
  loggedOut(): void {
    this.options.loggedOut("Sua sessão terminou. Entre de novo para continuar.");
  }

  received(out: Out): void {
    switch (out.on) {
      case "hello":
        this.hello(out.session);
        break;
      case "screen": {
        this.screens.find((one) => one.id === out.id)?.destroy();
        this.screens = this.screens.filter((one) => one.id !== out.id);
        this.homed = false;
        const screen: ScreenView = new ScreenView(this, out, () => this.act(() => this.send({ do: "close" })));
        const draft = this.drafts.of(out.class);
        if (draft !== undefined) screen.redraw(draft);
        this.screens.push(screen);
        if (out.class === this.me.home) {
          screen.element.setAttribute("role", "region");
          this.frame.panel.replaceChildren(screen.element);
        } else (screen.dialog ? this.root : this.frame.main).append(screen.element);
        screen.hideEmptyRows();
        this.showScreens();
        break;
      }
      case "change":
        this.changed(out);
        if (out.badge !== undefined) this.showTabs();
        break;
      case "front": {
        const screen = this.screens.find((one) => one.id === out.screen);
        if (screen === undefined) break;
        this.screens = [...this.screens.filter((one) => one !== screen), screen];
        this.showScreens();
        break;
      }
      case "closed": {
        const screen = this.screens.find((one) => one.id === out.screen);
        if (screen === undefined) break;
        this.drafts.keep({ ...screen.drafted(), fields: [] });
        screen.destroy();
        this.screens = this.screens.filter((one) => one !== screen);
        this.showScreens();
        break;
      }
      case "message":
      case "input":
      case "lookup":
      case "confirm":
      case "file":
      case "detail":
        // What was typed and sent for the screen before the question was seen must not reach what comes after it.
        this.door.queue.dropScreen();
        this.typing.drop();
        this.boxes.ask(out);
        break;
      case "report":
        this.boxes.report(out);
        break;
      case "filters": {
        if (out.left.length > 0) this.frame.toast("warning", `Não foram preenchidos: ${out.left.join(", ")}.`);
        this.boxes.filters(out, this.top?.caption ?? "", this.asking("use"));
        break;
      }
      case "favourites":
        if (this.asking("save")) this.frame.toast("stored", "Relatório guardado como favorito. Ctrl+Alt+F mostra os favoritos.");
        else this.boxes.favourites(out);
        break;
      case "attachments":
        this.boxes.attachments(out);
        break;
      case "attachment":
        this.boxes.attachment(out);
        break;
      case "progress":
        this.boxes.showProgress(out);
        break;
      case "busy":
        this.busy = out.value;
        this.mark();
        break;
      case "error":
        this.failed(out.text);
        break;
      case "note":
        this.frame.toast(out.kind, out.text);
        if (out.kind === "stored") this.guide.stored(this.top?.screenClass ?? "");
        break;
      case "state":
        this.stateRead(out);
        break;
      case "waiting":
        this.boxes.endProgress();
        this.waiting();
        break;
      case "idle":
        this.idle();
        break;
      case "ended":
        this.options.loggedOut(out.text ?? "A sessão foi encerrada.");
        break;
    }
  }

  private changed(out: ChangeOut): void {
    const screen = this.screens.find((one) => one.id === out.screen);
    if (screen === undefined) return;
    const { object, press } = this.door.queue.current ?? {};
    if (out.record !== undefined) {
      screen.record = out.record;
      this.showRecord();
    }
    const opened = screen.change(out, object?.do === "choose");
    if (opened && press && object?.["screen"] === screen.id) screen.began(String(object["control"]));
  }

  // What is answered just now is this act.
  private asking(act: string): boolean {
    return this.door.queue.current?.object["act"] === act;
  }

  private session = "";
  private hello(session: string): void {
    this.drafts.begin(session);
    const draft = this.top?.draft;
    this.draft = draft !== undefined && draft !== null && session === this.session ? { id: this.top!.id, ...draft } : null;
    if (this.greeted && session !== this.session) {
      this.typing.drop();
      if (this.tabbed.length > 0) {
        this.failed("A sessão anterior terminou enquanto não havia conexão. O que não estava confirmado não foi gravado.");
      }
    }
    const first = !this.greeted && this.options.session === null && this.remembered(kGuide) === null;
    if (first && this.me.menu.some((entry) => entry.class === kGuided)) void this.guide.begin();
    this.begins = !this.greeted && session !== this.options.session;
    this.greeted = true;
    this.homed = false;
    this.session = session;
    for (const screen of this.screens) screen.destroy();
    this.screens = [];
    this.boxes.endQuestion();
    this.boxes.endProgress();
    this.busy = false;
    this.showScreens();
    this.claim?.(session);
  }
  // Told the session's name, so that another window doesn't take it.
  claim: ((session: string) => void) | null = null;

  private idle(): void {
    this.boxes.endQuestion();
    this.boxes.endProgress();
    this.door.queue.keepScreen(this.top?.id ?? 0);
    for (const screen of this.screens) this.drafts.keep(screen.drafted());
    if (this.begins) {
      this.begins = false;
      const first = this.remembered(kStart) ?? "";
      if (this.screens.length === 0 && this.mayOpen(first)) this.openScreen(first);
    }
    this.ready();
    // A session that is taken up again stays where it was, and who has asked for a screen goes there.
    if (!this.homed && this.me.home !== undefined && this.screens.length === 0 && !this.holding && this.remembered(kStart) !== kMenuAlone) {
      this.homed = true;
      this.openScreen(this.me.home);
    }
    if (!this.holding && this.topBox === null) this.takeUp.go();
  }

  private waiting(): void {
    if (!this.door.queue.pendingUser) this.boxes.askAgain();
    this.ready();
  }

  private walk(): void {
    void this.guide.begin().then(() => this.lookAhead());
  }
  // What the guide of a first posting sees.
  private lookAhead(): void {
    const top = this.top;
    this.guide.look({
      screenClass: top?.screenClass ?? "",
      badge: top?.badge ?? "",
      filled: (control) => {
        const field = top?.find(control);
        return field instanceof TextView && field !== top?.focused && field.input.value !== "";
      },
    });
  }

  // The desk has answered: the focus goes where it says, and keys that waited go on.
  private ready(): void {
    this.mark();
    if (this.door.queue.holding) return;
    this.settle();
    this.lookAhead();
    this.typing.flush();
  }

  // --- Screens.

  get top(): ScreenView | undefined {
    return this.screens[this.screens.length - 1];
  }
  private get topChild(): ScreenView | undefined {
    return [...this.screens].reverse().find((screen) => !screen.dialog);
  }

  private get home(): ScreenView | undefined {
    return this.screens.find((screen) => screen.screenClass === this.me.home);
  }
  // Those that have a tab, in the order in which they were opened.
  private get tabbed(): ScreenView[] {
    return this.screens.filter((screen) => !screen.dialog && screen !== this.home).sort((a, b) => a.id - b.id);
  }

  private showScreens(): void {
    const active = this.topChild;
    for (const screen of this.tabbed) screen.element.hidden = screen !== active;
    this.showTabs();
    this.showRecord();
    this.takeUp.show();
    document.title = active === undefined ? this.me.companyName : `${active.caption} · ${this.me.companyName}`;
    // A dialog that comes back to the front stands over the others.
    for (const screen of this.screens) {
      if (screen.dialog) this.root.append(screen.element);
    }
    this.boxes.raise();
  }

  private showTabs(): void {
    this.frame.show(this.tabbed, this.topChild?.id ?? -1);
  }

  private showRecord(): void {
    this.frame.showRecord(this.top?.record ?? null);
  }
  beside(verb: string): void {
    this.typing.later(() => {
      const top = this.top;
      if (top === undefined || top.record === null || (verb === "attachments" && top.record.attachments === undefined)) return;
      top.commit();
      this.send({ do: verb });
    });
  }
  ofAttachments(verb: string, record: string, id: number | null, done: (answered: boolean) => void): void {
    this.send({ do: verb, record, ...(id === null ? {} : { id }) }, { done: (outcome) => done(outcome === "answered") });
  }

  // Puts the browser's focus where it belongs.
  settle(): void {
    const box = this.topBox;
    if (box !== null) {
      if (!box.element.contains(document.activeElement)) box.focusFirst();
      return;
    }
    if (this.frame.menuOpen) return;
    const top = this.top;
    if (top === undefined || (top === this.home && !this.frame.atPanel)) {
      this.frame.focusHome();
      return;
    }
    top.syncFocus();
    if (this.draft !== null && this.draft.id === top.id) {
      top.restore(this.draft);
      this.draft = null;
    }
  }

  // --- BoxesUser.

  beneath(): HTMLElement[] {
    return [this.frame.element, ...this.screens.filter((screen) => screen.dialog).map((screen) => screen.element)];
  }
  labelOf(control: string): string {
    return this.top?.find(control)?.label ?? "";
  }
  boxOpens(): void {
    this.frame.closeMenu(false);
  }
  boxSeen(): void {
    this.seenAt = performance.now();
    this.typing.seenSince();
  }
  answer(object: In): void {
    this.door.push({ object, purpose: "answer", hold: true });
    this.mark();
  }
  search(text: string): void {
    this.door.push({ object: { do: "search", text }, purpose: "answer", hold: false, key: "search" });
  }
  upload(file: File, signal: AbortSignal): ReturnType<typeof upload> {
    return upload(this.door.name, file, signal);
  }
  stop(): void {
    // The answer has no place in the queue: it ends what is under way.
    this.door.urgent({ do: "answer", value: "cancel" });
  }
  told(text: string): void {
    this.frame.toast("stored", text);
  }
  render(id: number | string, format: string, table: number, done: (answered: boolean) => void): void {
    this.send({ do: "report", id, format, table }, { done: (outcome) => done(outcome === "answered") });
  }

  private failed(text: string): void {
    if (this.door?.queue.current?.purpose === "read") return;
    this.door?.queue.dropScreen();
    this.typing.drop();
    const box: ErrorDialog = new ErrorDialog(text, () => this.boxes.close(box));
    this.boxes.show(box);
  }

  private stateRead(out: StateOut): void {
    const asked = this.door.queue.current?.object;
    // The answer to what was asked just before; the queue has let go of nothing yet.
    const control = String(asked?.["control"] ?? "");
    const from = Number(asked?.["from"] ?? 0);
    for (const state of out.screens) {
      this.screens.find((one) => one.id === state.id)?.state(state, control, from);
      const rows = state.sets[control];
      if (rows !== undefined) this.boxes.rows(control, rows, from);
    }
  }

  private mark(): void {
    this.frame.busy((this.busy || this.door?.queue.holding) && this.topBox === null);
  }

  // --- TypingUser.

  get topBox(): Dialog | null {
    return this.boxes.top;
  }
  get asked(): boolean {
    return this.boxes.asked;
  }
  get menuOpen(): boolean {
    return this.frame.menuOpen;
  }
  get unanswered(): boolean {
    return this.door.queue.holding;
  }
  get pressUnanswered(): boolean {
    return this.door.queue.pressing;
  }
  // What was typed for a screen that has closed isn't meant for the one beneath.
  gone(screen: number): boolean {
    return screen !== 0 && !this.screens.some((one) => one.id === screen);
  }
  flushed(): void {
    this.mark();
  }
  // From the home to its menu; from a screen on which nothing is under way, and no text is being typed, home.
  escaped(): void {
    const top = this.top;
    if (top === this.home) {
      this.frame.atPanel = false;
      this.frame.focusHome();
    } else if (this.me.home !== undefined && top?.badge === "" && !(document.activeElement instanceof HTMLInputElement) && performance.now() - this.seenAt > kAfterBox) {
      this.goHome();
    }
  }
  pressFrame(press: Press): boolean {
    const { key, ctrl, alt, shift } = press;
    if (ctrl && alt && key.toLowerCase() === "m") {
      if (this.top?.dialog) return true;
      this.frame.toggleMenu();
      return true;
    }
    if (key === "F1" && (this.top === undefined || (this.top === this.home && !this.frame.atPanel))) {
      this.help({ name: "inicio", caption: "Início", keysShown: [] });
      return true;
    }
    if (ctrl && alt && key.toLowerCase() === "g") {
      if (this.guide.walking) this.guide.end();
      else this.walk();
      return true;
    }
    if (ctrl && alt && key.toLowerCase() === "f") {
      if (!this.top?.dialog) this.favourites();
      return true;
    }
    if (ctrl && alt && key.toLowerCase() === "i") {
      this.goHome();
      return true;
    }
    if (ctrl && alt && (key.toLowerCase() === "h" || key.toLowerCase() === "a")) {
      this.beside(key.toLowerCase() === "h" ? "history" : "attachments");
      return true;
    }
    if (ctrl && alt && key.toLowerCase() === "r") {
      this.takeUp.first();
      return true;
    }
    const forward = (ctrl && key === "Tab" && !shift) || (alt && !shift && key === "PageDown");
    const back = (ctrl && key === "Tab" && shift) || (alt && !shift && key === "PageUp");
    if (!forward && !back) return false;
    if (this.top?.dialog) return true;
    const children = this.tabbed;
    const at = children.findIndex((screen) => screen === this.topChild);
    const next = children[(at + (forward ? 1 : at < 0 ? 0 : -1) + children.length) % Math.max(children.length, 1)];
    if (next !== undefined) this.raise(next.id);
    return true;
  }
}
