// What holds other controls: panels, groups, pages.
import { el, uniqueId, writeCaption } from "../dom.ts";
import type { TreeNode } from "../protocol.ts";
import { ControlView, type ScreenContext } from "./control.ts";

export class PanelView extends ControlView {
  readonly element: HTMLElement;
  readonly body: HTMLElement;
  private legend: HTMLElement | null = null;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.body = el("div", { class: "rows" });
    this.element = el("div", { class: `container container-${this.kind}` }, this.body);
    if (this.kind === "group") {
      const id = uniqueId("group");
      this.legend = el("div", { class: "legend", id });
      this.element.setAttribute("role", "group");
      this.element.setAttribute("aria-labelledby", id);
      this.element.prepend(this.legend);
    }
    this.render();
  }

  override render(): void {
    this.showState(this.element);
    if (this.legend !== null) writeCaption(this.legend, this.text("caption"));
  }
}

export class PageView extends ControlView {
  readonly element: HTMLElement;
  readonly body: HTMLElement;
  readonly tab: HTMLButtonElement;
  onTab: () => void = () => {};

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    const id = uniqueId("page");
    this.body = el("div", { class: "rows" });
    this.tab = el("button", { type: "button", role: "tab", id: `${id}-tab`, class: "page-tab", "aria-controls": id, tabindex: "-1" });
    this.element = el("div", { class: "page", role: "tabpanel", id, "aria-labelledby": `${id}-tab` }, this.body);
    this.tab.addEventListener("mousedown", (event) => event.preventDefault());
    this.tab.addEventListener("click", () => this.onTab());
    this.render();
  }

  override render(): void {
    this.showState(this.element);
    writeCaption(this.tab, this.text("caption"));
    this.tab.hidden = !this.flag("tab", true);
    this.tab.disabled = !this.enabled;
    this.tab.setAttribute("aria-selected", String(this.visible));
  }

  override access(): void {
    this.onTab();
  }
}

export class PagesView extends ControlView {
  readonly element: HTMLElement;
  readonly body: HTMLElement;
  private tabs: HTMLElement;
  private pages: PageView[] = [];

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    this.tabs = el("div", { class: "page-tabs", role: "tablist", "aria-label": "Páginas" });
    this.body = el("div", { class: "page-bodies" });
    this.element = el("div", { class: "container container-pages" }, this.tabs, this.body);
    this.render();
  }

  add(page: PageView): void {
    this.pages.push(page);
    this.tabs.append(page.tab);
    this.body.append(page.element);
    page.onTab = () => this.desk.act(() => this.choose(page));
  }

  choose(page: PageView): void {
    if (page.tab.hidden || page.tab.disabled || page.name === this.text("page")) return;
    this.screen.commit();
    this.send("page", { page: page.name });
  }

  // The next page that has a tab, or the one before.
  turn(forward: boolean): void {
    const open = this.pages.filter((page) => !page.tab.hidden && !page.tab.disabled);
    const at = open.findIndex((page) => page.name === this.text("page"));
    const next = open[(at + (forward ? 1 : -1) + open.length) % Math.max(open.length, 1)];
    if (next !== undefined) this.choose(next);
  }

  override render(): void {
    this.showState(this.element);
  }
}
