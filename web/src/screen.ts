// A screen, drawn from its tree: its controls, its focus, its keys.
import { el, icon, uniqueId, writeCaption } from "./dom.ts";
import { recordKeys } from "./frame.ts";
import { insertInto, pressInto, type Press } from "./keys.ts";
import { isActions, isDescription, isPart, isTall, roleOf, spans, units, type Unit } from "./layout.ts";
import { plain, readCaption, withKey } from "./text/caption.ts";
import { ButtonView, LookupButtonView, MenuItemView, MenuView } from "./controls/button.ts";
import { RadioView } from "./controls/choice.ts";
import { PagesView, PageView, PanelView } from "./controls/container.ts";
import type { ControlView, ScreenContext } from "./controls/control.ts";
import { Fold } from "./controls/fold.ts";
import { makeControl } from "./controls/make.ts";
import { TextView } from "./controls/text.ts";
import { GridControl } from "./grid/control.ts";
import type { DeskContext } from "./context.ts";
import type { Draft, Kept } from "./drafts.ts";
import type { Item } from "./queue.ts";
import type { ChangeOut, RecordInFront, ScreenOut, StateOut, TreeNode } from "./protocol.ts";

export class ScreenView implements ScreenContext {
  readonly id: number;
  readonly dialog: boolean;
  readonly caption: string;
  readonly screenClass: string;
  readonly keyPreview: boolean;
  readonly element: HTMLElement;
  // The control that has the focus on the desk.
  focusName = "";
  // What is under way on it: "Incluindo 006770".
  badge = "";
  // What stands stored in front of the user.
  record: RecordInFront | null = null;
  // In tab order.
  private controls: ControlView[] = [];
  private byName = new Map<string, ControlView>();
  private close: HTMLButtonElement | null = null;
  private folds: Fold[] = [];
  // What brings the kept filters, one a bar, and the letter that does.
  private filterButtons: HTMLButtonElement[] = [];
  private filtersKey = "";
  private pictures: Fold[] = [];

  constructor(
    readonly desk: DeskContext,
    out: ScreenOut,
    onClose: () => void,
  ) {
    this.id = out.id;
    this.dialog = out.kind === "dialog";
    this.caption = readCaption(out.caption).text;
    this.screenClass = out.class;
    this.keyPreview = out.tree.keyPreview;
    this.badge = out.badge ?? "";
    const body = el("div", { class: "screen-body rows" });
    this.drawRows(body, out.tree.layout);
    this.placePictures(body);
    this.lendCaptions();
    this.lendKeys();
    if (this.dialog) {
      const id = uniqueId("title");
      this.close = el("button", { type: "button", class: "dialog-close", tabindex: "-1", "aria-label": "Fechar" }, icon("close"));
      this.close.addEventListener("mousedown", (event) => event.preventDefault());
      this.close.addEventListener("click", onClose);
      const head = el("div", { class: "dialog-head" }, el("h2", { class: "dialog-title", id }, this.caption), this.close);
      const box = el("div", { class: "dialog dialog-screen", role: "dialog", "aria-modal": "true", "aria-labelledby": id }, head, body);
      box.classList.toggle("is-wide", out.tree.layout.some((row) => row.some(isTall)));
      this.element = el("div", { class: "layer" }, box);
    } else {
      this.element = el("section", { class: "screen", "aria-label": this.caption, role: "tabpanel", id: `screen-${this.id}` }, body);
    }
  }

  // --- Drawing.

  // The page or panel in which each control stands, and the one whose controls are being made.
  private holders = new Map<ControlView, ControlView>();
  private holder: ControlView | undefined;

  private make(node: TreeNode): ControlView {
    const control = makeControl(this, node);
    this.controls.push(control);
    this.byName.set(control.name, control);
    const role = roleOf(node);
    if (role !== "") control.element.classList.add(`role-${role}`);
    const around = this.holder;
    if (around !== undefined) this.holders.set(control, around);
    if (control instanceof PanelView || control instanceof PageView || control instanceof PagesView) this.holder = control;
    if (control instanceof PanelView || control instanceof PageView) {
      this.drawRows(control.body, node.layout ?? []);
    } else if (control instanceof PagesView) {
      for (const child of (node.layout ?? []).flat()) {
        const page = this.make(child);
        if (page instanceof PageView) control.add(page);
      }
    } else if (control instanceof MenuView) {
      for (const child of (node.layout ?? []).flat()) {
        const item = this.make(child);
        if (!(item instanceof MenuItemView)) continue;
        item.menu = control;
        control.items.push(item);
      }
    }
    this.holder = around;
    return control;
  }

