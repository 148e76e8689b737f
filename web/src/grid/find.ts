// The line over a grid in which one looks for rows.
import { el, icon } from "../dom.ts";
import { showCount } from "../text/money.ts";
import type { Press } from "../keys.ts";

export interface FindUser {
  // The rows that hold the words; `then` once they are there.
  find(text: string, then?: () => void): void;
  // On to the rows that were found.
  toRows(): void;
  closed(): void;
  // The user has come to the line.
  entered(): void;
}

// After the last letter.
const kRest = 180;

export class GridFind {
  readonly element: HTMLElement;
  readonly input: HTMLInputElement;
  // The user is in the line.
  within = false;
  private count = el("span", { class: "grid-find-count", role: "status" });
  private timer = 0;
  private asked = "";

  constructor(private user: FindUser) {
    this.input = el("input", {
      type: "text",
      class: "input",
      placeholder: "Procurar na grade",
      "aria-label": "Procurar na grade",
      autocomplete: "off",
      spellcheck: "false",
      maxlength: "100",
    });
    const close = el("button", { type: "button", class: "grid-tool", tabindex: "-1", "aria-label": "Fechar a procura" }, icon("close"));
    close.addEventListener("mousedown", (event) => event.preventDefault());
    close.addEventListener("click", () => this.close());
    this.element = el("div", { class: "grid-find", role: "search" }, icon("search"), this.input, this.count, close);
    this.element.hidden = true;
    this.input.addEventListener("input", () => {
      window.clearTimeout(this.timer);
      this.timer = window.setTimeout(() => this.ask(), kRest);
    });
    this.input.addEventListener("focus", () => {
      this.within = true;
      user.entered();
    });
    this.element.addEventListener("focusout", (event) => {
      if (event.relatedTarget !== null && !this.element.contains(event.relatedTarget as Node)) this.within = false;
    });
  }

  get shown(): boolean {
    return !this.element.hidden;
  }

  open(): void {
    this.element.hidden = false;
    this.within = true;
    this.input.focus();
    this.input.select();
  }

  // What the desk looks for now, how many rows it found, of how many; `without` the current one.
  show(text: string, found: number, all: number, without: boolean): void {
    if (text !== "" && !this.shown) {
      this.element.hidden = false;
      this.input.value = text;
    }
    this.asked = text;
    const more = without ? ", sem a linha atual" : "";
    this.count.textContent = text === "" ? "" : `${showCount(found)} de ${showCount(all)}${more}`;
  }

  private ask(then?: () => void): void {
    window.clearTimeout(this.timer);
    const text = this.input.value.trim();
    if (text !== this.asked || then !== undefined) this.user.find((this.asked = text), then);
  }

  close(): void {
    this.input.value = "";
    this.ask();
    this.element.hidden = true;
    this.within = false;
    this.user.closed();
  }

  press({ key, ctrl, alt, shift }: Press): boolean {
    if (ctrl && key.toLowerCase() === "f") this.input.select();
    else if (ctrl || alt) return false;
    else if (key === "Escape") this.close();
    else if (key === "Enter" || key === "ArrowDown" || (key === "Tab" && !shift)) {
      this.ask(() => {
        this.within = false;
        this.user.toRows();
      });
    } else return false;
    return true;
  }

  destroy(): void {
    window.clearTimeout(this.timer);
  }
}
