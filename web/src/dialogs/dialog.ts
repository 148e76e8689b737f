// What stands over the screens and waits for the user: its box, its buttons, its keys.
import { el, icon, uniqueId, writeCaption } from "../dom.ts";
import { pressOf, type Press } from "../keys.ts";
import { plain, readCaption } from "../text/caption.ts";

export interface DialogButton {
  caption: string;
  run: () => void;
  primary?: boolean;
}

export interface DialogOptions {
  title: string;
  className?: string;
  role?: "dialog" | "alertdialog";
  // What Escape and the cross do; none leaves them out.
  cancel?: () => void;
}

export abstract class Dialog {
  readonly element: HTMLElement;
  protected box: HTMLElement;
  protected body: HTMLElement;
  protected foot: HTMLElement;
  private buttons: { element: HTMLButtonElement; key: string; run: () => void }[] = [];

  constructor(private options: DialogOptions) {
    const id = uniqueId("title");
    this.body = el("div", { class: "dialog-body", id: `${id}-body` });
    this.foot = el("div", { class: "dialog-foot" });
    const head = el("div", { class: "dialog-head" }, el("h2", { class: "dialog-title", id }, options.title));
    if (options.cancel !== undefined) {
      const close = el("button", { type: "button", class: "dialog-close", tabindex: "-1", "aria-label": "Fechar" }, icon("close"));
      close.addEventListener("click", () => this.cancel());
      head.append(close);
    }
    this.box = el(
      "div",
      { class: `dialog ${options.className ?? ""}`, role: options.role ?? "dialog", "aria-modal": "true", "aria-labelledby": id, tabindex: "-1" },
      head,
      this.body,
      this.foot,
    );
    if (options.role === "alertdialog") this.box.setAttribute("aria-describedby", `${id}-body`);
    this.element = el("div", { class: "layer" }, this.box);
    this.element.addEventListener("keydown", (event) => this.keyDown(event));
  }

  protected addButton(button: DialogButton): HTMLButtonElement {
    const element = el("button", { type: "button", class: `button ${button.primary ? "is-primary" : ""}` });
    writeCaption(element, button.caption);
    element.addEventListener("click", () => button.run());
    const { key } = readCaption(button.caption);
    if (key !== "") element.setAttribute("aria-keyshortcuts", `Alt+${key.toUpperCase()}`);
    this.buttons.push({ element, key, run: button.run });
    this.foot.append(element);
    return element;
  }

  // Where the browser's focus goes when the dialog opens or comes back.
  focusFirst(): void {
    this.box.focus();
  }

  cancel(): void {
    this.options.cancel?.();
  }

  // A key of the dialog itself; true when that was all.
  protected press(_press: Press): boolean {
    return false;
  }

  private keyDown(event: KeyboardEvent): void {
    if (event.isComposing) return;
    const press = pressOf(event);
    event.stopPropagation();
    if (this.press(press) || this.pressCommon(press, event.target)) event.preventDefault();
  }

  private pressCommon(press: Press, target: EventTarget | null): boolean {
    const { key, alt, ctrl, shift } = press;
    if (key === "Escape") {
      this.cancel();
      return true;
    }
    if (key === "Tab" && !ctrl && !alt) {
      this.cycle(shift);
      return true;
    }
    // In a message the letter alone is enough, as there is nothing to type into.
    const typing = target instanceof HTMLSelectElement || (target instanceof HTMLInputElement && (target.type === "text" || target.type === "password"));
    if ([...key].length === 1 && !ctrl && (alt || !typing)) {
      const button = this.buttons.find((one) => one.key !== "" && one.key === plain(key));
      button?.run();
      return button !== undefined || alt;
    }
    const at = this.buttons.findIndex((one) => one.element === document.activeElement);
    if (at >= 0 && (key === "ArrowLeft" || key === "ArrowRight")) {
      const next = (at + (key === "ArrowRight" ? 1 : -1) + this.buttons.length) % this.buttons.length;
      this.buttons[next]!.element.focus();
      return true;
    }
    return false;
  }

  // The focus stays inside.
  private cycle(back: boolean): void {
    const stops = [...this.box.querySelectorAll<HTMLElement>("input, button, select, [tabindex='0']")].filter(
      (one) => one.tabIndex >= 0 && !one.hasAttribute("disabled") && one.offsetParent !== null,
    );
    if (stops.length === 0) return;
    const at = stops.indexOf(document.activeElement as HTMLElement);
    const next = at < 0 ? 0 : (at + (back ? -1 : 1) + stops.length) % stops.length;
    stops[next]!.focus();
  }

  destroy(): void {
    this.element.remove();
  }
}
