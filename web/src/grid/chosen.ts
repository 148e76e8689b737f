// Chosen rows as ranges of places, ascending and apart from each other.
export type Range = [number, number];

export function joined(ranges: Range[]): Range[] {
  const result: Range[] = [];
  for (const [from, to] of [...ranges].sort((a, b) => a[0] - b[0])) {
    const last = result[result.length - 1];
    if (last !== undefined && from <= last[1] + 1) last[1] = Math.max(last[1], to);
    else result.push([from, to]);
  }
  return result;
}

export function without(ranges: Range[], row: number): Range[] {
  return ranges.flatMap<Range>(([from, to]) => {
    if (row < from || row > to) return [[from, to]];
    const parts: Range[] = [
      [from, row - 1],
      [row + 1, to],
    ];
    return parts.filter(([first, last]) => first <= last);
  });
}

export const holds = (ranges: Range[], row: number): boolean => ranges.some(([from, to]) => row >= from && row <= to);

export const countOf = (ranges: Range[]): number => ranges.reduce((sum, [from, to]) => sum + to - from + 1, 0);
