// The objects of the door, as they come and go.

export type Property = boolean | number | string | string[];
export type Properties = Record<string, Property>;

export interface TreeNode {
  name: string;
  kind: string;
  layout?: TreeNode[][];
  [property: string]: Property | TreeNode[][] | undefined;
}

export interface ScreenOut {
  on: "screen";
  id: number;
  class: string;
  caption: string;
  kind: "child" | "dialog";
  badge?: string;
  tree: { layout: TreeNode[][]; keyPreview: boolean };
}

export interface SetState {
  version: number;
  count: number;
  row: number;
  state: string;
}

export interface ChangeOut {
  on: "change";
  screen: number;
  controls?: Record<string, Properties>;
  focus?: string;
  badge?: string;
  sets?: Record<string, SetState>;
  // What stands in front of the user, null for nothing any more.
  record?: RecordInFront | null;
}

export interface RecordInFront {
  title: string;
  // How many files are attached; none where none can be.
  attachments?: number;
}

export interface AttachmentsOut {
  on: "attachments";
  screen: number;
  title: string;
  record: string;
  mayChange: boolean;
  rows: { id: number; name: string; kind: string; size: number; who: string; when: string }[];
}

export interface AttachmentOut {
  on: "attachment";
  name: string;
  address: string;
}

export interface MessageOut {
  on: "message";
  kind: "information" | "warning" | "question";
  title: string;
  text: string;
  buttons: string[];
  default: string;
}

export interface InputOut {
  on: "input";
  title: string;
  prompt: string;
  value: string;
}

export interface LookupColumn {
  field: string;
  title: string;
  kind?: string;
}

export interface LookupOut {
  on: "lookup";
  control: string;
  columns: LookupColumn[];
  count: number;
  multiple: boolean;
}

export interface ConfirmLine {
  debit: string;
  debitDescription: string;
  credit: string;
  creditDescription: string;
  // As people read it, "1.234,56".
  amount: string;
  note: string;
  // An account of the line isn't there.
  unknown: boolean;
}

export interface ConfirmOut {
  on: "confirm";
  title: string;
  lines: ConfirmLine[];
}

export interface FileOut {
  on: "file";
  control: string;
  filters: string;
}

export interface DetailOut {
  on: "detail";
  title: string;
  columns: string[];
  kinds?: string[];
  rows: (string | null)[][];
}

// What a person should notice and needn't answer.
export interface NoteOut {
  on: "note";
  kind: "stored" | "changed" | "warning";
  text: string;
}

export interface ReportOut {
  on: "report";
  id: number | string;
  identifier?: string;
  title?: string;
  formats?: string[];
  // The tables that it can be taken away as.
  tables?: string[];
  // It can be made again from its screen.
  favourite?: boolean;
  // Of an answer to a form that was asked for.
  format?: string;
  address?: string;
}

// The filters that are kept for the bar of a screen.
export interface KeptFilter {
  name: string;
  shared: boolean;
  told: string[];
}
export interface FiltersOut {
  on: "filters";
  screen: number;
  list: KeptFilter[];
  // What the bar says now; whether some of its days move with today.
  now: string[];
  moves: boolean;
  // The screen begins with the latest ones.
  latest: boolean;
  mayShare: boolean;
  // Captions of the fields that didn't take what was kept.
  left: string[];
}

export interface Favourite {
  name: string;
  shared: boolean;
  screen: string;
  title: string;
  mayOpen: boolean;
}
export interface FavouritesOut {
  on: "favourites";
  list: Favourite[];
  mayShare: boolean;
}

export interface ProgressOut {
  on: "progress";
  value: number;
  of: number;
  text: string;
}

export interface SetRows {
  fields: string[];
  count: number;
  row: number;
  state: string;
  version: number;
  rows: (string | null)[][];
}

// A window of a grid, and the sums of rows that were asked for with it. `rows` are the numbers in the set where
// the window is of the view.
export interface GridRows {
  cells?: string[][];
  rows?: number[];
  version?: number;
  view?: number;
  sums?: { count: number; columns: Record<string, string> };
}

export interface StateOut {
  on: "state";
  screens: {
    id: number;
    class: string;
    caption: string;
    focus: string;
    controls: Record<string, GridRows & Record<string, unknown>>;
    sets: Record<string, SetRows>;
  }[];
}

export type Question = MessageOut | InputOut | LookupOut | ConfirmOut | FileOut | DetailOut;

export type Out =
  | { on: "hello"; session: string; received?: number }
  | ScreenOut
  | ChangeOut
  | { on: "front"; screen: number }
  | { on: "closed"; screen: number }
  | Question
  | ReportOut
  | FiltersOut
  | FavouritesOut
  | AttachmentsOut
  | AttachmentOut
  | ProgressOut
  | { on: "busy"; value: boolean }
  | NoteOut
  | { on: "error"; text: string }
  | StateOut
  | { on: "idle" }
  | { on: "waiting"; for: string }
  | { on: "ended"; text?: string };

export interface In {
  do: string;
  [member: string]: unknown;
}

export interface MenuEntry {
  class: string;
  caption: string;
  group: string;
}

export interface Me {
  user: string;
  company: string;
  companyName: string;
  menu: MenuEntry[];
  // The desk's own date, "yyyy-mm-dd", where it differs from the machine's.
  today?: string;
}