  private drawRows(into: HTMLElement, rows: TreeNode[][]): void {
    rows.forEach((row, at) => {
      if (row.length === 1 && isPart(row[0]!)) {
        into.append(this.drawPart(row[0]!));
        return;
      }
      const element = el("div", { class: "row" });
      if (row.some(isTall)) element.classList.add("is-tall");
      const actions = isActions(row);
      if (actions) element.classList.add("row-actions");
      // The buttons at the end of a page stay in sight however long it is.
      if (actions && at === rows.length - 1 && rows.length > 1) element.classList.add("row-last");
      for (const unit of units(row)) element.append(this.drawUnit(unit));
      into.append(element);
    });
  }

  private drawPart(node: TreeNode): HTMLElement {
    const rows = node.layout ?? [];
    const element = el("div", { class: `part-${node.kind}` });
    if (isTall(node)) element.classList.add("is-tall");
    switch (node.kind) {
      case "form":
        for (const row of rows) {
          const all = units(row);
          const wide = spans(all);
          const line = el("div", { class: "row form-row" });
          all.forEach((unit, at) => {
            const drawn = this.drawUnit(unit);
            drawn.style.gridColumn = `span ${wide[at]!}`;
            line.append(drawn);
          });
          element.append(line);
        }
        break;
      case "more":
        this.drawFold(rows, element);
        break;
      case "picture":
        this.drawPicture(rows, element);
        break;
      case "bar":
      case "sums":
      case "actions":
        element.classList.add("row");
        if (node.kind === "actions") element.classList.add("row-actions", "row-last");
        for (const unit of rows.flatMap(units)) element.append(this.drawUnit(unit));
        if (node.kind === "bar" && rows.flat().some((one) => roleOf(one) === "primary")) this.drawFilters(element);
        break;
      default:
        element.classList.add("rows");
        this.drawRows(element, rows);
    }
    return element;
  }

  private drawFold(rows: TreeNode[][], into: HTMLElement): void {
    const key = `${this.screenClass}.fold${this.folds.length}`;
    const fold = new Fold(this.desk.remembered(key) === "1", ["Mais filtros", "Menos filtros", "filter"], (open) => {
      this.desk.remember(key, open ? "1" : null);
      this.hideEmptyRows();
      // Who is in what goes out of sight comes to what follows it.
      const here = this.focused;
      if (!open && here !== undefined && fold.holds(here)) this.moveFocus(here, true);
    });
    this.folds.push(fold);
    const from = this.controls.length;
    this.drawRows(fold.body, rows);
    fold.take(this.controls.slice(from));
    into.append(fold.button, fold.body);
  }

  // A chart that is asked for by a button among the screen's actions, so that closed it takes no room.
  private drawPicture(rows: TreeNode[][], into: HTMLElement): void {
    const key = `${this.screenClass}.chart`;
    const fold = new Fold(this.desk.remembered(key) === "1", ["Gráfico", "Fechar gráfico", "chart"], (open) => this.desk.remember(key, open ? "1" : null));
    this.folds.push(fold);
    this.pictures.push(fold);
    this.drawRows(fold.body, rows);
    into.append(fold.body);
  }
  private placePictures(body: HTMLElement): void {
    const actions = [...body.querySelectorAll<HTMLElement>(".part-actions")].pop();
    for (const fold of this.pictures) {
      if (actions === undefined) fold.body.before(fold.button);
      else actions.insertBefore(fold.button, actions.querySelector(":scope > .role-apart"));
    }
  }

