// The desk's page: it shows what the desk tells, sends what the user does, keeps the focus where the desk has
// it, and keeps what is typed ahead.
import { me as askMe, setPreference, upload } from "./api.ts";
import type { DeskContext } from "./context.ts";
import { ButtonView } from "./controls/button.ts";
import type { ControlView } from "./controls/control.ts";
import { AccountDialog } from "./dialogs/account.ts";
import { Dialog } from "./dialogs/dialog.ts";
import { FileDialog } from "./dialogs/file.ts";
import { HelpDialog } from "./dialogs/help.ts";
import { LookupDialog } from "./dialogs/lookup.ts";
import { ErrorDialog, InputDialog, MessageDialog } from "./dialogs/message.ts";
import { ProgressDialog } from "./dialogs/progress.ts";
import { ReportDialog } from "./dialogs/report.ts";
import { ConfirmDialog, DetailDialog } from "./dialogs/tables.ts";
import { Door, type DoorUser, type Link } from "./door.ts";
import { Drafts } from "./drafts.ts";
import { Frame, type FrameUser } from "./frame.ts";
import { belongsToBrowser, isModifier, pressOf, strokeOf, type Ahead, type Press } from "./keys.ts";
import { kAccount } from "./menu.ts";
import type { ChangeOut, In, Me, MenuEntry, Out, Question, StateOut } from "./protocol.ts";
import type { Item } from "./queue.ts";
import { ScreenView } from "./screen.ts";
import { TakeUp, type TakeUpUser } from "./takeup.ts";
import { fromNeutral, localToday, type Day } from "./text/date.ts";

const kMostAhead = 2000;
// Presses of one key that follow each other faster were meant for what was shown before the first of them.
const kBurst = 400;

export interface DeskOptions {
  // The session to come back to, null for a new one.
  session: string | null;
  preferences: Map<string, string>;
  loggedOut: (notice: string) => void;
  leave: () => void;
}

export class Desk implements DeskContext, DoorUser, FrameUser, TakeUpUser {
  private frame: Frame;
  private drafts: Drafts;
  private takeUp: TakeUp;
  private door: Door;
  // From bottom to top.
  private screens: ScreenView[] = [];
  private question: Dialog | null = null;
  // The user has answered; the box comes back if the desk goes on waiting.
  private answered = false;
  private progress: ProgressDialog | null = null;
  // Boxes of the page itself, for which the desk doesn't wait.
  private boxes: Dialog[] = [];
  private ahead: Ahead[] = [];
  private busy = false;
  private draft: { id: number; name: string; text: string } | null = null;
  private greeted = false;
  private abort = new AbortController();

  constructor(
    private root: HTMLElement,
    private me: Me,
    private options: DeskOptions,
  ) {
    this.drafts = new Drafts(`orv-drafts:${me.user}:${me.company}`, sessionStorage);
    this.takeUp = new TakeUp(this.drafts, this);
    this.frame = new Frame(me, this, this.takeUp.element);
    root.replaceChildren(this.frame.element);
    const { signal } = this.abort;
    document.addEventListener("keydown", (event) => this.keyDown(event), { capture: true, signal });
    document.addEventListener("beforeinput", (event) => this.beforeInput(event), { capture: true, signal });
    document.addEventListener("compositionend", (event) => this.composed(event), { capture: true, signal });
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
    for (const box of [this.question, this.progress, ...this.boxes]) box?.destroy();
    document.documentElement.classList.remove("is-busy");
    this.root.replaceChildren();
  }

  // --- DeskContext.

  send(object: In, options: Partial<Item> = {}): void {
    // A report belongs to the window, everything else to the screen that the user sees.
    const screen = this.top?.id;
    const meant = screen === undefined || object.do === "report" ? object : { screen, ...object };
    this.door.push({ object: meant, purpose: "screen", hold: true, ...options });
    this.pressed = options.press ?? false;
    if (object.do === "set" || object.do === "check") this.typed(this.top?.find(String(object["control"])));
    this.mark();
  }
  read(control: string, from: number, count: number): void {
    this.door.push({ object: { do: "read", control, from, count }, purpose: "read", hold: false, key: `read:${control}` });
  }
  readFirst(control: string, from: number, count: number, done: () => void): void {
    this.door.push({
      object: { do: "read", control, from, count },
      purpose: "read",
      hold: true,
      done: (outcome) => outcome === "answered" && done(),
    });
  }
  has(key: string): boolean {
    return this.door.queue.has(key);
  }
  act(run: () => void): void {
    const on = this.top;
    this.later(() => on === this.top && run());
  }
  private later(run: () => void, press = false): void {
    if (this.holding) this.type({ kind: "act", run, press });
    else run();
  }

