// The menu of the screens, by group, with a search by a few letters. It stands on the empty desk and opens over
// a full one.
import { el, icon, uniqueId } from "./dom.ts";
import { fit } from "./text/match.ts";
import type { MenuEntry } from "./protocol.ts";

// What the page itself does, as an entry among the screens.
export const kAccount: MenuEntry = { class: "", caption: "Minha conta: senha, sessões, aparência", group: "Usuário" };

export class MenuBoard {
  readonly element: HTMLElement;
  private input: HTMLInputElement;
  private list: HTMLElement;
  private shown: { entry: MenuEntry; element: HTMLElement }[] = [];
  private current = 0;
  private id = uniqueId("menu");
  private entries: MenuEntry[];

  constructor(
    entries: MenuEntry[],
    private open: (entry: MenuEntry) => void,
    private leave: () => void,
  ) {
    this.entries = [...entries, kAccount];
    this.input = el("input", {
      type: "text",
      class: "input",
      placeholder: "Abrir uma tela: digite algumas letras",
      role: "combobox",
      "aria-label": "Procurar tela",
      "aria-controls": this.id,
      "aria-expanded": "true",
      "aria-autocomplete": "list",
      autocomplete: "off",
      spellcheck: "false",
    });
    this.list = el("div", { class: "board-list", role: "listbox", id: this.id, "aria-label": "Telas" });
    this.element = el("div", { class: "board" }, el("div", { class: "board-search" }, icon("search"), this.input), this.list);
    this.input.addEventListener("input", () => {
      this.current = 0;
      this.draw();
    });
    this.element.addEventListener("keydown", (event) => this.keyDown(event));
    this.draw();
  }

  reset(): void {
    this.input.value = "";
    this.current = 0;
    this.draw();
  }
  focus(): void {
    this.input.focus();
  }

  private draw(): void {
    const query = this.input.value;
    const fitting = this.entries.map((entry) => ({ entry, rank: fit(query, entry.caption) })).filter((one) => one.rank > 0);
    const groups = new Map<string, MenuEntry[]>();
    // While one searches the best comes first, whatever its group.
    if (query.trim() !== "") fitting.sort((a, b) => b.rank - a.rank);
    for (const { entry } of fitting) groups.set(entry.group, [...(groups.get(entry.group) ?? []), entry]);
    this.shown = [];
    const parts = [...groups].map(([group, entries]) => {
      const title = uniqueId("group");
      const options = entries.map((entry) => this.option(entry));
      return el(
        "div",
        { class: "board-group", role: "group", "aria-labelledby": title },
        el("div", { class: "board-title", id: title }, group || "Outras"),
        ...options,
      );
    });
    this.list.replaceChildren(...parts);
    if (parts.length === 0) this.list.append(el("div", { class: "board-none", role: "option", "aria-disabled": "true", "aria-selected": "false" }, "Nenhuma tela com esse nome"));
    this.mark();
  }

  private option(entry: MenuEntry): HTMLElement {
    const at = this.shown.length;
    const element = el("div", { class: "board-item", role: "option", id: `${this.id}-${at}`, "aria-selected": "false" }, entry.caption);
    element.addEventListener("mousedown", (event) => event.preventDefault());
    element.addEventListener("click", () => this.open(entry));
    element.addEventListener("mousemove", () => {
      if (this.current === at) return;
      this.current = at;
      this.mark();
    });
    this.shown.push({ entry, element });
    return element;
  }

  private mark(): void {
    this.shown.forEach((one, at) => {
      one.element.classList.toggle("is-current", at === this.current);
      one.element.setAttribute("aria-selected", String(at === this.current));
    });
    const now = this.shown[this.current];
    if (now === undefined) {
      this.input.removeAttribute("aria-activedescendant");
      return;
    }
    this.input.setAttribute("aria-activedescendant", now.element.id);
    now.element.scrollIntoView({ block: "nearest" });
  }

  private keyDown(event: KeyboardEvent): void {
    if (event.isComposing) return;
    const last = this.shown.length - 1;
    const to: Record<string, number> = {
      ArrowDown: this.current >= last ? 0 : this.current + 1,
      ArrowUp: this.current <= 0 ? last : this.current - 1,
      PageDown: Math.min(this.current + 8, last),
      PageUp: Math.max(this.current - 8, 0),
    };
    const next = to[event.key];
    if (next !== undefined) {
      this.current = Math.max(next, 0);
      this.mark();
    } else if (event.key === "Enter") {
      const now = this.shown[this.current];
      if (now !== undefined) this.open(now.entry);
    } else if (event.key === "Escape") {
      if (this.input.value === "") this.leave();
      else this.reset();
    } else {
      return;
    }
    event.preventDefault();
    event.stopPropagation();
  }
}
