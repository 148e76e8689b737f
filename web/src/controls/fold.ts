// What is out of sight until it is asked for. Of filters that are seldom set the button tells how many are.
import { el, icon, uniqueId, writeCaption } from "../dom.ts";
import { withKey } from "../text/caption.ts";
import type { ControlView } from "./control.ts";

const kValues = ["text", "index", "checked"];

function valueOf(control: ControlView): string {
  return kValues.map((property) => JSON.stringify(control.props[property] ?? null)).join();
}

export class Fold {
  readonly button: HTMLButtonElement;
  readonly body: HTMLElement;
  // The letter that reaches it with Alt.
  key = "";
  private label = el("span", {});
  private count = el("span", { class: "fold-count" });
  // What stands in it, with the value with which the screen opened.
  private inside = new Map<ControlView, string>();

  constructor(
    open: boolean,
    // While it is closed, while it is open, and its sign.
    readonly captions: [string, string, string],
    private readonly toggled: (open: boolean) => void,
  ) {
    const id = uniqueId("more");
    this.body = el("div", { class: "rows fold", id, hidden: !open });
    this.button = el("button", { type: "button", class: "button fold-button", tabindex: "-1", "aria-expanded": String(open), "aria-controls": id }, icon(captions[2]), this.label, this.count);
    this.button.addEventListener("mousedown", (event) => event.preventDefault());
    this.button.addEventListener("click", () => this.set(!this.open));
    this.render();
  }

  take(controls: ControlView[]): void {
    for (const control of controls) this.inside.set(control, valueOf(control));
    this.render();
  }

  get open(): boolean {
    return !this.body.hidden;
  }
  get first(): ControlView | undefined {
    return [...this.inside.keys()].find((control) => control.canFocus);
  }
  holds(control: ControlView): boolean {
    return this.inside.has(control);
  }

  set(open: boolean): void {
    if (open === this.open) return;
    this.body.hidden = !open;
    this.button.setAttribute("aria-expanded", String(open));
    this.render();
    this.toggled(open);
  }

  render(): void {
    writeCaption(this.label, withKey(this.captions[this.open ? 1 : 0], this.key));
    if (this.key !== "") this.button.setAttribute("aria-keyshortcuts", `Alt+${this.key.toUpperCase()}`);
    const set = [...this.inside].filter(([control, value]) => control.takesFocus && valueOf(control) !== value).length;
    this.count.textContent = set === 0 ? "" : String(set);
    this.count.hidden = set === 0;
    this.button.title = set === 0 ? "" : set === 1 ? "1 filtro alterado" : `${set} filtros alterados`;
  }
}
