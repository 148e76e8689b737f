// What stands over the screens and is answered first: the desk's question, how far a long action is, and boxes
// of the page itself, for which the desk doesn't wait.
import type { upload } from "./api.ts";
import { AttachmentsDialog } from "./dialogs/attachments.ts";
import type { Dialog } from "./dialogs/dialog.ts";
import { FileDialog } from "./dialogs/file.ts";
import { LookupDialog } from "./dialogs/lookup.ts";
import { FavouritesDialog, KeepFavouriteDialog } from "./dialogs/favourites.ts";
import { FiltersDialog } from "./dialogs/filters.ts";
import { InputDialog, MessageDialog } from "./dialogs/message.ts";
import { ProgressDialog } from "./dialogs/progress.ts";
import { deliver, ReportDialog } from "./dialogs/report.ts";
import { ConfirmDialog, DetailDialog } from "./dialogs/tables.ts";
import type { FavouritesOut, FiltersOut, In, Out, Question, SetRows } from "./protocol.ts";

export interface BoxesUser {
  // What stands under the boxes, from bottom to top.
  beneath(): HTMLElement[];
  // The label of a control of the screen on top.
  labelOf(control: string): string;
  // A box comes: what was open in the frame closes.
  boxOpens(): void;
  // The last thing that the user saw was a box, which has gone or was answered.
  boxSeen(): void;
  // The focus goes where it belongs.
  settle(): void;
  answer(object: In): void;
  search(text: string): void;
  read(control: string, from: number, count: number): void;
  upload(file: File, signal: AbortSignal): ReturnType<typeof upload>;
  // Ends the long action that is under way.
  stop(): void;
  // Something went well.
  told(text: string): void;
  // Asks for a report's file; `done` tells whether it was answered.
  render(report: number | string, format: string, table: number, done: (answered: boolean) => void): void;
  send(object: In): void;
  // What is asked of the attachments of a record: "attach", "detach", "download".
  ofAttachments(verb: string, record: string, id: number | null, done: (answered: boolean) => void): void;
}

export class Boxes {
  private question: Dialog | null = null;
  // The user has answered; the box comes back if the desk goes on waiting.
  private answered = false;
  private progress: ProgressDialog | null = null;
  private own: Dialog[] = [];

  constructor(
    private root: HTMLElement,
    private user: BoxesUser,
  ) {}

  destroy(): void {
    for (const box of this.all) box.destroy();
  }

  private get all(): Dialog[] {
    return [this.question, this.progress, ...this.own].filter((box) => box !== null);
  }
  // The desk has asked and waits, or its answer is under way.
  get asked(): boolean {
    return this.question !== null;
  }
  private get open(): Dialog | null {
    return this.answered ? null : this.question;
  }
  get top(): Dialog | null {
    return this.own[this.own.length - 1] ?? this.progress ?? this.open;
  }

  // Puts the boxes over whatever was added to the page.
  raise(): void {
    for (const box of this.all) this.root.append(box.element);
    this.layers();
  }

  // Only what is on top can be reached.
  private layers(): void {
    const stack = this.user.beneath();
    for (const box of [this.open, this.progress, ...this.own]) {
      if (box !== null) stack.push(box.element);
    }
    stack.forEach((element, at) => (element.inert = at < stack.length - 1));
  }

  // --- Of the page itself.

  show(box: Dialog): void {
    this.user.boxOpens();
    this.own.push(box);
    this.root.append(box.element);
    this.layers();
    box.focusFirst();
  }
  close(box: Dialog): void {
    this.own = this.own.filter((one) => one !== box);
    this.user.boxSeen();
    box.destroy();
    this.layers();
    this.user.settle();
  }
  // No is what Enter means.
  confirm(title: string, text: string, yes: () => void): void {
    const box: MessageDialog = new MessageDialog({ on: "message", kind: "question", title, text, buttons: ["yes", "no"], default: "no" }, (value) => {
      this.close(box);
      if (value === "yes") yes();
    });
    this.show(box);
  }

  report(out: Extract<Out, { on: "report" }>): void {
    const known = this.own.find((box): box is ReportDialog => box instanceof ReportDialog && box.id === out.id);
    if (out.address !== undefined) {
      const url = new URL(out.address, location.href);
      // The file of a grid belongs to no report.
      if (out.id === 0 && url.origin === location.origin) this.user.told(deliver(url));
      known?.ready(out.address, out.format ?? "");
      return;
    }
    if (known !== undefined) return;
    const box: ReportDialog = new ReportDialog(
      out,
      (format, table) => this.user.render(out.id, format, table, (answered) => answered || box.refused()),
      () => this.keepFavourite(out.id, out.title ?? ""),
      () => this.close(box),
    );
    this.show(box);
    box.begin();
  }

  // --- Kept filters and favourite reports.

