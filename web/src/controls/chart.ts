// Bars and lines over the rows of a set, a page of points at a time. Series differ by pattern and mark too, not
// by colour alone.
import { el, svg, uniqueId } from "../dom.ts";
import { showAmount } from "../text/money.ts";
import { showDate } from "../text/date.ts";
import type { SetState, StateOut, TreeNode } from "../protocol.ts";
import { ControlView, type ScreenContext } from "./control.ts";
import { scale } from "./chart_scale.ts";

interface Series {
  field: string;
  title: string;
  line: boolean;
}

const kWidth = 960;
const kHeight = 300;
const kLeft = 96;
const kBottom = 44;
const kTop = 12;
// More points than these aren't named one by one; names stand so many points apart.
const kFew = 20;
const kApart = 5;
const kLow = 150;

export class ChartView extends ControlView {
  readonly element: HTMLElement;
  private caption_: HTMLElement;
  private plot: HTMLElement;
  private legend: HTMLElement;
  private labels: string[] = [];
  // NaN where a series has nothing at a point.
  private values: number[][] = [];
  private texts: string[][] = [];
  private page = -1;
  // The room for which it was drawn.
  private room = 0;

  constructor(screen: ScreenContext, node: TreeNode) {
    super(screen, node);
    const id = uniqueId("chart");
    this.caption_ = el("div", { class: "label", id });
    this.plot = el("div", { class: "chart-plot" });
    this.legend = el("div", { class: "chart-legend" });
    this.element = el("div", { class: "field field-chart", role: "group", "aria-labelledby": id }, this.caption_, this.legend, this.plot);
    this.render();
    new ResizeObserver(() => {
      if (this.labels.length > 0 && this.plot.clientWidth > 0 && this.plot.clientWidth !== this.room) this.draw();
    }).observe(this.plot);
  }

  private get series(): Series[] {
    const series = this.list("series").map((text) => {
      const [field = "", title = "", kind] = text.split("\t");
      return { field, title, line: kind === "line" };
    });
    // One without a title has nothing to show.
    return series.filter((one) => one.title !== "");
  }

  override render(): void {
    this.showState(this.element);
    this.caption_.textContent = this.caption || "Gráfico";
    const pages = this.number("pages", 1);
    this.legend.replaceChildren(
      ...this.series.map((one, at) =>
        el("span", { class: "chart-key" }, el("span", { class: `chart-swatch series-${at % 4} ${one.line ? "is-line" : this.series.slice(0, at).filter((other) => !other.line).length % 2 === 1 ? "is-hatched" : ""}` }), one.title),
      ),
      ...(pages > 1 ? [el("span", { class: "chart-page" }, `Página ${this.number("page") + 1} de ${pages}`)] : []),
    );
    if (this.page !== this.number("page")) {
      this.page = this.number("page");
      this.ask();
    }
  }

  override setChanged(_state: SetState): void {
    this.ask();
  }

  private ask(): void {
    const size = this.number("pageSize", 12);
    this.desk.read(this.text("set"), this.number("page") * size, size);
  }

  override stateRead(state: StateOut["screens"][number]): void {
    const set = state.sets[this.text("set")];
    if (set === undefined) return;
    const at = (field: string): number => set.fields.findIndex((one) => one.toLowerCase() === field.toLowerCase());
    const label = at(this.text("label"));
    this.labels = set.rows.map((row) => showDate(row[label] ?? ""));
    const columns = this.series.map((one) => at(one.field));
    this.values = columns.map((column) => set.rows.map((row) => Number(row[column] ?? NaN)));
    this.texts = columns.map((column) => set.rows.map((row) => (row[column] === null ? "" : showAmount(row[column] ?? "0"))));
    this.draw();
  }

