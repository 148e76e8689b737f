// Dates as they are typed: day only, day and month, with or without strokes.

export interface Day {
  year: number;
  month: number;
  day: number;
}

function daysIn(year: number, month: number): number {
  return new Date(Date.UTC(year, month, 0)).getUTCDate();
}

export function monthDays(day: Day): number {
  return daysIn(day.year, day.month);
}
// 0 for Sunday.
export function weekday(day: Day): number {
  return new Date(Date.UTC(day.year, day.month - 1, day.day)).getUTCDay();
}
export function addDays(day: Day, days: number): Day {
  const moved = new Date(Date.UTC(day.year, day.month - 1, day.day + days));
  return { year: moved.getUTCFullYear(), month: moved.getUTCMonth() + 1, day: moved.getUTCDate() };
}
// "dd/mm/aaaa", null for what isn't a date.
export function fromBrazil(text: string): Day | null {
  const m = /^(\d{2})\/(\d{2})\/(\d{4})$/.exec(text);
  return m ? { year: Number(m[3]), month: Number(m[2]), day: Number(m[1]) } : null;
}

export function brazil(d: Day): string {
  const two = (n: number): string => String(n).padStart(2, "0");
  return `${two(d.day)}/${two(d.month)}/${String(d.year).padStart(4, "0")}`;
}

export function fromNeutral(text: string): Day | null {
  const m = /^(\d{4})-(\d{2})-(\d{2})$/.exec(text);
  return m ? { year: Number(m[1]), month: Number(m[2]), day: Number(m[3]) } : null;
}

export function localToday(): Day {
  const now = new Date();
  return { year: now.getFullYear(), month: now.getMonth() + 1, day: now.getDate() };
}

// Two digits of a year: up to 79 of this century, from 80 of the last.
function fullYear(text: string): number {
  const n = Number(text);
  if (text.length > 2) return n;
  return n < 80 ? 2000 + n : 1900 + n;
}

// The whole date "dd/mm/aaaa" for what was typed: "5" is the 5th of this month, "h" is today. What can't be
// completed comes back as it is, "" for a mask without digits.
export function completeDate(typed: string, today: Day): string {
  const text = typed.trim();
  if (/^[hH]$/.test(text)) return brazil(today);
  const digits = text.replace(/\D/g, "");
  if (digits === "") return /^[\s/.\-_]*$/.test(text) ? "" : typed;
  let parts = text.split(/[/.\-\s]+/).filter((part) => part !== "");
  if (parts.length === 1 && parts[0] === digits) {
    if (digits.length > 2) {
      if (digits.length % 2 !== 0 || digits.length > 8) return typed;
      parts = [digits.slice(0, 2), digits.slice(2, 4), digits.slice(4)].filter((part) => part !== "");
    }
  }
  if (parts.length > 3 || parts.some((part) => !/^\d{1,4}$/.test(part))) return typed;
  const day = Number(parts[0]);
  const month = parts[1] === undefined ? today.month : Number(parts[1]);
  const year = parts[2] === undefined ? today.year : fullYear(parts[2]);
  if (month < 1 || month > 12 || day < 1 || year < 1 || day > daysIn(year, month)) return typed;
  return brazil({ year, month, day });
}

// A stored "aaaa-mm-dd" as it is shown.
export function showDate(neutral: string): string {
  const day = fromNeutral(neutral.slice(0, 10));
  return day ? brazil(day) + neutral.slice(10) : neutral;
}
