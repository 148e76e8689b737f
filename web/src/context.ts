// What a control and a grid may ask of the desk's page.
import type { HelpOf } from "./dialogs/help.ts";
import type { ControlView } from "./controls/control.ts";
import type { Dialog } from "./dialogs/dialog.ts";
import type { In } from "./protocol.ts";
import type { Item } from "./queue.ts";
import type { Day } from "./text/date.ts";

export interface DeskContext {
  // Sends for the screen; keys typed after it wait for its answer unless `hold` is false.
  send(object: In, options?: Partial<Item>): void;
  // A window of rows, with what else is asked; the answer comes to the screen.
  read(control: string, from: number, count: number, asked?: Record<string, unknown>): void;
  // The same before anything that is typed after it; `done` in the end, told whether it was answered.
  readFirst(control: string, from: number, count: number, asked: Record<string, unknown>, done: (answered: boolean) => void): void;
  has(key: string): boolean;
  // Runs what a pointer did: now, or in its place behind the keys that were typed before, if its screen is
  // still on top then.
  act(run: () => void): void;
  // The same for a press that does something. It is meant for what the user saw: dropped where an earlier one
  // of the pointer or of that key isn't answered yet, and where the control, or a row that it could be about,
  // has become another meanwhile. `clicks` counts those of one burst of the pointer's, 0 for a key.
  press(control: ControlView, clicks: number, run: () => void): void;
  // What stands in a control was typed by the user and may not have been sent.
  typed(control: ControlView): void;
  // True while keys wait for an answer of the desk.
  readonly holding: boolean;
  readonly today: Day;
  // Shows the keys of a screen.
  help(of: HelpOf): void;
  // Shows a box of the page's own.
  box(make: (close: () => void) => Dialog): void;
  // Brings the kept filters of the screen in front.
  filters(): void;
  // What the user has set for his own display.
  remember(key: string, value: string | null): void;
  remembered(key: string): string | null;
}
