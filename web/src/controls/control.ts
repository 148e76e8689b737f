// What all drawn controls have in common: the desk's properties, and how they show.
import { readCaption } from "../text/caption.ts";
import type { DeskContext } from "../context.ts";
import type { Press } from "../keys.ts";
import type { Item } from "../queue.ts";
import type { Properties, Property, SetState, StateOut, TreeNode } from "../protocol.ts";

// What a control may ask of the screen in which it stands.
export interface ScreenContext {
  readonly desk: DeskContext;
  readonly screenClass: string;
  readonly keyPreview: boolean;
  // What is being typed goes out, since something else is about to be done.
  commit(): void;
  // The user points at a control: the desk is told that the focus moves.
  userFocus(control: ControlView): void;
  // Moves the focus to the control before or after, for a control that keeps Tab to itself.
  moveFocus(from: ControlView, forward: boolean): void;
  // The two ends of the period of which a date is one, null for a date by itself.
  periodOf(control: ControlView): [ControlView, ControlView] | null;
  find(name: string): ControlView | undefined;
  openMenu(x: number, y: number): boolean;
}

export abstract class ControlView {
  readonly name: string;
  readonly kind: string;
  props: Properties = {};
  abstract readonly element: HTMLElement;
  // A caption that another control lends, where this one has none: its field's.
  lent = "";

  constructor(
    readonly screen: ScreenContext,
    readonly node: TreeNode,
  ) {
    this.name = node.name;
    this.kind = node.kind;
    for (const [key, value] of Object.entries(node)) {
      if (key !== "layout" && key !== "name" && key !== "kind") this.props[key] = value as Property;
    }
  }

  get desk(): DeskContext {
    return this.screen.desk;
  }
  text(property: string): string {
    const value = this.props[property];
    return typeof value === "string" ? value : typeof value === "number" ? String(value) : "";
  }
  flag(property: string, otherwise = false): boolean {
    const value = this.props[property];
    return typeof value === "boolean" ? value : otherwise;
  }
  number(property: string, otherwise = 0): number {
    const value = this.props[property];
    return typeof value === "number" ? value : otherwise;
  }
  list(property: string): string[] {
    const value = this.props[property];
    return Array.isArray(value) ? value : [];
  }
  // The letter that reaches the control with Alt, "" without one.
  get accessKey(): string {
    return readCaption(this.text("caption")).key;
  }
  get caption(): string {
    return readCaption(this.text("caption")).text;
  }
  // How it is named to who doesn't see it.
  get label(): string {
    return this.caption || this.lent;
  }
  get enabled(): boolean {
    return this.flag("enabled", true);
  }
  get visible(): boolean {
    return this.flag("visible", true);
  }
  // The tab order stops here.
  get takesFocus(): boolean {
    return false;
  }
  // What the user has put into it, as "set" would give it; null for what takes nothing.
  get content(): string | null {
    return null;
  }
  get canFocus(): boolean {
    return this.takesFocus && this.enabled && this.visible;
  }
  // The element that holds the browser's focus for it.
  get focusElement(): HTMLElement {
    return this.element;
  }

  // New properties from the desk.
  update(changed: Properties): void {
    Object.assign(this.props, changed);
    this.render();
  }
  abstract render(): void;

  setChanged(_state: SetState): void {}
  stateRead(_state: StateOut["screens"][number], _from: number): void {}

  focus(): void {
    if (document.activeElement !== this.focusElement) this.focusElement.focus({ preventScroll: false });
  }
  // A key while the control has the focus; true when that was all.
  press(_press: Press): boolean {
    return false;
  }
  // A key of the browser's own that the control keeps to itself.
  takes(_press: Press): boolean {
    return false;
  }
  // What is typed and not sent yet goes out.
  commit(): void {}
  // What is typed and not sent yet is given up. True when there was something.
  revert(): boolean {
    return false;
  }
  // What its access key does.
  access(): void {}
  destroy(): void {}

  protected send(verb: string, members: Record<string, unknown> = {}, options: Partial<Item> = {}): void {
    this.desk.send({ do: verb, control: this.name, ...members }, options);
  }
  protected sendKey(key: string): void {
    this.send("key", { key });
  }
  // Back to the desk's own state after its answer, which tells only what changed.
  protected settled = (): void => this.render();

  protected showState(shell: HTMLElement, input: HTMLElement | null = null): void {
    shell.hidden = !this.visible;
    shell.classList.toggle("is-disabled", !this.enabled);
    const color = this.text("color");
    for (const known of ["warning", "error", "good", "muted"]) {
      shell.classList.toggle(`tone-${known}`, color === known);
    }
    if (input === null) return;
    if (input instanceof HTMLInputElement || input instanceof HTMLSelectElement || input instanceof HTMLButtonElement) {
      input.disabled = !this.enabled;
    } else {
      input.setAttribute("aria-disabled", String(!this.enabled));
    }
    const key = this.accessKey;
    if (key !== "") input.setAttribute("aria-keyshortcuts", `Alt+${key.toUpperCase()}`);
  }
}
