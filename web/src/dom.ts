// Making elements. Data becomes text nodes and nothing else.
import { readCaption } from "./text/caption.ts";

type Child = Node | string | null | undefined;

export function el<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  attributes: Record<string, string | boolean> = {},
  ...children: Child[]
): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === false) continue;
    if (name === "class") element.className = String(value);
    else element.setAttribute(name, value === true ? "" : value);
  }
  for (const child of children) {
    if (child !== null && child !== undefined) element.append(child);
  }
  return element;
}

const kSvg = "http://www.w3.org/2000/svg";

export function svg(tag: string, attributes: Record<string, string | number>, ...children: Node[]): SVGElement {
  const element = document.createElementNS(kSvg, tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, String(value));
  element.append(...children);
  return element;
}

const kIcons: Record<string, string> = {
  search: "M7 2.5a4.5 4.5 0 1 1 0 9 4.5 4.5 0 0 1 0-9M10.4 10.4 14 14",
  close: "M4 4l8 8M12 4l-8 8",
  menu: "M2.5 4.5h11M2.5 8h11M2.5 11.5h11",
  information: "M8 7.2v4M8 4.8v.1",
  warning: "M8 6.2v3.6M8 11.8v.1M8 2.2 14.2 13.4H1.8Z",
  question: "M6 6.2c0-2.6 4-2.6 4 0 0 1.6-2 1.6-2 3.2M8 11.6v.1",
  error: "M5.5 5.5l5 5M10.5 5.5l-5 5",
  out: "M9.5 4V2.5h-7v11h7V12M6 8h8M11.5 5.5 14 8l-2.5 2.5",
  user: "M8 2.5a2.7 2.7 0 1 1 0 5.4 2.7 2.7 0 0 1 0-5.4M2.8 13.6c.5-5 9.9-5 10.4 0",
  building: "M3 13.5V2.5h7v11M10 6h3v7.5M1.5 13.5h13M5.2 5.2h2.600M5.200 7.800h2.600M5.200 10.400h2.600",
  more: "M4 8h.1M8 8h.1M12 8h.1",
  file: "M4 1.800h5.500L12.500 5v9.200H4ZM9.500 1.800V5h3",
  columns: "M2.500 3h11v10h-11ZM6.200 3v10M9.800 3v10",
  first: "M4 3.500v9M12 3.500 6.500 8l5.500 4.500",
  previous: "M10.500 3.500 5 8l5.500 4.500",
  next: "M5.500 3.500 11 8l-5.500 4.500",
  last: "M12 3.500v9M4 3.500 9.500 8 4 12.500",
  filter: "M2.500 4h11M4.500 8h7M6.500 12h3",
  calendar: "M2.500 4h11v9.500h-11ZM2.500 7h11M5.500 2.500v3M10.500 2.500v3",
  chart: "M2.500 13.500h11M4.500 11V7M8 11V3.500M11.500 11V8.500",
  star: "M8 2.200l1.700 3.700 4 .500-3 2.700.800 4L8 11.100l-3.500 2 .800-4-3-2.700 4-.500Z",
  clock: "M8 2a6 6 0 1 1 0 12 6 6 0 0 1 0-12M8 4.500V8l2.500 1.500",
  check: "M3.500 8.500 6.500 11.500 12.500 4.500",
};

// A small line drawing that says nothing to a screen reader.
export function icon(name: string): SVGElement {
  const path = svg("path", { d: kIcons[name] ?? "" });
  return svg("svg", { viewBox: "0 0 16 16", class: `icon icon-${name}`, "aria-hidden": "true" }, path);
}

// Writes a caption into an element, its access key underlined.
export function writeCaption(element: HTMLElement, caption: string): void {
  const { text, at } = readCaption(caption);
  element.textContent = "";
  if (at < 0) {
    element.textContent = text;
    return;
  }
  element.append(text.slice(0, at), el("u", {}, text[at]!), text.slice(at + 1));
}

let next = 0;
export function uniqueId(prefix: string): string {
  next += 1;
  return `${prefix}-${next}`;
}