  // What was pressed last, how it looked, and when.
  private last = { by: "none", sight: "", at: 0 };
  // The key that is being worked on.
  private stroke = "";
  // The last that went out was a press; what is done now was typed directly behind it.
  private pressed = false;
  private burst = false;
  // The user has answered a box: what he presses next he means.
  private seenSince(): void {
    this.pressed = false;
    this.last.by = "none";
  }

  press(control: ControlView, clicks: number, run: () => void): void {
    const top = this.top;
    if (top === undefined) return;
    // The same key typed twice before the first was answered; another key names what it means.
    if (this.flushing && this.burst && this.stroke === this.last.by) return;
    // One that isn't answered changes what this one was aimed at.
    if (this.door.queue.pressing || (!this.flushing && this.ahead.some((one) => one.kind === "act" && one.press))) return;
    const by = clicks > 0 ? "pointer" : this.stroke;
    const shown = top.sight(control, top.grids);
    const again = by === this.last.by && (clicks > 0 ? clicks > 1 : performance.now() - this.last.at < kBurst);
    if (again && shown !== this.last.sight) return;
    this.last = { by, sight: shown, at: performance.now() };
    const grids = top.grids.filter((one) => one === top.focused);
    const seen = top.sight(control, grids);
    this.later(() => !(this.flushing && this.burst) && top === this.top && top.sight(control, grids) === seen && run(), true);
  }
  typed(control: ControlView | undefined): void {
    const top = this.top;
    if (top === undefined || control?.screen !== top) return;
    top.touch(control);
    this.drafts.keep(top.drafted());
  }
  get holding(): boolean {
    return this.door.queue.holding || (this.ahead.length > 0 && !this.flushing);
  }
  get today(): Day {
    return (this.me.today !== undefined ? fromNeutral(this.me.today) : null) ?? localToday();
  }
  help(screen: { caption: string; keysShown: { key: string; caption: string }[] }): void {
    const box: HelpDialog = new HelpDialog(screen.caption, screen.keysShown, () => this.closeBox(box));
    this.openBox(box);
  }
  remember(key: string, value: string | null): void {
    if (value === null) this.options.preferences.delete(key);
    else this.options.preferences.set(key, value);
    void setPreference(key, value ?? "");
  }
  remembered(key: string): string | null {
    return this.options.preferences.get(key) ?? null;
  }

  private answer(object: In): void {
    if (this.question === null || this.answered) return;
    this.answered = true;
    this.seenSince();
    this.question.element.hidden = true;
    this.door.push({ object, purpose: "answer", hold: true });
    this.mark();
  }

  // --- FrameUser.

  open(entry: MenuEntry): void {
    if (entry !== kAccount) {
      this.openScreen(entry.class);
      return;
    }
    const box: AccountDialog = new AccountDialog(this.me.user, () => this.closeBox(box), () => this.loggedOut());
    this.openBox(box);
  }
  raise(id: number): void {
    const screen = this.screens.find((one) => one.id === id);
    if (screen !== undefined && screen !== this.topChild) this.openScreen(screen.screenClass);
  }
  close(id: number): void {
    this.raise(id);
    this.later(() => {
      const go = (): void => {
        this.top?.commit();
        this.send({ do: "close", screen: id });
      };
      const badge = this.screens.find((one) => one.id === id)?.badge ?? "";
      if (badge === "") go();
      else this.confirm("Fechar", `${badge}: o que não foi confirmado será perdido.\nDeseja fechar?`, go);
    });
  }

  // --- TakeUpUser.

