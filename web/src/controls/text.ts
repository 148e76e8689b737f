// Text inputs: plain text, amounts, dates.
import { el, uniqueId, writeCaption } from "../dom.ts";
import { isCharacter, type Press } from "../keys.ts";
import { completeDate, brazil } from "../text/date.ts";
import { isAmount } from "../text/money.ts";
import type { TreeNode } from "../protocol.ts";
import { ControlView, type ScreenContext } from "./control.ts";

// How long the typing rests before the desk hears of it.
const kRest = 350;

export class TextView extends ControlView {
  readonly element: HTMLElement;
  readonly input: HTMLInputElement;
  private label_: HTMLLabelElement;
  // The user has typed what the desk doesn't know yet.
  private editing = false;
  // Values that went out and aren't answered.
  private outstanding = 0;
  private sent: string | null = null;
  private timer = 0;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    const id = uniqueId("f");
    this.input = el("input", {
      id,
      type: "text",
      class: `input input-${this.kind}`,
      autocomplete: "off",
      spellcheck: "false",
      autocapitalize: "off",
    });
    if (this.kind !== "edit") this.input.inputMode = this.kind === "money" ? "decimal" : "numeric";
    this.label_ = el("label", { class: "label", for: id });
    this.element = el("div", { class: `field field-${this.kind}` }, this.label_, this.input);
    this.input.addEventListener("input", () => this.typed());
    this.input.addEventListener("mousedown", () => {
      if (this.takesFocus) this.screen.userFocus(this);
    });
    this.render();
  }

  override get takesFocus(): boolean {
    return !this.flag("readOnly");
  }
  override get focusElement(): HTMLElement {
    return this.input;
  }

  override render(): void {
    this.showState(this.element, this.input);
    writeCaption(this.label_, this.text("caption"));
    this.label_.hidden = this.caption === "";
    if (this.caption === "") this.input.setAttribute("aria-label", this.label === "" ? "Descrição" : `${this.label}, descrição`);
    const readOnly = this.flag("readOnly");
    this.input.readOnly = readOnly;
    // What nobody types into is no stop of the tab order.
    this.input.tabIndex = readOnly ? -1 : 0;
    this.element.classList.toggle("is-readonly", readOnly);
    const longest = this.number("maxLength");
    if (longest > 0 && this.kind === "edit") this.input.maxLength = longest;
    if (this.kind === "date" && !readOnly) this.input.placeholder = "dd/mm/aaaa";
    this.showText();
  }

  private showText(): void {
    if (this.editing || this.outstanding > 0) return;
    const text = this.text("text");
    this.markInvalid(false);
    this.input.classList.toggle("is-negative", this.kind === "money" && text.startsWith("-"));
    if (this.flag("readOnly")) this.input.title = text;
    if (this.input.value === text) return;
    this.input.value = text;
    if (document.activeElement === this.input) this.input.select();
  }

  private typed(): void {
    this.editing = true;
    window.clearTimeout(this.timer);
    // Text is followed while it is typed, for the descriptions beside it; half an amount or date says nothing.
    if (this.kind === "edit") this.timer = window.setTimeout(() => this.give(), kRest);
    // Seen before the desk refuses it.
    if (this.kind === "money") this.markInvalid(!isAmount(this.input.value));
  }

  private markInvalid(invalid: boolean): void {
    this.input.classList.toggle("is-invalid", invalid);
    if (invalid) this.input.setAttribute("aria-invalid", "true");
    else this.input.removeAttribute("aria-invalid");
  }

  // Sends the text as it stands; typing goes on.
  private give(): void {
    const value = this.input.value;
    if (value === (this.sent ?? this.text("text"))) return;
    this.sent = value;
    this.outstanding += 1;
    this.desk.send(
      { do: "set", control: this.name, value },
      { hold: false, key: `set:${this.name}`, done: (outcome) => this.given(outcome) },
    );
  }

  private given(outcome: "answered" | "refused" | "dropped"): void {
    this.outstanding -= 1;
    if (this.outstanding === 0) this.sent = null;
    if (outcome === "refused") {
      // What was typed stays, to be put right.
      this.editing = true;
      this.markInvalid(true);
    }
    // The desk's own text of it comes with the same answer.
    queueMicrotask(() => this.showText());
  }

  override commit(): void {
    window.clearTimeout(this.timer);
    if (!this.editing) return;
    if (this.kind === "date") this.input.value = completeDate(this.input.value, this.desk.today);
    this.give();
    this.editing = false;
    this.showText();
  }

  override revert(): boolean {
    if (!this.editing) return false;
    window.clearTimeout(this.timer);
    this.editing = false;
    this.showText();
    this.input.select();
    return true;
  }

  // What was typed and not sent, for a screen that is drawn anew.
  get draft(): string | null {
    return this.editing ? this.input.value : null;
  }
  set draft(text: string | null) {
    if (text === null || text === this.text("text")) return;
    this.input.value = text;
    this.typed();
  }

  override focus(): void {
    if (document.activeElement === this.input) return;
    this.input.focus();
    this.input.select();
  }

  override press(press: Press): boolean {
    if (press.key === "F4" || (press.key === "ArrowDown" && press.alt)) {
      this.commit();
      this.sendKey("F4");
      return true;
    }
    if (press.key === "Enter" && !press.ctrl && !press.alt) {
      this.commit();
      this.sendKey("Enter");
      return true;
    }
    if (this.kind === "date" && isCharacter(press)) return this.datePress(press.key);
    return false;
  }

  private datePress(key: string): boolean {
    if (key === "h" || key === "H") {
      this.input.value = brazil(this.desk.today);
      this.input.select();
      this.typed();
      return true;
    }
    return !/[\d/.\- ]/.test(key);
  }

  override access(): void {
    this.screen.userFocus(this);
    this.focus();
  }

  override destroy(): void {
    window.clearTimeout(this.timer);
  }
}
