// The rows of a grid as text for other programs: the chosen ones with their titles, or the cell.
import { kBlock } from "./blocks.ts";
import type { Range } from "./chosen.ts";
import type { GridView } from "./view.ts";

// More rows than anyone pastes anywhere.
const kMostCopied = 50_000;

export class GridCopy {
  private left: Range[] = [];
  private lines: string[] = [];

  constructor(
    private grid: GridView,
    // Asks for the rows around one.
    private fetch: (row: number) => void,
  ) {}

  copy(event: ClipboardEvent): void {
    event.preventDefault();
    const { grid } = this;
    const { chosen } = grid;
    if (chosen.length === 0) {
      event.clipboardData?.setData("text/plain", grid.cellText(grid.row, grid.column));
      return;
    }
    let room = kMostCopied;
    this.left = chosen.flatMap<Range>(([from, to]) => {
      const last = Math.min(to, from + room - 1);
      room -= last - from + 1;
      return last < from ? [] : [[from, last]];
    });
    this.lines = [grid.titles];
    if (this.take()) event.clipboardData?.setData("text/plain", this.lines.join("\n"));
  }

  // Takes the rows that are at hand; false where others have to come first.
  private take(): boolean {
    for (let range = this.left[0]; range !== undefined; range = this.left[0]) {
      const end = Math.min(range[1], (Math.floor(range[0] / kBlock) + 1) * kBlock - 1);
      const text = this.grid.textOf(range[0], end);
      if (text === null) {
        this.fetch(range[0]);
        return false;
      }
      this.lines.push(text);
      if (end === range[1]) this.left.shift();
      else range[0] = end + 1;
    }
    return true;
  }

  // More rows are at hand.
  goOn(): void {
    if (this.left.length > 0 && this.take()) void navigator.clipboard?.writeText(this.lines.join("\n")).catch(() => {});
  }
}