  mayOpen(screenClass: string): boolean {
    return !this.top?.dialog && this.me.menu.some((entry) => entry.class === screenClass);
  }
  openScreen(screenClass: string): void {
    this.later(() => {
      this.top?.commit();
      this.send({ do: "open", class: screenClass });
    });
  }
  settled(): void {
    this.settle();
  }
  leave(): void {
    if (this.screens.length === 0) {
      this.goOut();
      return;
    }
    this.confirm("Sair", "Há telas abertas. O que não foi confirmado será perdido.\nDeseja sair?", () => this.goOut());
  }
  // A question of the page itself; No is what Enter means.
  private confirm(title: string, text: string, yes: () => void): void {
    const box: MessageDialog = new MessageDialog({ on: "message", kind: "question", title, text, buttons: ["yes", "no"], default: "no" }, (value) => {
      this.closeBox(box);
      if (value === "yes") yes();
    });
    this.openBox(box);
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
        const screen: ScreenView = new ScreenView(this, out, () => this.act(() => this.send({ do: "close" })));
        const draft = this.drafts.of(out.class);
        if (draft !== undefined) screen.redraw(draft);
        this.screens.push(screen);
        (screen.dialog ? this.root : this.frame.main).append(screen.element);
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
        this.ask(out);
        break;
      case "report":
        this.report(out);
        break;
      case "progress":
        this.showProgress(out);
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
        break;
      case "state":
        this.stateRead(out);
        break;
      case "waiting":
        this.endProgress();
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
    const opened = screen.change(out, object?.do === "choose");
    if (opened && press && object?.["screen"] === screen.id) screen.began(String(object["control"]));
  }

  private session = "";
  private hello(session: string): void {
    this.drafts.begin(session);
    const draft = this.top?.draft;
    this.draft = draft !== undefined && draft !== null && session === this.session ? { id: this.top!.id, ...draft } : null;
    if (this.greeted && session !== this.session) {
      this.ahead = [];
      if (this.screens.length > 0) {
        this.failed("A sessão anterior terminou enquanto não havia conexão. O que não estava confirmado não foi gravado.");
      }
    }
    this.greeted = true;
    this.session = session;
    for (const screen of this.screens) screen.destroy();
    this.screens = [];
    this.endQuestion();
    this.endProgress();
    this.busy = false;
    this.showScreens();
    this.claim?.(session);
  }
  // Told the session's name, so that another window doesn't take it.
  claim: ((session: string) => void) | null = null;

  private idle(): void {
    this.endQuestion();
    this.endProgress();
    this.door.queue.keepScreen(this.top?.id ?? 0);
    for (const screen of this.screens) this.drafts.keep(screen.drafted());
    this.ready();
    if (!this.holding && this.topBox === null) this.takeUp.go();
  }

  private waiting(): void {
    if (this.question !== null && this.answered && !this.door.queue.pendingUser) {
      this.answered = false;
      this.question.element.hidden = false;
      this.layers();
      if (this.boxes.length === 0) this.question.focusFirst();
    }
    this.ready();
  }

  // The desk has answered: the focus goes where it says, and keys that waited go on.
  private ready(): void {
    this.mark();
    if (this.door.queue.holding) return;
    this.settle();
    this.flush();
  }

  private flushing = false;
  private flush(): void {
    if (this.flushing) return;
    this.flushing = true;
    while (this.ahead.length > 0 && !this.door.queue.holding) {
      const next = this.ahead.shift()!;
      const top = this.top;
      this.burst = this.pressed;
      this.pressed = false;
      if (next.kind === "press") this.stroke = strokeOf(next.press);
      if (next.kind === "act") next.run();
      else if (top === undefined || this.question !== null || this.gone(next.screen)) continue;
      else if (next.kind === "text") top.textAhead(next.text);
      else top.pressAhead(next.press);
    }
    this.flushing = false;
    this.mark();
  }

  // What was typed for a screen that has closed isn't meant for the one beneath.
  private gone(screen: number): boolean {
    return screen !== 0 && !this.screens.some((one) => one.id === screen);
  }

  // --- Screens.

  get top(): ScreenView | undefined {
    return this.screens[this.screens.length - 1];
  }
  private get topChild(): ScreenView | undefined {
    return [...this.screens].reverse().find((screen) => !screen.dialog);
  }

  // Tabs stand in the order in which they were opened.
  private showScreens(): void {
    const active = this.topChild;
    for (const screen of this.screens) if (!screen.dialog) screen.element.hidden = screen !== active;
    this.showTabs();
    this.takeUp.show();
    document.title = active === undefined ? this.me.companyName : `${active.caption} · ${this.me.companyName}`;
    // A dialog that comes back to the front stands over the others.
    for (const screen of this.screens) {
      if (screen.dialog) this.root.append(screen.element);
    }
    for (const box of [this.question, this.progress, ...this.boxes]) {
      if (box !== null) this.root.append(box.element);
    }
    this.layers();
  }

  private showTabs(): void {
    const children = this.screens.filter((screen) => !screen.dialog).sort((a, b) => a.id - b.id);
    this.frame.show(children, this.topChild?.id ?? -1);
  }

