// A box with a list of names, of which one is current: the arrows move, a figure takes the one at that place.
import { el } from "../dom.ts";
import type { Press } from "../keys.ts";
import { Dialog, type DialogOptions } from "./dialog.ts";

export abstract class PickDialog<T extends { name: string; shared: boolean }> extends Dialog {
  protected list: HTMLElement;
  protected items: T[] = [];
  protected told = el("p", { class: "pick-told", role: "status" });
  private at = 0;

  constructor(
    options: DialogOptions,
    label: string,
    private empty: string,
  ) {
    super({ ...options, className: `dialog-pick ${options.className ?? ""}` });
    this.list = el("div", { class: "pick-list", role: "listbox", tabindex: "0", "aria-label": label });
    this.list.addEventListener("click", (event) => this.mark(this.rows.findIndex((row) => row.contains(event.target as Node))));
    this.list.addEventListener("dblclick", () => this.takeCurrent());
    this.body.append(this.list, this.told);
  }

  // What the user wants with one of them; whether he may take it back.
  protected abstract take(item: T): void;
  protected abstract remove(item: T): void;
  protected abstract mayRemove(item: T): boolean;
  // What stands beside its name.
  protected abstract beside(item: T): string;

  protected get current(): T | undefined {
    return this.items[this.at];
  }

  protected fill(items: T[]): void {
    this.items = items;
    this.list.replaceChildren(
      ...items.map((item, at) =>
        el(
          "div",
          { class: "pick-item", role: "option", id: `pick-${at}`, "aria-selected": "false" },
          el("span", { class: "pick-number" }, at < 9 ? String(at + 1) : ""),
          el("span", { class: "pick-name" }, item.name, ...(item.shared ? [el("span", { class: "pick-shared" }, "de todos")] : [])),
          el("span", { class: "pick-beside" }, this.beside(item)),
        ),
      ),
    );
    if (items.length === 0) {
      this.list.removeAttribute("aria-activedescendant");
      this.list.append(el("div", { class: "pick-empty", role: "option", "aria-disabled": "true", "aria-selected": "false" }, this.empty));
    }
    this.mark(Math.max(0, Math.min(this.at, items.length - 1)));
  }

  protected takeCurrent(): void {
    if (this.current !== undefined) this.take(this.current);
  }
  protected removeCurrent(): void {
    const item = this.current;
    if (item === undefined) return;
    if (this.mayRemove(item)) this.remove(item);
    else this.told.textContent = "Só um administrador exclui o que é de todos.";
  }

  override focusFirst(): void {
    this.list.focus();
  }

  protected override press(press: Press): boolean {
    if (document.activeElement !== this.list || press.ctrl || press.alt) return false;
    const step: Record<string, number> = { ArrowDown: 1, ArrowUp: -1, Home: -this.items.length, End: this.items.length };
    if (press.key in step) this.mark(Math.max(0, Math.min(this.items.length - 1, this.at + step[press.key]!)));
    else if (press.key === "Enter") this.takeCurrent();
    else if (press.key === "Delete") this.removeCurrent();
    else if (/^[1-9]$/.test(press.key) && Number(press.key) <= this.items.length) this.take(this.items[Number(press.key) - 1]!);
    else return false;
    return true;
  }

  private get rows(): HTMLElement[] {
    return [...this.list.querySelectorAll<HTMLElement>(".pick-item")];
  }
  private mark(at: number): void {
    if (at < 0 || this.items.length === 0) return;
    this.at = at;
    this.rows.forEach((row, i) => {
      row.classList.toggle("is-current", i === at);
      row.setAttribute("aria-selected", String(i === at));
    });
    this.list.setAttribute("aria-activedescendant", `pick-${at}`);
    this.rows[at]!.scrollIntoView({ block: "nearest" });
  }
}

export function tick(text: string, checked = false): { label: HTMLElement; box: HTMLInputElement } {
  const box = el("input", { type: "checkbox" });
  box.checked = checked;
  return { label: el("label", { class: "pick-tick" }, box, el("span", {}, text)), box };
}

// A name, given with Enter.
export function nameField(give: () => void): { label: HTMLElement; input: HTMLInputElement } {
  const input = el("input", { type: "text", class: "input", maxlength: "40", autocomplete: "off" });
  input.addEventListener("keydown", (event) => {
    if (event.key !== "Enter" || event.isComposing) return;
    event.preventDefault();
    event.stopPropagation();
    give();
  });
  return { label: el("label", { class: "field" }, el("span", { class: "label" }, "Nome"), input), input };
}
