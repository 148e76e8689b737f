// Controls that choose one of several items: combo box, list, options; and the check box.
import { el, uniqueId, writeCaption } from "../dom.ts";
import { isCharacter, type Press } from "../keys.ts";
import { plain, readCaption } from "../text/caption.ts";
import type { TreeNode } from "../protocol.ts";
import { ControlView, type ScreenContext } from "./control.ts";

// The item that the keys ask for, -1 for none.
export function itemByKey(key: string, index: number, items: string[]): number {
  const last = items.length - 1;
  switch (key) {
    case "ArrowDown":
    case "ArrowRight":
      return Math.min(index + 1, last);
    case "ArrowUp":
    case "ArrowLeft":
      return Math.max(index - 1, 0);
    case "Home":
    case "PageUp":
      return Math.min(0, last);
    case "End":
    case "PageDown":
      return last;
    default:
      break;
  }
  if ([...key].length !== 1 || key === " ") return -1;
  const letter = plain(key);
  for (let step = 1; step <= items.length; ++step) {
    const at = (index + step + items.length) % items.length;
    if (plain(readCaption(items[at]!).text).startsWith(letter)) return at;
  }
  return -1;
}

abstract class ChoiceView extends ControlView {
  // Shown at once; the desk's word replaces it.
  private local: number | null = null;
  // What was typed into it, and when last.
  private typed = "";
  private typedAt = 0;

  override get takesFocus(): boolean {
    return true;
  }
  get items(): string[] {
    return this.list("items").map((item) => readCaption(item).text);
  }
  get index(): number {
    return this.local ?? this.number("index", -1);
  }
  override get content(): string | null {
    return String(this.index);
  }

  protected choose(index: number): void {
    if (index < 0 || index === this.index || !this.enabled) {
      this.render();
      return;
    }
    this.local = index;
    this.render();
    this.desk.send(
      { do: "set", control: this.name, value: String(index) },
      {
        hold: false,
        key: `set:${this.name}`,
        done: () => {
          if (this.desk.has(`set:${this.name}`)) return;
          this.local = null;
          queueMicrotask(this.settled);
        },
      },
    );
  }

  override press(press: Press): boolean {
    if (press.ctrl || press.alt) return false;
    if (press.key === "Enter") {
      this.sendKey("Enter");
      return true;
    }
    const index = this.itemTyped(press) ?? itemByKey(press.key, this.index, this.list("items"));
    if (index < 0) return isCharacter(press);
    this.choose(index);
    return true;
  }

  // Letters that follow one another at once spell an item: -1 where none begins so. One letter by itself, or
  // again and again, goes from item to item.
  private itemTyped(press: Press): number | undefined {
    if (!isCharacter(press)) return undefined;
    const now = performance.now();
    this.typed = (now - this.typedAt < 1000 ? this.typed : "") + plain(press.key);
    this.typedAt = now;
    if ([...this.typed].every((letter) => letter === this.typed[0])) return undefined;
    return this.items.findIndex((item) => plain(item).startsWith(this.typed));
  }

  override access(): void {
    this.screen.userFocus(this);
    this.focus();
  }
}

export class ComboView extends ChoiceView {
  readonly element: HTMLElement;
  private select: HTMLSelectElement;
  private label_: HTMLLabelElement;
  private drawn = "";

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    const id = uniqueId("f");
    this.select = el("select", { id, class: "input select" });
    this.label_ = el("label", { class: "label", for: id });
    this.element = el("div", { class: "field field-combo" }, this.label_, this.select);
    this.select.addEventListener("mousedown", (event) => {
      if (this.desk.holding) event.preventDefault();
      this.screen.userFocus(this);
    });
    this.select.addEventListener("change", () => this.desk.act(() => this.choose(this.select.selectedIndex)));
    this.render();
  }

  override get focusElement(): HTMLElement {
    return this.select;
  }

  override render(): void {
    this.showState(this.element, this.select);
    writeCaption(this.label_, this.text("caption"));
    this.label_.hidden = this.caption === "";
    if (this.caption === "") this.select.setAttribute("aria-label", this.label || "Opções");
    const items = this.items;
    const text = items.join("\n");
    if (text !== this.drawn || this.select.options.length !== items.length) {
      this.drawn = text;
      this.select.replaceChildren(...items.map((item) => el("option", {}, item === "" ? "\u00a0" : item)));
    }
    if (this.select.selectedIndex !== this.index) this.select.selectedIndex = this.index;
  }

  override press(press: Press): boolean {
    if (press.key === "F4" || (press.alt && press.key === "ArrowDown")) {
      try {
        this.select.showPicker();
      } catch {
        // A browser that opens it only by the user's own hand.
      }
      return true;
    }
    return super.press(press);
  }
}