  // Filters under names, behind a button at the end of the bar.
  private drawFilters(bar: HTMLElement): void {
    if (this.dialog) return;
    const button = el("button", { type: "button", class: "button filters-button", tabindex: "-1", "aria-haspopup": "dialog" });
    button.addEventListener("mousedown", (event) => event.preventDefault());
    button.addEventListener("click", () => this.desk.filters());
    bar.append(button);
    this.filterButtons.push(button);
  }

  private drawUnit(unit: Unit): HTMLElement {
    const first = unit.nodes[0]!;
    if (isPart(first)) return this.drawPart(first);
    if (unit.width === 0) {
      const control = this.make(first);
      if (unit.grows) control.element.classList.add("grows");
      return control.element;
    }
    const made = unit.nodes.map((node) => this.make(node));
    const field = made[0]!.element;
    field.style.setProperty("--field-width", `${unit.width}px`);
    field.classList.toggle("is-sole-description", unit.nodes.length === 1 && isDescription(first));
    if (made.length === 1) return field;
    const lookup = unit.nodes[1]!.kind === "lookup" ? made[1] : undefined;
    if (lookup !== undefined) {
      field.classList.add("has-lookup");
      field.append(lookup.element);
    }
    const group = el("div", { class: `unit ${unit.grows ? "grows" : ""}` });
    for (const control of made) {
      if (control !== lookup) group.append(control.element);
      if (control !== made[0]) control.element.classList.add("is-description");
    }
    return group;
  }

  // What the page or group around a control is called.
  private placeOf(control: ControlView): string {
    const holder = this.holders.get(control);
    return holder === undefined ? this.caption : holder.caption || this.placeOf(holder);
  }

  // Lookups and descriptions have no caption of their own; who can't see where they stand hears their field's.
  // A grid is called as what stands around it.
  private lendCaptions(): void {
    let last = "";
    for (const control of this.controls) {
      if (control.caption !== "") {
        last = control.caption;
      } else {
        control.lent = control instanceof GridControl ? this.placeOf(control) : last;
        control.render();
      }
    }
  }

  // A letter of the caption that is free on the screen, or else in the panel: panels take turns in being seen.
  private lendKeys(): void {
    const keysOf = (control: ControlView): string[] =>
      control instanceof RadioView ? control.list("items").map((item) => readCaption(item).key) : [control.accessKey];
    const taken = new Set(this.controls.flatMap(keysOf));
    const free = (caption: string, beside: Set<string>): string => {
      const letters = [...plain(caption)].filter((letter) => /[a-z0-9]/.test(letter));
      return letters.find((letter) => !taken.has(letter)) ?? letters.find((letter) => !beside.has(letter)) ?? "";
    };
    const seen = new Map<ControlView | undefined, Set<string>>();
    for (const button of this.controls) {
      if (!(button instanceof ButtonView) || button instanceof LookupButtonView) continue;
      const holder = this.holders.get(button);
      const before = seen.get(holder) ?? new Set();
      seen.set(holder, before);
      const own = button.accessKey;
      // The second of two on one page that name the same letter is lent another.
      if (own !== "" && !before.has(own)) {
        before.add(own);
        continue;
      }
      const beside = new Set(this.controls.filter((one) => one !== button && this.holders.get(one) === holder).flatMap(keysOf));
      button.lentKey = free(button.caption, beside);
      taken.add(button.lentKey);
      before.add(button.lentKey);
      button.render();
    }
    for (const fold of this.folds) {
      fold.key = free(fold.captions[0], new Set());
      taken.add(fold.key);
      fold.render();
    }
    if (this.filterButtons.length === 0) return;
    this.filtersKey = free("Filtros guardados", new Set());
    for (const button of this.filterButtons) {
      writeCaption(button, `${withKey("Filtros", this.filtersKey)} ▾`);
      button.title = "Filtros guardados";
      if (this.filtersKey !== "") button.setAttribute("aria-keyshortcuts", `Alt+${this.filtersKey.toUpperCase()}`);
    }
  }

  // --- From the desk.

