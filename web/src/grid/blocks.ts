// The rows of a grid that are at hand, by blocks. A block of an older version is shown until its successor
// arrives, but counts as missing.

interface Block {
  version: number | string;
  rows: string[][];
  // The rows' numbers in their set, where they stand otherwise than in it.
  numbers: number[] | undefined;
}

export const kBlock = 100;
const kKept = 60;

export class Blocks {
  version: number | string = -1;
  count = 0;
  // In order of use, the latest last.
  private blocks = new Map<number, Block>();

  // The set behind has changed.
  renew(version: number | string, count: number): void {
    this.version = version;
    this.count = count;
    for (const at of [...this.blocks.keys()]) {
      if (at * kBlock >= count) this.blocks.delete(at);
    }
  }

  clear(): void {
    this.blocks.clear();
  }

  row(index: number): string[] | undefined {
    return index < this.count ? this.blocks.get(Math.floor(index / kBlock))?.rows[index % kBlock] : undefined;
  }

  // The number in the set of a row at hand.
  number(index: number): number | undefined {
    const block = index < this.count ? this.blocks.get(Math.floor(index / kBlock)) : undefined;
    return block?.numbers?.[index % kBlock];
  }

  fresh(index: number): boolean {
    return this.blocks.get(Math.floor(index / kBlock))?.version === this.version;
  }

  // The blocks between two rows that must be asked for.
  missing(first: number, last: number): number[] {
    const result: number[] = [];
    const end = Math.min(last, this.count - 1);
    for (let at = Math.floor(Math.max(first, 0) / kBlock); at * kBlock <= end; ++at) {
      if (this.blocks.get(at)?.version !== this.version) result.push(at);
    }
    return result;
  }

  // False for rows of a version that has passed.
  store(version: number | string, at: number, rows: string[][], numbers?: number[]): boolean {
    if (version !== this.version) return false;
    this.blocks.delete(at);
    this.blocks.set(at, { version, rows, numbers });
    for (const old of this.blocks.keys()) {
      if (this.blocks.size <= kKept) break;
      this.blocks.delete(old);
    }
    return true;
  }

  get held(): number {
    return this.blocks.size;
  }
}