  private draw(): void {
    const points = this.labels.length;
    this.room = this.plot.clientWidth;
    if (points === 0) {
      this.plot.replaceChildren(el("div", { class: "grid-empty" }, "Sem dados"));
      return;
    }
    // Many points take the room that there is, so that their letters are as large as any.
    const many = points > kFew;
    const height = many ? Math.min(Math.max(this.plot.clientHeight - 2, kLow), kHeight) : kHeight;
    // Beside a report's rows the figures stand for all to read, and take what room they need.
    const beside = this.element.closest(".part-picture") !== null;
    const table = this.table(beside ? "chart-table" : "unseen");
    const drawing = svg("svg", { "aria-hidden": "true" });
    this.plot.replaceChildren(drawing, beside ? el("div", { class: "chart-figures", role: "region", "aria-label": "Números do gráfico", tabindex: "0" }, table) : table);
    const width = many ? Math.max(Math.floor(drawing.getBoundingClientRect().width), kLeft * 4) : kWidth;
    drawing.setAttribute("viewBox", `0 0 ${width} ${height}`);
    const bottom = many ? kBottom / 2 : kBottom;
    const { low, high, ticks } = scale(this.values.flat().filter((value) => !Number.isNaN(value)), !many || this.series.some((one) => !one.line));
    const y = (value: number): number => kTop + ((high - value) / (high - low)) * (height - kTop - bottom);
    const slot = (width - kLeft - 8) / points;
    const x = (at: number): number => kLeft + slot * (at + 0.5);
    const hatch = uniqueId("hatch");
    const lines = svg("path", { class: "chart-hatch", d: "M0 6 6 0M-1.500 1.500 1.500 -1.500M4.500 7.500 7.500 4.500" });
    const parts: SVGElement[] = [svg("defs", {}, svg("pattern", { id: hatch, width: 6, height: 6, patternUnits: "userSpaceOnUse" }, lines))];
    for (const tick of ticks) {
      parts.push(svg("line", { class: "chart-line", x1: kLeft, x2: width - 8, y1: y(tick), y2: y(tick) }));
      const text = svg("text", { class: "chart-text", x: kLeft - 8, y: y(tick) + 4, "text-anchor": "end" });
      text.textContent = showAmount(tick.toFixed(2), 0);
      parts.push(text);
    }
    const bars = this.series.filter((one) => !one.line).length;
    let bar = 0;
    this.series.forEach((one, at) => {
      const values = this.values[at]!;
      if (one.line) {
        const path = values.map((value, i) => (Number.isNaN(value) ? "" : `${Number.isNaN(values[i - 1] ?? NaN) ? "M" : "L"}${x(i).toFixed(1)} ${y(value).toFixed(1)}`)).join("");
        parts.push(svg("path", { class: `chart-path series-${at % 4}`, d: path }));
      }
      const width = Math.min(36, (slot * 0.72) / Math.max(bars, 1));
      values.forEach((value, i) => {
        if (Number.isNaN(value)) return;
        const title = svg("title", {});
        title.textContent = `${one.title}, ${this.labels[i]}: ${this.texts[at]![i]}`;
        const shape = one.line
          ? svg("circle", { class: `chart-dot series-${at % 4}`, cx: x(i), cy: y(value), r: many ? 2 : 3.5 }, title)
          : svg(
              "rect",
              {
                class: `chart-bar series-${at % 4}`,
                x: x(i) - (bars * width) / 2 + bar * width,
                width: Math.max(width - 2, 1),
                y: Math.min(y(value), y(0)),
                height: Math.max(Math.abs(y(value) - y(0)), 1),
              },
              title,
            );
        parts.push(shape);
        if (one.line || bar % 2 === 0) return;
        const over = shape.cloneNode(false) as SVGElement;
        over.removeAttribute("class");
        over.setAttribute("fill", `url(#${hatch})`);
        over.setAttribute("pointer-events", "none");
        parts.push(over);
      });
      if (!one.line) bar += 1;
      else parts.push(...this.marks(values, this.texts[at]!, x, y, height - bottom));
    });
    if (low <= 0) parts.push(svg("line", { class: "chart-zero", x1: kLeft, x2: width - 8, y1: y(0), y2: y(0) }));
    const every = Math.max(1, Math.ceil(points / 12));
    this.labels.forEach((label, at) => {
      if (at % every !== 0) return;
      // Of many days the year goes without saying.
      const shown = many && /^\d\d\/\d\d\/\d{4}$/.test(label) ? label.slice(0, 5) : label.length > 14 ? `${label.slice(0, 13)}…` : label;
      // The last one stays within the drawing.
      const middle = Math.min(x(at), width - shown.length * 3.6);
      const text = svg("text", { class: "chart-text", x: middle, y: height - bottom + 16, "text-anchor": "middle" });
      text.textContent = shown;
      parts.push(text);
    });
    drawing.append(...parts);
  }

  // The values at the points of a line, each above its point or, where the line rises from it, below.
  // Of many points only the lowest and the ends.
  private marks(values: number[], texts: string[], x: (at: number) => number, y: (value: number) => number, floor: number): SVGElement[] {
    const there = [...values.keys()].filter((i) => !Number.isNaN(values[i]));
    const lowest = there.reduce((least, i) => (values[i]! < values[least]! ? i : least), there[0] ?? 0);
    const marked = there.length <= kFew ? there : [there[0]!, lowest, there[there.length - 1]!].filter((i, at, all) => all.every((other, before) => before >= at || Math.abs(other - i) > kApart));
    return marked.map((i) => {
      const value = values[i]!;
      const below = (values[i + 1] ?? value) > value && y(value) < floor - 20;
      // The outer ones stay within the drawing.
      const anchor = values.length <= kFew ? "middle" : i === 0 ? "start" : i === values.length - 1 ? "end" : "middle";
      const mark = svg("text", { class: "chart-mark", x: x(i), y: y(value) + (below ? 16 : -8), "text-anchor": anchor });
      mark.textContent = texts[i]!.replace(/,\d+$/, "");
      return mark;
    });
  }

  // The figures for who doesn't see the drawing.
  private table(look: string): HTMLElement {
    const row = (cell: "th" | "td", scope: string, head: string, texts: string[]): HTMLElement =>
      el("tr", {}, el("th", { scope }, head), ...texts.map((text) => el(cell, cell === "th" ? { scope: "col" } : {}, text)));
    return el(
      "table",
      { class: look, "aria-label": this.caption || "Gráfico" },
      row("th", "col", "Ponto", this.series.map((one) => one.title)),
      ...this.labels.map((label, i) => row("td", "row", label, this.texts.map((texts) => texts[i]!))),
    );
  }
}