  // Only what is on top can be reached.
  private layers(): void {
    const question = this.question !== null && !this.answered ? this.question : null;
    const stack: HTMLElement[] = [this.frame.element];
    for (const screen of this.screens) {
      if (screen.dialog) stack.push(screen.element);
    }
    for (const box of [question, this.progress, ...this.boxes]) {
      if (box !== null) stack.push(box.element);
    }
    stack.forEach((element, at) => (element.inert = at < stack.length - 1));
  }

  private get topBox(): Dialog | null {
    const box = this.boxes[this.boxes.length - 1] ?? this.progress;
    if (box !== null && box !== undefined) return box;
    return this.question !== null && !this.answered ? this.question : null;
  }

  // Puts the browser's focus where it belongs.
  private settle(): void {
    const box = this.topBox;
    if (box !== null) {
      if (!box.element.contains(document.activeElement)) box.focusFirst();
      return;
    }
    if (this.frame.menuOpen) return;
    const top = this.top;
    if (top === undefined) {
      this.frame.focusHome();
      return;
    }
    top.syncFocus();
    if (this.draft !== null && this.draft.id === top.id) {
      top.restore(this.draft);
      this.draft = null;
    }
  }

  // --- Questions.

  private ask(out: Question): void {
    // What was typed and sent for the screen before the question was seen must not reach what comes after it.
    this.door.queue.dropScreen();
    this.ahead = [];
    this.endProgress();
    this.frame.closeMenu(false);
    if (out.on === "lookup" && this.question instanceof LookupDialog && this.question.control === out.control && !this.answered) {
      this.question.show(out);
      return;
    }
    this.endQuestion();
    this.question = this.dialogFor(out);
    this.answered = false;
    this.root.append(this.question.element);
    for (const box of this.boxes) this.root.append(box.element);
    this.layers();
    if (this.boxes.length === 0) this.question.focusFirst();
  }

  private dialogFor(out: Question): Dialog {
    const give = (value: string): void => this.answer({ do: "answer", value });
    switch (out.on) {
      case "message":
        return new MessageDialog(out, give);
      case "input":
        return new InputDialog(out, give);
      case "confirm":
        return new ConfirmDialog(out, give);
      case "detail":
        return new DetailDialog(out, () => give("ok"));
      case "file":
        return new FileDialog(
          out,
          (file, signal) => upload(this.door.name, file, signal),
          (name, given) => this.answer({ do: "file", name, upload: given }),
          () => give("cancel"),
        );
      case "lookup": {
        const caption = this.top?.find(out.control)?.label ?? "";
        return new LookupDialog(out, caption, {
          search: (text) => this.door.push({ object: { do: "search", text }, purpose: "answer", hold: false, key: "search" }),
          choose: (rows) => this.answer({ do: "choose", rows }),
          cancel: () => this.answer({ do: "choose" }),
          read: (control, from, count) => this.read(control, from, count),
        });
      }
    }
  }

  private endQuestion(): void {
    if (this.question === null) return;
    this.question.destroy();
    this.question = null;
    this.answered = false;
    this.layers();
  }

  private showProgress(out: Extract<Out, { on: "progress" }>): void {
    if (this.progress === null) {
      this.progress = new ProgressDialog(() => {
        this.seenSince();
        // The answer has no place in the queue: it ends what is under way.
        this.door.urgent({ do: "answer", value: "cancel" });
      });
      this.root.append(this.progress.element);
      this.layers();
      this.progress.focusFirst();
    }
    this.progress.show(out);
  }
  private endProgress(): void {
    if (this.progress === null) return;
    this.progress.destroy();
    this.progress = null;
    this.layers();
  }

  private report(out: Extract<Out, { on: "report" }>): void {
    const known = this.boxes.find((box): box is ReportDialog => box instanceof ReportDialog && box.id === out.id);
    if (out.address !== undefined) {
      known?.ready(out.address, out.format ?? "");
      return;
    }
    if (known !== undefined) return;
    const box: ReportDialog = new ReportDialog(
      out,
      (format) =>
        this.send({ do: "report", id: out.id, format }, { done: (outcome) => outcome === "answered" || box.refused() }),
      () => this.closeBox(box),
    );
    this.openBox(box);
    box.begin();
  }

  private failed(text: string): void {
    if (this.door?.queue.current?.purpose === "read") return;
    this.door?.queue.dropScreen();
    this.ahead = [];
    const box: ErrorDialog = new ErrorDialog(text, () => this.closeBox(box));
    this.openBox(box);
  }

