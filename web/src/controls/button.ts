// What is pressed: buttons, lookups, pop-up menus and their items.
import { el, icon, writeCaption } from "../dom.ts";
import { isCharacter, type Press } from "../keys.ts";
import { roleOf } from "../layout.ts";
import { plain, readCaption, withKey } from "../text/caption.ts";
import type { TreeNode } from "../protocol.ts";
import { ControlView, type ScreenContext } from "./control.ts";

// The steps through the rows of a table, drawn as signs.
const kSigns: Record<string, string> = { primeiro: "first", anterior: "previous", proximo: "next", ultimo: "last" };

export class ButtonView extends ControlView {
  readonly element: HTMLButtonElement;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    const small = this.kind !== "button";
    this.element = el("button", { type: "button", class: `button ${small ? "button-small" : ""}` });
    if (small) this.element.tabIndex = -1;
    // The desk says where the focus goes.
    this.element.addEventListener("mousedown", (event) => event.preventDefault());
    this.element.addEventListener("click", (event) => {
      event.preventDefault();
      this.click(event.detail);
    });
    this.render();
  }

  override get takesFocus(): boolean {
    return this.kind === "button";
  }
  // The screen lends a key to a button whose caption has none, so that each is reached without a mouse.
  lentKey = "";
  override get accessKey(): string {
    return readCaption(withKey(this.text("caption"), this.lentKey)).key;
  }

  override render(): void {
    this.showState(this.element, this.element);
    const sign = roleOf(this.node) === "nav" ? kSigns[plain(this.caption)] : undefined;
    if (sign !== undefined) {
      this.element.setAttribute("aria-label", this.caption);
      this.element.title = this.accessKey === "" ? this.caption : `${this.caption} (Alt+${this.accessKey.toUpperCase()})`;
      if (this.element.firstChild === null) this.element.append(icon(sign));
      return;
    }
    writeCaption(this.element, withKey(this.text("caption"), this.lentKey));
    if (this.caption === "") this.element.setAttribute("aria-label", this.label || "Ação");
  }

  // `clicks` of the pointer in one burst, 0 for a key.
  click(clicks = 0): void {
    this.desk.press(this, clicks, () => {
      if (!this.enabled || !this.visible) return;
      this.screen.commit();
      this.send("click", {}, { press: true });
    });
  }

  override press(press: Press): boolean {
    if (press.ctrl || press.alt) return false;
    if (press.key === "Enter" || press.key === " ") {
      this.click();
      return true;
    }
    return isCharacter(press);
  }

  override access(): void {
    this.click();
  }
}

export class LookupButtonView extends ButtonView {
  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.element.classList.add("button-lookup");
  }
  override render(): void {
    this.showState(this.element, this.element);
    if (this.caption !== "") {
      writeCaption(this.element, this.text("caption"));
      return;
    }
    const name = this.lent === "" ? "Pesquisar" : `Pesquisar ${this.lent}`;
    this.element.setAttribute("aria-label", name);
    this.element.title = `${name} (F4)`;
    if (this.element.firstChild === null) this.element.append(icon("search"));
  }
}

export class LabelView extends ControlView {
  readonly element: HTMLElement;
  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.element = el("div", { class: "text-label" });
    this.render();
  }
  override render(): void {
    this.showState(this.element);
    writeCaption(this.element, this.text("caption"));
  }
}

// A pop-up menu: a button of its own, and the right click in the screen.
export class MenuView extends ControlView {
  readonly element: HTMLButtonElement;
  readonly items: MenuItemView[] = [];
  private popup: HTMLElement | null = null;
  private current = -1;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.element = el("button", {
      type: "button",
      class: "button button-small button-menu",
      tabindex: "-1",
      "aria-haspopup": "menu",
      "aria-expanded": "false",
    });
    this.element.addEventListener("mousedown", (event) => event.preventDefault());
    this.element.addEventListener("click", () => {
      const box = this.element.getBoundingClientRect();
      this.desk.act(() => this.open(box.left, box.bottom + 4));
    });
    this.render();
  }

  override render(): void {
    this.showState(this.element, this.element);
    const text = el("span", {});
    writeCaption(text, this.text("caption") || "Mais");
    this.element.replaceChildren(icon("more"), text);
  }

  open(x: number, y: number): void {
    if (!this.enabled || !this.visible) return;
    this.close();
    this.screen.commit();
    this.popup = el("div", { class: "popup menu", role: "menu", "aria-label": this.label || "Mais ações" });
    for (const item of this.items) {
      item.render();
      this.popup.append(item.element);
    }
    document.body.append(this.popup);
    const box = this.popup.getBoundingClientRect();
    this.popup.style.left = `${Math.max(4, Math.min(x, window.innerWidth - box.width - 4))}px`;
    this.popup.style.top = `${Math.max(4, Math.min(y, window.innerHeight - box.height - 4))}px`;
    this.element.setAttribute("aria-expanded", "true");
    this.popup.addEventListener("keydown", (event) => this.keyDown(event));
    this.popup.addEventListener("focusout", (event) => {
      if (!(event.relatedTarget instanceof Node) || !this.popup?.contains(event.relatedTarget)) this.close();
    });
    this.move(0, 1);
  }

  private move(from: number, step: number): void {
    const usable = this.items.filter((item) => item.enabled && item.visible);
    if (usable.length === 0) return;
    this.current = (from + usable.length) % usable.length;
    usable[this.current]!.element.focus();
    void step;
  }

  private keyDown(event: KeyboardEvent): void {
    event.stopPropagation();
    if (event.key === "ArrowDown") this.move(this.current + 1, 1);
    else if (event.key === "ArrowUp") this.move(this.current - 1, -1);
    else if (event.key === "Home") this.move(0, 1);
    else if (event.key === "End") this.move(-1, -1);
    else if (event.key === "Escape" || event.key === "Tab") this.close(true);
    else if (event.key === "Enter" || event.key === " ") (document.activeElement as HTMLElement).click();
    else return;
    event.preventDefault();
  }

  close(back = false): void {
    const popup = this.popup;
    if (popup === null) return;
    this.popup = null;
    popup.remove();
    this.element.setAttribute("aria-expanded", "false");
    if (back) this.screen.find(this.name) && window.dispatchEvent(new Event("orv-refocus"));
  }

  override destroy(): void {
    this.close();
  }
}

export class MenuItemView extends ControlView {
  readonly element: HTMLButtonElement;
  menu: MenuView | null = null;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.element = el("button", { type: "button", class: "menu-item", role: "menuitem", tabindex: "-1" });
    this.element.addEventListener("click", () => {
      this.menu?.close(true);
      this.desk.press(this, 1, () => this.send("menu", {}, { press: true }));
    });
    this.render();
  }
  override render(): void {
    this.showState(this.element, this.element);
    writeCaption(this.element, this.text("caption"));
  }
}
