// Finding a screen by a few letters.
import { plain } from "./caption.ts";

// How well the letters fit the caption, higher is better, 0 when they don't: the caption's beginning, the
// beginnings of its words, their initials, a part of it.
export function fit(query: string, caption: string): number {
  const q = plain(query).trim().replace(/\s+/g, " ");
  if (q === "") return 1;
  const c = plain(caption);
  if (c.startsWith(q)) return 5;
  const words = c.split(/[^\p{L}\p{N}]+/u).filter((word) => word !== "");
  const wanted = q.split(" ");
  let next = 0;
  for (const word of words) {
    if (next < wanted.length && word.startsWith(wanted[next]!)) ++next;
  }
  if (next === wanted.length) return 4;
  const initials = (all: string[]): string => all.map((word) => word[0]).join("");
  const compact = q.replace(/ /g, "");
  const long = words.filter((word) => word.length > 2);
  if (compact.length > 1 && (initials(words).startsWith(compact) || initials(long).startsWith(compact))) return 3;
  if (wanted.every((part) => c.includes(part))) return 2;
  return 0;
}
