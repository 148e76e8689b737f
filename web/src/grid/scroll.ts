// The scroll position of very long lists. A browser bounds the height of an element, so that beyond it the
// height is scaled, and the exact position is kept beside.

export const kTallest = 8_000_000;

export class Scroll {
  // The exact position in pixels of the list as if it had no bound.
  top = 0;
  private shown = 0;

  constructor(
    public rowHeight: number,
    public count = 0,
    public view = 0,
  ) {}

  get total(): number {
    return this.count * this.rowHeight;
  }
  // The height that the element gets.
  get height(): number {
    return Math.min(this.total, kTallest);
  }
  get scaled(): boolean {
    return this.total > kTallest;
  }
  private get span(): number {
    return Math.max(this.total - this.view, 0);
  }
  private get shownSpan(): number {
    return Math.max(this.height - this.view, 0);
  }

  // The element was scrolled by the user. True when that moves the list.
  scrolled(scrollTop: number): boolean {
    if (Math.abs(scrollTop - this.shown) < 1) return false;
    this.shown = scrollTop;
    this.top = this.shownSpan === 0 ? 0 : Math.min(scrollTop / this.shownSpan, 1) * this.span;
    return true;
  }

  // Moves the list; the result is where the element's own scroll bar belongs.
  moveTo(top: number): number {
    this.top = Math.min(Math.max(top, 0), this.span);
    this.shown = this.span === 0 ? 0 : Math.round((this.top / this.span) * this.shownSpan);
    return this.shown;
  }

  // So that the row is seen whole, with the least movement.
  reveal(row: number): number {
    const from = row * this.rowHeight;
    if (from < this.top) return this.moveTo(from);
    if (from + this.rowHeight > this.top + this.view) return this.moveTo(from + this.rowHeight - this.view);
    return this.moveTo(this.top);
  }

  get first(): number {
    return Math.floor(this.top / this.rowHeight);
  }
  // The last row of which anything is seen.
  get last(): number {
    return Math.min(this.count - 1, Math.floor((this.top + this.view - 1) / this.rowHeight));
  }
  // How many rows are seen whole.
  get page(): number {
    return Math.max(1, Math.floor(this.view / this.rowHeight));
  }
}
