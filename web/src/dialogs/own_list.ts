// A short list in a dialog of the page's own, through which one goes by the arrows.
import { el, uniqueId } from "../dom.ts";
import type { Press } from "../keys.ts";

export class OwnList {
  readonly element: HTMLElement;
  current = 0;
  private id = uniqueId("own");

  constructor(label: string) {
    this.element = el("div", { class: "own-list", role: "listbox", tabindex: "0", "aria-label": label });
    this.element.addEventListener("click", (event) => this.mark(this.rows.findIndex((row) => row.contains(event.target as Node))));
  }

  fill(rows: string[][], none: string): void {
    this.element.replaceChildren(
      ...rows.map((row, at) =>
        el("div", { class: "own-item", role: "option", id: `${this.id}-${at}`, "aria-selected": "false" }, ...row.map((text) => el("span", { title: text }, text))),
      ),
    );
    if (rows.length === 0) this.element.append(el("div", { class: "own-item is-none", role: "option", "aria-disabled": "true", "aria-selected": "false" }, none));
    this.mark(Math.min(this.current, rows.length - 1));
  }

  press(press: Press): boolean {
    if (press.key !== "ArrowDown" && press.key !== "ArrowUp") return false;
    this.mark(Math.max(0, Math.min(this.rows.length - 1, this.current + (press.key === "ArrowDown" ? 1 : -1))));
    return true;
  }

  private get rows(): HTMLElement[] {
    return [...this.element.querySelectorAll<HTMLElement>(".own-item:not(.is-none)")];
  }
  private mark(at: number): void {
    if (at < 0) return;
    this.current = at;
    this.rows.forEach((row, i) => {
      row.classList.toggle("is-current", i === at);
      row.setAttribute("aria-selected", String(i === at));
    });
    if (this.rows.length > 0) this.element.setAttribute("aria-activedescendant", `${this.id}-${at}`);
  }
}
