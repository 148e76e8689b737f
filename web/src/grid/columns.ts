// The columns of a grid: what the desk tells of them, and how wide they are.

export interface Column {
  field: string;
  title: string;
  // In characters, 0 for what the title asks.
  width: number;
  kind: "text" | "number" | "date" | "check";
  readOnly: boolean;
  // Of an amount or a number, where it is typed.
  decimals?: number;
  checked: string;
  unchecked: string;
}

export function readColumn(text: string): Column {
  const [field = "", title = "", width = "0", kind = "text", readOnly = "0", decimals = "2", checked = "", unchecked = ""] =
    text.split("\t");
  return {
    field,
    title,
    width: Number(width) || 0,
    kind: kind === "number" || kind === "date" || kind === "check" ? kind : "text",
    readOnly: readOnly === "1",
    decimals: Number(decimals),
    checked,
    unchecked,
  };
}

const kCharacter = 7.6;
const kTitleCharacter = 8.6;
// What titles are drawn with, where there is a page to draw on.
let pen: CanvasRenderingContext2D | null | undefined;
function textWidth(title: string): number {
  if (pen === undefined) {
    pen = typeof document === "undefined" ? null : document.createElement("canvas").getContext("2d");
    if (pen !== null) {
      const size = parseFloat(getComputedStyle(document.documentElement).fontSize) * 0.95;
      pen.font = `600 ${size}px ${getComputedStyle(document.body).fontFamily}`;
    }
  }
  return pen === null ? title.length * kTitleCharacter : Math.ceil(pen.measureText(title).width);
}
const kPadding = 18;
// Beside its padding a title has the grip by which the column is made wider.
const kTitlePadding = 28;
export const kNarrowest = 36;

// A text is still read in so many pixels.
const kReadable = 150;

function titleWidth(column: Column): number {
  return textWidth(column.title) + kTitlePadding;
}

export function naturalWidth(column: Column): number {
  const title = titleWidth(column);
  let characters = column.width;
  if (column.kind === "date") characters = Math.max(characters, 10);
  if (column.kind === "number") characters = Math.max(Math.min(characters, 18), 13);
  if (column.kind === "check") characters = 3;
  const content = Math.min(characters, 42) * kCharacter + kPadding;
  return Math.round(Math.max(title, content, 48));
}

// The widths with the long texts narrowed, where that brings all columns into `room` pixels. A column that the
// user has sized stays as it is.
export function fittedWidths(columns: Column[], widths: number[], sized: boolean[], room: number): number[] {
  const excess = widths.reduce((sum, width) => sum + width, 0) - room;
  const slack = columns.map((column, at) => {
    if (column.kind !== "text" || sized[at]) return 0;
    return Math.max(0, widths[at]! - Math.max(kReadable, titleWidth(column)));
  });
  const whole = slack.reduce((sum, width) => sum + width, 0);
  if (excess <= 0 || whole < excess) return widths;
  return widths.map((width, at) => Math.floor(width - (slack[at]! * excess) / whole));
}