export class ListView extends ChoiceView {
  readonly element: HTMLElement;
  private box: HTMLElement;
  private label_: HTMLElement;
  private id = uniqueId("list");

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.label_ = el("div", { class: "label", id: `${this.id}-label` });
    this.box = el("div", { class: "listbox", role: "listbox", tabindex: "0", "aria-labelledby": `${this.id}-label` });
    this.element = el("div", { class: "field field-list" }, this.label_, this.box);
    this.box.addEventListener("mousedown", (event) => {
      const option = (event.target as HTMLElement).closest<HTMLElement>("[data-index]");
      this.screen.userFocus(this);
      if (option !== null) this.desk.act(() => this.choose(Number(option.dataset["index"])));
    });
    this.render();
  }

  override get focusElement(): HTMLElement {
    return this.box;
  }

  override render(): void {
    this.showState(this.element, this.box);
    writeCaption(this.label_, this.text("caption") || this.label || "Lista");
    const index = this.index;
    this.box.replaceChildren(
      ...this.items.map((item, at) =>
        el(
          "div",
          {
            role: "option",
            class: "option",
            id: `${this.id}-${at}`,
            "data-index": String(at),
            "aria-selected": String(at === index),
          },
          item,
        ),
      ),
    );
    if (index >= 0) {
      this.box.setAttribute("aria-activedescendant", `${this.id}-${index}`);
      this.box.children[index]?.scrollIntoView({ block: "nearest" });
    } else {
      this.box.removeAttribute("aria-activedescendant");
    }
  }
}

export class RadioView extends ChoiceView {
  readonly element: HTMLElement;
  private options: HTMLElement;
  private inputs: HTMLInputElement[] = [];
  private legend: HTMLElement;
  private drawn = "";
  private id = uniqueId("radio");

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.legend = el("div", { class: "label", id: `${this.id}-label` });
    this.options = el("div", { class: "radio-options" });
    this.element = el(
      "div",
      { class: "field field-radio", role: "radiogroup", "aria-labelledby": `${this.id}-label` },
      this.legend,
      this.options,
    );
    this.render();
  }

  override get focusElement(): HTMLElement {
    return this.inputs[Math.max(this.index, 0)] ?? this.element;
  }

  override render(): void {
    const caption = this.list("items").join("\n");
    if (caption !== this.drawn) {
      this.drawn = caption;
      this.inputs = [];
      this.options.replaceChildren(...this.list("items").map((item, at) => this.option(item, at)));
    }
    this.showState(this.element);
    this.element.setAttribute("aria-disabled", String(!this.enabled));
    writeCaption(this.legend, this.text("caption") || this.label || "Opções");
    const index = this.index;
    const had = this.inputs.includes(document.activeElement as HTMLInputElement);
    this.inputs.forEach((input, at) => {
      input.checked = at === index;
      input.disabled = !this.enabled;
    });
    if (had) this.focus();
  }

  private option(item: string, at: number): HTMLElement {
    const input = el("input", { type: "radio", name: this.id, value: String(at), id: `${this.id}-${at}` });
    const text = el("span", {});
    writeCaption(text, item);
    this.inputs.push(input);
    const label = el("label", { class: "radio" }, input, text);
    label.addEventListener("mousedown", (event) => event.preventDefault());
    label.addEventListener("click", (event) => {
      event.preventDefault();
      if (this.enabled) {
        this.desk.act(() => {
          this.screen.commit();
          if (at === this.index) this.screen.userFocus(this);
          this.choose(at);
        });
      }
    });
    return label;
  }

  // The option whose own caption has the access key.
  optionOf(key: string): number {
    return this.list("items").findIndex((item) => readCaption(item).key === key);
  }
  accessOption(at: number): void {
    this.choose(at);
  }
}

export class CheckView extends ControlView {
  readonly element: HTMLElement;
  private input: HTMLInputElement;
  private caption_: HTMLElement;
  private local: boolean | null = null;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.input = el("input", { type: "checkbox" });
    this.caption_ = el("span", {});
    this.element = el("label", { class: "check" }, this.input, this.caption_);
    this.element.addEventListener("mousedown", (event) => event.preventDefault());
    this.element.addEventListener("click", (event) => {
      event.preventDefault();
      if (this.enabled) this.desk.act(() => this.toggle());
    });
    this.render();
  }

  override get takesFocus(): boolean {
    return true;
  }
  override get focusElement(): HTMLElement {
    return this.input;
  }
  override get content(): string | null {
    return String(this.local ?? this.flag("checked"));
  }

  override render(): void {
    this.showState(this.element, this.input);
    writeCaption(this.caption_, this.text("caption"));
    if (this.caption === "") this.input.setAttribute("aria-label", this.label || "Marcação");
    // The click that asked for it would undo it behind our back.
    const on = this.local ?? this.flag("checked");
    this.input.checked = on;
    queueMicrotask(() => (this.input.checked = this.local ?? this.flag("checked")));
  }

  private toggle(): void {
    this.screen.commit();
    const value = !(this.local ?? this.flag("checked"));
    this.local = value;
    this.render();
    this.desk.send(
      { do: "check", control: this.name, value },
      {
        done: () => {
          this.local = null;
          queueMicrotask(this.settled);
        },
      },
    );
  }

  override press(press: Press): boolean {
    if (press.ctrl || press.alt) return false;
    if (press.key === " ") this.toggle();
    else if (press.key === "Enter") this.sendKey("Enter");
    else return isCharacter(press);
    return true;
  }

  override access(): void {
    this.toggle();
  }
}
