// What is typed and pressed: now, or in its place once the desk has answered what was typed before.
import { ButtonView } from "./controls/button.ts";
import type { ControlView } from "./controls/control.ts";
import type { Dialog } from "./dialogs/dialog.ts";
import { belongsToBrowser, isModifier, pressOf, strokeOf, type Ahead, type Press } from "./keys.ts";
import type { ScreenView } from "./screen.ts";

const kMostAhead = 2000;
// Presses of one key that follow each other faster were meant for what was shown before the first of them.
const kBurst = 400;

export interface TypingUser {
  readonly top: ScreenView | undefined;
  readonly topBox: Dialog | null;
  // The desk has asked: nothing is meant for a screen.
  readonly asked: boolean;
  readonly menuOpen: boolean;
  // Something that went out, or a press among it, isn't answered yet.
  readonly unanswered: boolean;
  readonly pressUnanswered: boolean;
  // The screen was open and is no longer.
  gone(screen: number): boolean;
  // A key of the frame; true when that was all.
  pressFrame(press: Press): boolean;
  // Escape, of which the screen on top made nothing.
  escaped(): void;
  flushed(): void;
}

export class Typing {
  private ahead: Ahead[] = [];
  private flushing = false;
  // What was pressed last, how it looked, and when.
  private last = { by: "none", sight: "", at: 0 };
  // The key that is being worked on.
  private stroke = "";
  // The last that went out was a press; what is done now was typed directly behind it.
  private pressed = false;
  private burst = false;

  constructor(
    private user: TypingUser,
    signal: AbortSignal,
  ) {
    document.addEventListener("keydown", (event) => this.keyDown(event), { capture: true, signal });
    document.addEventListener("beforeinput", (event) => this.beforeInput(event), { capture: true, signal });
    document.addEventListener("compositionend", (event) => this.composed(event), { capture: true, signal });
  }

  // True while keys wait for an answer of the desk.
  get holding(): boolean {
    return this.user.unanswered || (this.ahead.length > 0 && !this.flushing);
  }

  // Runs it now, or in its place behind what was typed before.
  later(run: () => void, press = false): void {
    if (this.holding) this.type({ kind: "act", run, press });
    else run();
  }

  // As DeskContext.press.
  press(control: ControlView, clicks: number, run: () => void): void {
    const top = this.user.top;
    if (top === undefined) return;
    // The same key typed twice before the first was answered; another key names what it means.
    if (this.flushing && this.burst && this.stroke === this.last.by) return;
    // One that isn't answered changes what this one was aimed at.
    if (this.user.pressUnanswered || (!this.flushing && this.ahead.some((one) => one.kind === "act" && one.press))) return;
    const by = clicks > 0 ? "pointer" : this.stroke;
    const shown = top.sight(control, top.grids);
    const again = by === this.last.by && (clicks > 0 ? clicks > 1 : performance.now() - this.last.at < kBurst);
    if (again && shown !== this.last.sight) return;
    this.last = { by, sight: shown, at: performance.now() };
    const grids = top.grids.filter((one) => one === top.focused);
    const seen = top.sight(control, grids);
    this.later(() => !(this.flushing && this.burst) && top === this.user.top && top.sight(control, grids) === seen && run(), true);
  }

  // Something went out for a screen.
  sent(press: boolean): void {
    this.pressed = press;
  }
  // The user has answered a box: what he presses next he means.
  seenSince(): void {
    this.pressed = false;
    this.last.by = "none";
  }
  // What was typed ahead is meant for nothing any more.
  drop(): void {
    this.ahead = [];
  }

  // Goes on with what waited, until the desk must answer again.
  flush(): void {
    if (this.flushing) return;
    this.flushing = true;
    while (this.ahead.length > 0 && !this.user.unanswered) {
      const next = this.ahead.shift()!;
      const top = this.user.top;
      this.burst = this.pressed;
      this.pressed = false;
      if (next.kind === "press") this.stroke = strokeOf(next.press);
      if (next.kind === "act") next.run();
      else if (top === undefined || this.user.asked || this.user.gone(next.screen)) continue;
      else if (next.kind === "text") top.textAhead(next.text);
      else top.pressAhead(next.press);
    }
    this.flushing = false;
    this.user.flushed();
  }

  private type(what: Ahead): void {
    if (this.ahead.length < kMostAhead) this.ahead.push(what);
  }

  private keyDown(event: KeyboardEvent): void {
    if (event.isComposing || isModifier(event.key)) return;
    const press = pressOf(event);
    const box = this.user.topBox;
    if (box !== null) {
      // A box has its own keys; one that strayed is brought back.
      if (!box.element.contains(event.target as Node)) {
        event.preventDefault();
        box.focusFirst();
      }
      return;
    }
    if ((event.target as Element).closest?.(".popup") !== null) return;
    if (this.user.pressFrame(press)) {
      event.preventDefault();
      event.stopPropagation();
      return;
    }
    const top = this.user.top;
    if (this.user.menuOpen || top === undefined) return;
    if ((event.target as Element).closest?.(".top, .offers, .board") !== null) return;
    const focused = top.focused;
    const own = focused?.canFocus && focused.element.contains(document.activeElement) && focused.takes(press);
    if (belongsToBrowser(press) && !own) return;
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
    else if (press.key === "Escape" && !event.repeat) this.user.escaped();
  }

  // Text that comes by other ways than single keys while keys wait: pasted, or from an input method.
  private beforeInput(event: InputEvent): void {
    if (!this.waitsForDesk(event) || !event.cancelable) return;
    event.preventDefault();
    const text = event.data ?? event.dataTransfer?.getData("text/plain") ?? "";
    if (text !== "") this.type({ kind: "text", text, screen: this.user.top?.id ?? 0 });
  }
  private composed(event: CompositionEvent): void {
    if (!this.waitsForDesk(event)) return;
    const input = event.target;
    if (!(input instanceof HTMLInputElement)) return;
    const end = input.selectionEnd ?? input.value.length;
    input.setRangeText("", Math.max(0, end - event.data.length), end, "end");
    this.type({ kind: "text", text: event.data, screen: this.user.top?.id ?? 0 });
  }
  private waitsForDesk(event: Event): boolean {
    const inScreen = (event.target as Element).closest?.(".screen, .dialog-screen") !== null;
    return inScreen && this.holding && this.user.topBox === null;
  }
}
