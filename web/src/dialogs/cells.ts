// Stored values as they are shown.
import type { Column } from "../grid/columns.ts";
import { showAmount } from "../text/money.ts";
import { showDate } from "../text/date.ts";

export function columnKind(kind: string | undefined): Column["kind"] {
  if (kind === "date") return "date";
  return kind === "money" || kind === "number" || kind === "integer" ? "number" : "text";
}

// Texts stay letter by letter: a code may look like an amount.
export function shownCell(value: string | null, kind: string | undefined): string {
  if (value === null || value === "") return "";
  if (kind === "date") return showDate(value);
  if (kind === "money" || kind === "number") return showAmount(value);
  return value;
}