  // `chosen`: what a lookup put into fields is the user's, as if he had typed it. True when fields were opened
  // for typing.
  change(out: ChangeOut, chosen: boolean): boolean {
    let opened = false;
    if (out.badge !== undefined) this.badge = out.badge;
    for (const [name, properties] of Object.entries(out.controls ?? {})) {
      const control = this.byName.get(name);
      const before = control?.text("text") ?? "";
      control?.update(properties);
      // A field that takes another text as it is entered says so, and Escape brings the former one back.
      if (name === out.focus && before !== "" && control instanceof TextView && "text" in properties) control.overwritten(before);
      if (control === undefined || control.content === null) continue;
      opened ||= properties["enabled"] === true;
      if (chosen && properties["text"] !== undefined) this.touch(control);
    }
    if (out.controls !== undefined) for (const fold of this.folds) fold.render();
    for (const [name, state] of Object.entries(out.sets ?? {})) {
      for (const control of this.controls) {
        if (control.text("set") === name) control.setChanged(state);
      }
    }
    if (out.focus !== undefined) {
      this.focusName = out.focus;
      this.markFocus();
    }
    if (out.controls !== undefined) this.hideEmptyRows();
    return opened;
  }

  state(state: StateOut["screens"][number], of: string, from: number): void {
    for (const control of this.controls) {
      if (control.name === of || control.text("set") === of) control.stateRead(state, from);
    }
  }

  // A row of which nothing is shown takes no room.
  hideEmptyRows(): void {
    const rows = [...this.element.querySelectorAll<HTMLElement>(".row")].reverse();
    for (const unit of this.element.querySelectorAll<HTMLElement>(".unit")) {
      unit.hidden = ![...unit.children].some((child) => !(child as HTMLElement).hidden);
    }
    for (const row of rows) row.hidden = ![...row.children].some((child) => !(child as HTMLElement).hidden);
  }

  // --- Focus.

  periodOf(control: ControlView): [ControlView, ControlView] | null {
    const at = this.controls.indexOf(control);
    for (const from of [at, at - 1]) {
      const [first, last] = [this.controls[from], this.controls[from + 1]];
      if (first?.kind === "date" && last?.kind === "date" && first.caption === "De" && last.caption === "Até") return [first, last];
    }
    return null;
  }
  find(name: string): ControlView | undefined {
    return this.byName.get(name);
  }
  get focused(): ControlView | undefined {
    return this.byName.get(this.focusName);
  }

  // Brings the browser's focus to where the desk's is.
  syncFocus(): void {
    this.markFocus();
    const control = this.focused;
    if (control === undefined || !control.visible) {
      const home = this.dialog ? (this.element.firstElementChild as HTMLElement) : this.element;
      if (!home.contains(document.activeElement)) {
        home.tabIndex = -1;
        home.focus({ preventScroll: true });
      }
      return;
    }
    this.foldOf(control)?.set(true);
    if (document.activeElement === control.focusElement) return;
    control.focus();
    control.element.scrollIntoView({ block: "nearest" });
  }

  // Seen also while the browser's focus is elsewhere.
  private markFocus(): void {
    for (const element of this.element.querySelectorAll(".has-focus")) element.classList.remove("has-focus");
    this.focused?.element.classList.add("has-focus");
  }

  userFocus(control: ControlView): void {
    if (!control.canFocus) return;
    if (this.desk.holding) {
      this.desk.act(() => this.userFocus(control));
      return;
    }
    const before = this.focused;
    if (before === control) return;
    this.commit();
    this.desk.send({ do: "focus", control: control.name });
  }

  // The folded filters in which a control stands.
  private foldOf(control: ControlView): Fold | undefined {
    return this.folds.find((fold) => !fold.open && fold.holds(control));
  }

  // The controls that take the focus after one, in the order in which they come.
  private *after(from: ControlView, forward: boolean): Generator<ControlView> {
    const order = this.controls;
    const at = order.indexOf(from);
    for (let step = 1; step < order.length; ++step) {
      const next = order[(at + (forward ? step : order.length - step)) % order.length]!;
      if (next.canFocus) yield next;
    }
  }

  moveFocus(from: ControlView, forward: boolean): void {
    for (const next of this.after(from, forward)) {
      if (this.foldOf(next) !== undefined) continue;
      this.commit();
      this.desk.send({ do: "focus", control: next.name });
      return;
    }
  }