  private openBox(box: Dialog): void {
    this.frame.closeMenu(false);
    this.boxes.push(box);
    this.root.append(box.element);
    this.layers();
    box.focusFirst();
  }
  private closeBox(box: Dialog): void {
    this.boxes = this.boxes.filter((one) => one !== box);
    this.seenSince();
    box.destroy();
    this.layers();
    this.settle();
  }

  private stateRead(out: StateOut): void {
    const asked = this.door.queue.current?.object;
    // The answer to what was asked just before; the queue has let go of nothing yet.
    const control = String(asked?.["control"] ?? "");
    const from = Number(asked?.["from"] ?? 0);
    for (const state of out.screens) {
      this.screens.find((one) => one.id === state.id)?.state(state, control, from);
      const rows = state.sets[control];
      if (rows !== undefined && this.question instanceof LookupDialog && this.question.control === control) {
        this.question.rows(rows, from);
      }
    }
  }

  private mark(): void {
    this.frame.busy((this.busy || this.door?.queue.holding) && this.topBox === null);
  }

  // --- Keys.

  private type(what: Ahead): void {
    if (this.ahead.length < kMostAhead) this.ahead.push(what);
  }

  private keyDown(event: KeyboardEvent): void {
    if (event.isComposing || isModifier(event.key)) return;
    const press = pressOf(event);
    if (this.topBox !== null) {
      // A box has its own keys; one that strayed is brought back.
      if (!this.topBox.element.contains(event.target as Node)) {
        event.preventDefault();
        this.topBox.focusFirst();
      }
      return;
    }
    if ((event.target as Element).closest?.(".popup") !== null) return;
    if (this.pressFrame(press)) {
      event.preventDefault();
      event.stopPropagation();
      return;
    }
    const top = this.top;
    if (this.frame.menuOpen || top === undefined) return;
    if ((event.target as Element).closest?.(".top, .offers") !== null) return;
    const all = press.ctrl && press.key.toLowerCase() === "a" && document.activeElement?.getAttribute("role") === "grid";
    if (belongsToBrowser(press) && !all) return;
    const focused = top.focused;
    // A key held down goes through fields and rows, and presses nothing a second time.
    if (event.repeat && focused instanceof ButtonView && (press.key === "Enter" || press.key === " ")) {
      event.preventDefault();
      return;
    }
    if (this.holding) {
      // An accent that waits for its letter is put together by the browser first.
      if (event.key === "Dead" || event.key === "Process") return;
      this.type({ kind: "press", press, screen: top.id });
      event.preventDefault();
      return;
    }
    this.stroke = strokeOf(press);
    if (this.stroke !== this.last.by) this.last.by = "none";
    if (focused !== undefined && !focused.element.contains(document.activeElement)) top.syncFocus();
    if (top.press(press)) event.preventDefault();
  }

  private pressFrame(press: Press): boolean {
    const { key, ctrl, alt, shift } = press;
    if (ctrl && alt && key.toLowerCase() === "m") {
      if (this.top?.dialog) return true;
      this.frame.toggleMenu();
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
    const children = this.screens.filter((screen) => !screen.dialog).sort((a, b) => a.id - b.id);
    const at = children.findIndex((screen) => screen === this.topChild);
    const next = children[(at + (forward ? 1 : -1) + children.length) % Math.max(children.length, 1)];
    if (next !== undefined) this.raise(next.id);
    return true;
  }

  // Text that comes by other ways than single keys while keys wait: pasted, or from an input method.
  private beforeInput(event: InputEvent): void {
    if (!this.waitsForDesk(event) || !event.cancelable) return;
    event.preventDefault();
    const text = event.data ?? event.dataTransfer?.getData("text/plain") ?? "";
    if (text !== "") this.type({ kind: "text", text, screen: this.top?.id ?? 0 });
  }
  private composed(event: CompositionEvent): void {
    if (!this.waitsForDesk(event)) return;
    const input = event.target;
    if (!(input instanceof HTMLInputElement)) return;
    const end = input.selectionEnd ?? input.value.length;
    input.setRangeText("", Math.max(0, end - event.data.length), end, "end");
    this.type({ kind: "text", text: event.data, screen: this.top?.id ?? 0 });
  }
  private waitsForDesk(event: Event): boolean {
    const inScreen = (event.target as Element).closest?.(".screen, .dialog-screen") !== null;
    return inScreen && this.holding && this.topBox === null;
  }
}
