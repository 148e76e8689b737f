// The columns of a grid: what the desk tells of them, and how wide they are.

export interface Column {
  field: string;
  title: string;
  // In characters, 0 for what the title asks.
  width: number;
  kind: "text" | "number" | "date" | "check";
  readOnly: boolean;
  checked: string;
  unchecked: string;
}

export function readColumn(text: string): Column {
  const [field = "", title = "", width = "0", kind = "text", readOnly = "0", , checked = "", unchecked = ""] =
    text.split("\t");
  return {
    field,
    title,
    width: Number(width) || 0,
    kind: kind === "number" || kind === "date" || kind === "check" ? kind : "text",
    readOnly: readOnly === "1",
    checked,
    unchecked,
  };
}

const kCharacter = 7.6;
const kTitleCharacter = 8.6;
const kPadding = 18;
// Beside its padding a title has the grip by which the column is made wider.
const kTitlePadding = 28;
export const kNarrowest = 36;

export function naturalWidth(column: Column): number {
  const title = column.title.length * kTitleCharacter + kTitlePadding;
  let characters = column.width;
  if (column.kind === "date") characters = Math.max(characters, 10);
  if (column.kind === "number") characters = Math.max(Math.min(characters, 18), 13);
  if (column.kind === "check") characters = 3;
  const content = Math.min(characters, 42) * kCharacter + kPadding;
  return Math.round(Math.max(title, content, 48));
}