  // The desk finds the next control itself, unless that is out of sight.
  private tab(control: ControlView): void {
    const next = this.after(control, true).next();
    if (next.done !== true && this.foldOf(next.value) !== undefined) {
      this.moveFocus(control, true);
      return;
    }
    this.desk.send({ do: "key", control: control.name, key: "Tab" });
  }

  commit(): void {
    for (const control of this.controls) control.commit();
  }

  // --- Keys.

  press(press: Press): boolean {
    const control = this.focused;
    // Wherever the user is, also in a cell.
    if (press.key === "Enter" && press.ctrl && !press.alt) return this.confirm();
    if (control !== undefined && control.canFocus && control.press(press)) return true;
    return this.pressScreen(press, control);
  }

  private pressScreen(press: Press, control: ControlView | undefined): boolean {
    const { key, alt, ctrl, shift } = press;
    if (key === "Tab" && !ctrl && !alt) {
      this.commit();
      if (control === undefined) this.moveFocus(this.controls[0]!, !shift);
      else if (shift) this.moveFocus(control, false);
      else this.tab(control);
      return true;
    }
    if (key === "F1") {
      this.desk.help({ name: this.screenClass, caption: this.caption, keysShown: this.keysShown });
      return true;
    }
    if (alt && !ctrl && [...key].length === 1) return this.access(plain(key));
    // The first where the browser leaves it, the second always.
    const turn = (ctrl && !alt) || (alt && shift);
    if (turn && (key === "PageDown" || key === "PageUp")) return this.turnPage(key === "PageDown");
    if (key === "Escape") {
      if (control?.revert()) return true;
      if (!this.dialog) return false;
      this.desk.send({ do: "close" });
      return true;
    }
    if (key === "ContextMenu" || (shift && key === "F10")) {
      const box = (document.activeElement ?? this.element).getBoundingClientRect();
      return this.openMenu(box.left + 24, box.top + 24);
    }
    return false;
  }

  // A key that was typed ahead, done as the browser would have done it.
  pressAhead(press: Press): void {
    if (this.press(press)) return;
    const active = document.activeElement;
    if (active instanceof HTMLInputElement && active.type === "text" && this.element.contains(active)) pressInto(active, press);
  }
  textAhead(text: string): void {
    const control = this.focused;
    if (control instanceof TextView) {
      insertInto(control.input, text);
    } else {
      for (const key of text) this.pressAhead({ key, ctrl: false, alt: false, shift: false });
    }
  }

  // Presses the button that the screen is for: of several in sight the last, which stands at the foot.
  private confirm(): boolean {
    const button = this.controls.filter((one) => one instanceof ButtonView && one.visible && one.enabled && roleOf(one.node) === "primary").pop();
    button?.access();
    return button !== undefined;
  }

  // What can be pressed now, and by which letter.
  get keysShown(): { key: string; caption: string }[] {
    const buttons = this.controls
      .filter((control) => control instanceof ButtonView && control.visible && control.enabled && control.accessKey !== "")
      .map((control) => ({ key: control.accessKey, caption: control.caption }));
    const folds = this.folds.filter((fold) => fold.button.offsetParent !== null).map((fold) => ({ key: fold.key, caption: fold.captions[fold.open ? 1 : 0] }));
    const filters = this.filtersShown ? [{ key: this.filtersKey, caption: "Filtros guardados: guardar, usar, excluir" }] : [];
    const own = [...buttons, ...folds, ...filters].filter(({ key }) => key !== "").map(({ key, caption }) => ({ key: `Alt+${key.toUpperCase()}`, caption }));
    return [...own, ...(this.record === null ? [] : recordKeys(this.record))];
  }
  private get filtersShown(): boolean {
    return this.filterButtons.some((button) => button.offsetParent !== null);
  }

  private turnPage(forward: boolean): boolean {
    const pages = this.controls.find((control) => control instanceof PagesView && control.visible);
    if (!(pages instanceof PagesView)) return false;
    pages.turn(forward);
    return true;
  }