  // `used`: the filters stand on the screen now.
  filters(out: FiltersOut, caption: string, used: boolean): void {
    const known = this.own.find((box): box is FiltersDialog => box instanceof FiltersDialog);
    if (known === undefined) {
      if (used) return;
      const box: FiltersDialog = new FiltersDialog(out, caption, (object) => this.user.send(object), () => this.close(box));
      this.show(box);
    } else if (used) {
      this.close(known);
    } else {
      known.show(out);
    }
  }

  favourites(out: FavouritesOut): void {
    const known = this.own.find((box): box is FavouritesDialog => box instanceof FavouritesDialog);
    if (known !== undefined) {
      known.show(out);
      return;
    }
    const box: FavouritesDialog = new FavouritesDialog(out, (object) => this.user.send(object), () => this.close(box));
    this.show(box);
  }

  private keepFavourite(report: number | string, title: string): void {
    const box: KeepFavouriteDialog = new KeepFavouriteDialog(
      title,
      (name, shared) => {
        this.close(box);
        this.user.send({ do: "favourites", act: "save", report, name, shared });
      },
      () => this.close(box),
    );
    this.show(box);
  }

  // What the desk asks next stands where the list stood; it comes back with what has become of it.
  attachments(out: Extract<Out, { on: "attachments" }>): void {
    const old = this.attached;
    if (old !== undefined) this.close(old);
    const { record } = out;
    const leave = (verb: string, id: number | null): void => {
      this.close(box);
      this.user.ofAttachments(verb, record, id, () => {});
    };
    const box: AttachmentsDialog = new AttachmentsDialog(
      out,
      {
        download: (id) => this.user.ofAttachments("download", record, id, (answered) => answered || box.refused()),
        attach: () => leave("attach", null),
        detach: (id) => leave("detach", id),
      },
      () => this.close(box),
    );
    this.show(box);
  }
  attachment(out: Extract<Out, { on: "attachment" }>): void {
    this.attached?.ready(out.address, out.name);
  }
  private get attached(): AttachmentsDialog | undefined {
    return this.own.find((box): box is AttachmentsDialog => box instanceof AttachmentsDialog);
  }

  // --- The desk's question.

  ask(out: Question): void {
    this.endProgress();
    this.user.boxOpens();
    if (out.on === "lookup" && this.question instanceof LookupDialog && this.question.control === out.control && !this.answered) {
      this.question.show(out);
      return;
    }
    this.endQuestion();
    this.question = this.dialogFor(out);
    this.answered = false;
    this.raise();
    if (this.own.length === 0) this.question.focusFirst();
  }

  private dialogFor(out: Question): Dialog {
    const give = (value: string): void => this.answer({ do: "answer", value });
    switch (out.on) {
      case "message":
        return new MessageDialog(out, give);
      case "input":
        return new InputDialog(out, give);
      case "confirm":
        return new ConfirmDialog(out, give);
      case "detail":
        return new DetailDialog(out, () => give("ok"));
      case "file":
        return new FileDialog(
          out,
          (file, signal) => this.user.upload(file, signal),
          (name, given) => this.answer({ do: "file", name, upload: given }),
          () => give("cancel"),
        );
      case "lookup":
        return new LookupDialog(out, this.user.labelOf(out.control), {
          search: (text) => this.user.search(text),
          choose: (rows) => this.answer({ do: "choose", rows }),
          cancel: () => this.answer({ do: "choose" }),
          read: (control, from, count) => this.user.read(control, from, count),
        });
    }
  }

  private answer(object: In): void {
    if (this.question === null || this.answered) return;
    this.answered = true;
    this.user.boxSeen();
    this.question.element.hidden = true;
    this.user.answer(object);
  }

  // The desk waits on though it has taken everything: the answer wasn't one.
  askAgain(): void {
    if (this.question === null || !this.answered) return;
    this.answered = false;
    this.question.element.hidden = false;
    this.layers();
    if (this.own.length === 0) this.question.focusFirst();
  }

  endQuestion(): void {
    if (this.question === null) return;
    this.question.destroy();
    this.question = null;
    this.answered = false;
    this.layers();
  }

  // Rows of a control, as they may be wanted by an open list.
  rows(control: string, rows: SetRows, from: number): void {
    if (this.question instanceof LookupDialog && this.question.control === control) this.question.rows(rows, from);
  }

  // --- A long action.

  showProgress(out: Extract<Out, { on: "progress" }>): void {
    if (this.progress === null) {
      this.progress = new ProgressDialog(() => {
        this.user.boxSeen();
        this.user.stop();
      });
      this.root.append(this.progress.element);
      this.layers();
      this.progress.focusFirst();
    }
    this.progress.show(out);
  }
  endProgress(): void {
    if (this.progress === null) return;
    this.progress.destroy();
    this.progress = null;
    this.layers();
  }
}
