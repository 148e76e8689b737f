// How a user has arranged the columns of a grid: their order, which are hidden, how wide they are. Kept as one
// short text: "DATA=90;-DOCTO;VALOR".
import type { Column } from "./columns.ts";

interface Place {
  field: string;
  // In pixels, 0 for what the column asks.
  width: number;
  hidden: boolean;
}

// Longer ones aren't kept.
const kLongest = 2000;

export class Plan {
  private constructor(private places: Place[]) {}

  static read(text: string | null): Plan {
    const places = (text ?? "").split(";").flatMap<Place>((part) => {
      const [, hidden, field, width] = /^(-?)([^-=;][^=;]*)(?:=(\d+))?$/.exec(part) ?? [];
      return field === undefined ? [] : [{ field, width: Number(width ?? 0), hidden: hidden === "-" }];
    });
    return new Plan(places);
  }

  // null for a grid as the screen gives it.
  get text(): string | null {
    if (this.places.length === 0) return null;
    const text = this.places.map(({ field, width, hidden }) => `${hidden ? "-" : ""}${field}${width > 0 ? `=${width}` : ""}`).join(";");
    return text.length <= kLongest ? text : null;
  }

  private at(field: string): number {
    return this.places.findIndex((place) => place.field === field);
  }
  private of(field: string): Place | undefined {
    return this.places[this.at(field)];
  }

  // The columns in the user's order, also those that he has hidden. One that he never saw stands behind the one
  // that comes before it.
  order(columns: Column[]): Column[] {
    const fields = this.places.map((place) => place.field);
    columns.forEach(({ field }, at) => {
      if (!fields.includes(field)) fields.splice(at === 0 ? 0 : fields.indexOf(columns[at - 1]!.field) + 1, 0, field);
    });
    return [...columns].sort((a, b) => fields.indexOf(a.field) - fields.indexOf(b.field));
  }
  hidden(field: string): boolean {
    return this.of(field)?.hidden ?? false;
  }
  width(field: string): number | null {
    return this.of(field)?.width || null;
  }

  // Notes the order of all columns, those beside which aren't there now included.
  private note(columns: Column[]): void {
    const order = this.order(columns);
    order.forEach(({ field }, at) => {
      if (this.at(field) < 0) this.places.splice(at === 0 ? 0 : this.at(order[at - 1]!.field) + 1, 0, { field, width: 0, hidden: false });
    });
  }
  hide(columns: Column[], field: string, hidden: boolean): void {
    this.note(columns);
    this.of(field)!.hidden = hidden;
  }
  widen(columns: Column[], field: string, width: number | null): void {
    this.note(columns);
    this.of(field)!.width = Math.round(width ?? 0);
  }
  // One place to the front or to the back among those that are there.
  move(columns: Column[], field: string, by: 1 | -1): void {
    this.note(columns);
    const order = this.order(columns);
    const other = order[order.findIndex((column) => column.field === field) + by];
    if (other === undefined) return;
    const [moved] = this.places.splice(this.at(field), 1);
    this.places.splice(this.at(other.field) + (by > 0 ? 1 : 0), 0, moved!);
  }
}