  private access(key: string): boolean {
    const fold = this.folds.find((one) => one.key === key && one.button.offsetParent !== null);
    if (fold !== undefined) {
      fold.set(!fold.open);
      const first = fold.open ? fold.first : undefined;
      if (first !== undefined) this.userFocus(first);
      return true;
    }
    if (key === this.filtersKey && this.filtersShown) {
      this.commit();
      this.desk.filters();
      return true;
    }
    const at = this.controls.findIndex((control) => control.name === this.focusName);
    // Of several with the same key, the next one after the focus.
    const order = [...this.controls.slice(at + 1), ...this.controls.slice(0, at + 1)];
    for (const control of order) {
      const there = control instanceof PageView ? !control.tab.hidden && control.enabled : control.visible && control.enabled;
      if (!there || control instanceof MenuItemView) continue;
      if (control.accessKey === key) {
        control.access();
        return true;
      }
      const option = control instanceof RadioView ? control.optionOf(key) : -1;
      if (option >= 0) {
        this.commit();
        (control as RadioView).accessOption(option);
        return true;
      }
    }
    return false;
  }

  openMenu(x: number, y: number): boolean {
    const menu = this.controls.find((control) => control instanceof MenuView && control.enabled && control.visible);
    if (!(menu instanceof MenuView)) return false;
    menu.open(x, y);
    return true;
  }

  // --- What is typed and not confirmed.

  // The fields that the user has put something into, in that order.
  private touched = new Set<ControlView>();
  // The button whose press opened fields for typing.
  private begun: ButtonView | null = null;

  touch(control: ControlView): void {
    this.touched.add(control);
  }
  began(button: string): void {
    const control = this.byName.get(button);
    if (control instanceof ButtonView) this.begun = control;
  }
  // What was told of a screen that is drawn anew.
  redraw(draft: Draft): void {
    for (const [name] of draft.fields) this.byName.has(name) && this.touch(this.byName.get(name)!);
    if (draft.begin !== null) this.began(draft.begin.name);
  }

  // What was cleared or closed to typing, as a confirmation does, is no draft any more.
  drafted(): Draft {
    for (const control of this.touched) {
      if (!control.enabled || (control.content ?? "") === "") this.touched.delete(control);
    }
    const begin = this.begun === null ? null : { name: this.begun.name, caption: this.begun.caption };
    return { class: this.screenClass, caption: this.caption, begin, fields: [...this.touched].map((one) => [one.name, one.content!]) };
  }

  // Presses the button that opened the fields then; false where it can't be pressed.
  begin(button: string): boolean {
    const control = this.byName.get(button);
    if (!(control instanceof ButtonView) || !control.enabled || !control.visible) return false;
    control.click();
    return true;
  }
  // The field takes a content now.
  takes(name: string): boolean {
    const control = this.byName.get(name);
    return control !== undefined && control.enabled && control.content !== null;
  }
  // Gives a field its content again: its page first, then the field.
  give([name, content]: Kept, done: Item["done"]): void {
    for (let holder = this.holders.get(this.byName.get(name)!); holder !== undefined; holder = this.holders.get(holder)) {
      const pages = this.holders.get(holder);
      if (holder instanceof PageView && pages instanceof PagesView && !holder.visible) pages.choose(holder);
    }
    this.desk.send({ do: "set", control: name, value: content }, { done });
  }

  // What a press on a control is about, as it is shown, with the rows on which these grids stand.
  sight(control: ControlView, grids: GridControl[]): string {
    return [this.id, control.name, control.enabled, control.visible, control.caption, ...grids.map((one) => one.grid.row)].join("|");
  }

  // --- Drawn anew after a lost connection.

  get draft(): { name: string; text: string } | null {
    const control = this.focused;
    const text = control instanceof TextView ? control.draft : null;
    return text === null ? null : { name: control!.name, text };
  }
  restore(draft: { name: string; text: string }): void {
    const control = this.byName.get(draft.name);
    if (control instanceof TextView && this.focusName === draft.name) control.draft = draft.text;
  }

  get grids(): GridControl[] {
    return this.controls.filter((control): control is GridControl => control instanceof GridControl);
  }

  destroy(): void {
    for (const control of this.controls) control.destroy();
    this.element.remove();
  }
}
