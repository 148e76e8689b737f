// A number between bounds, and how far something has come.
import { el, uniqueId, writeCaption } from "../dom.ts";
import { isCharacter, type Press } from "../keys.ts";
import type { TreeNode } from "../protocol.ts";
import { ControlView, type ScreenContext } from "./control.ts";

export class TrackView extends ControlView {
  readonly element: HTMLElement;
  private input: HTMLInputElement;
  private label_: HTMLLabelElement;
  private value: HTMLElement;
  private local: number | null = null;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    const id = uniqueId("f");
    this.input = el("input", { id, type: "range" });
    this.label_ = el("label", { class: "label", for: id });
    this.value = el("output", { class: "track-value", for: id });
    this.element = el("div", { class: "field field-track" }, this.label_, el("div", { class: "track" }, this.input, this.value));
    this.input.addEventListener("mousedown", () => this.screen.userFocus(this));
    this.input.addEventListener("input", () => this.give(Number(this.input.value)));
    this.render();
  }

  override get takesFocus(): boolean {
    return true;
  }
  override get focusElement(): HTMLElement {
    return this.input;
  }
  override get content(): string | null {
    return String(this.local ?? this.number("position"));
  }

  override render(): void {
    this.showState(this.element, this.input);
    writeCaption(this.label_, this.text("caption") || this.label || "Posição");
    this.input.min = this.text("minimum");
    this.input.max = this.text("maximum");
    const position = String(this.local ?? this.number("position"));
    if (this.input.value !== position) this.input.value = position;
    this.value.textContent = position;
  }

  private give(position: number): void {
    const value = Math.min(Math.max(position, this.number("minimum")), this.number("maximum"));
    this.local = value;
    this.render();
    const key = `set:${this.name}`;
    this.desk.send(
      { do: "set", control: this.name, value: String(value) },
      {
        hold: false,
        key,
        done: () => {
          if (this.desk.has(key)) return;
          this.local = null;
          queueMicrotask(this.settled);
        },
      },
    );
  }

  override press(press: Press): boolean {
    if (press.ctrl || press.alt) return false;
    const now = this.local ?? this.number("position");
    const least = this.number("minimum");
    const most = this.number("maximum");
    const leap = Math.max(1, Math.round((most - least) / 10));
    const steps: Record<string, number> = {
      ArrowLeft: now - 1,
      ArrowDown: now - 1,
      ArrowRight: now + 1,
      ArrowUp: now + 1,
      PageDown: now - leap,
      PageUp: now + leap,
      Home: least,
      End: most,
    };
    const to = steps[press.key];
    if (to !== undefined) this.give(to);
    else if (press.key === "Enter") this.sendKey("Enter");
    else return isCharacter(press);
    return true;
  }

  override access(): void {
    this.screen.userFocus(this);
    this.focus();
  }
}

export class ProgressView extends ControlView {
  readonly element: HTMLElement;
  private bar: HTMLProgressElement;
  private label_: HTMLElement;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.bar = el("progress", {});
    this.label_ = el("div", { class: "label" });
    this.element = el("div", { class: "field field-progress" }, this.label_, this.bar);
    this.render();
  }

  override render(): void {
    this.showState(this.element);
    writeCaption(this.label_, this.text("caption"));
    this.bar.setAttribute("aria-label", this.label || "Andamento");
    this.bar.max = Math.max(1, this.number("maximum", 100));
    this.bar.value = this.number("position");
  }
}
