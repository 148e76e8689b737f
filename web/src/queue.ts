// What goes out to the desk: one object at a time, in order, the next one only after the desk has answered the
// last. Windows of rows give way to what the user does.
import type { In } from "./protocol.ts";

export type Purpose = "screen" | "answer" | "read";

export interface Item {
  object: In;
  purpose: Purpose;
  // Keys typed after it wait for its answer, since it may move the focus or ask something.
  hold: boolean;
  // It does something once and for all, as a button does: a second one isn't sent before it is answered.
  press?: boolean;
  // An item still waiting is replaced by a later one of the same key.
  key?: string;
  // Told once, with the desk's answer or when the item is dropped unsent.
  done?: (outcome: "answered" | "refused" | "dropped") => void;
}

export class OutQueue {
  private waiting: Item[] = [];
  private flying: Item | null = null;
  private refused = false;

  push(item: Item): void {
    const last = this.lastUser();
    if (item.key !== undefined && item.purpose === "read") {
      this.waiting = this.waiting.filter((other) => other.key !== item.key);
    } else if (item.key !== undefined && last !== undefined && last.key === item.key) {
      // Only the very last may be replaced: what came between must not be overtaken.
      last.object = item.object;
      const before = last.done;
      const after = item.done;
      last.done = (outcome) => {
        before?.(outcome);
        after?.(outcome);
      };
      return;
    }
    this.waiting.push(item);
  }

  private lastUser(): Item | undefined {
    for (let i = this.waiting.length - 1; i >= 0; --i) {
      if (this.waiting[i]!.purpose !== "read") return this.waiting[i];
    }
    return undefined;
  }

  // The next object to send, null while one is unanswered or none waits.
  next(): In | null {
    if (this.flying !== null || this.waiting.length === 0) return null;
    const user = this.waiting.findIndex((item) => item.purpose !== "read");
    this.flying = this.waiting.splice(user < 0 ? 0 : user, 1)[0]!;
    this.refused = false;
    return this.flying.object;
  }

  get current(): Item | null {
    return this.flying;
  }

  // The desk answered what is under way with an error.
  refuse(): void {
    this.refused = true;
  }

  // The desk has ended with what was under way.
  answered(): void {
    const item = this.flying;
    this.flying = null;
    item?.done?.(this.refused ? "refused" : "answered");
    this.refused = false;
  }

  // A question has come, or an action failed: what was meant for the screen as it was before is void.
  dropScreen(): void {
    this.drop((item) => item.purpose === "screen");
  }

  // Another screen is on top: what was meant for the one that was is void.
  keepScreen(id: number): void {
    this.drop((item) => item.object["screen"] !== undefined && item.object["screen"] !== id);
  }

  clear(): void {
    this.flying = null;
    this.drop(() => true);
  }

  private drop(which: (item: Item) => boolean): void {
    const dropped = this.waiting.filter(which);
    this.waiting = this.waiting.filter((item) => !which(item));
    for (const item of dropped) item.done?.("dropped");
  }

  // Puts what was under way back at the head, to be sent again on a new connection.
  requeue(): void {
    if (this.flying === null) return;
    this.waiting.unshift(this.flying);
    this.flying = null;
  }

  get holding(): boolean {
    return (this.flying?.hold ?? false) || this.waiting.some((item) => item.hold);
  }

  get pressing(): boolean {
    return (this.flying?.press ?? false) || this.waiting.some((item) => item.press);
  }


  get pendingUser(): boolean {
    return (this.flying !== null && this.flying.purpose !== "read") || this.lastUser() !== undefined;
  }

  has(key: string): boolean {
    return this.flying?.key === key || this.waiting.some((item) => item.key === key);
  }
}
