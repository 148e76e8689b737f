// The lines that offer what was typed in a session that is gone: to open the screen and fill its fields in
// again, one by one as a person would. Nothing is confirmed by itself.
import type { Draft, Drafts, Kept } from "./drafts.ts";
import { el, icon } from "./dom.ts";
import { plain } from "./text/caption.ts";
import type { ScreenView } from "./screen.ts";

export interface TakeUpUser {
  readonly top: ScreenView | undefined;
  // The screen may be opened from the menu now.
  mayOpen(screenClass: string): boolean;
  openScreen(screenClass: string): void;
  // The lines have gone; the focus may have been on one.
  settle(): void;
}

export class TakeUp {
  readonly element = el("div", { class: "offers", role: "status", hidden: true });
  // The draft that is being filled in, with what is still to be given.
  private under: { draft: Draft; rest: Kept[]; begun: boolean; given: boolean; waits: boolean } | null = null;
  private hint = "";
  private shown = "";

  constructor(
    private drafts: Drafts,
    private user: TakeUpUser,
  ) {}

  // Drawn again whenever screens come and go.
  show(): void {
    const offers = this.drafts.left.map((draft) => this.line(draft));
    const shown = offers.map((line) => line.outerHTML).join("");
    if (shown === this.shown) return;
    this.shown = shown;
    this.element.hidden = offers.length === 0;
    this.element.replaceChildren(...offers);
  }

  // Takes up the first that is offered: what the key does.
  first(): void {
    const draft = this.drafts.left[0];
    if (draft !== undefined) this.take(draft);
  }

  private line(draft: Draft): HTMLElement {
    const open = this.user.top?.screenClass === draft.class;
    const count = draft.fields.length === 1 ? "1 campo digitado" : `${draft.fields.length} campos digitados`;
    let text = `“${draft.caption}”: ${count} e não confirmado${draft.fields.length === 1 ? "" : "s"} quando a sessão terminou.`;
    if (this.under?.draft === draft && this.hint !== "") text += ` ${this.hint}`;
    else if (!open && !this.user.mayOpen(draft.class)) text += " Abra a tela para preenchê-los de novo.";
    const take = el("button", { type: "button", class: "button", title: "Ctrl+Alt+R" }, open ? "Preencher" : "Retomar");
    take.disabled = !open && !this.user.mayOpen(draft.class);
    take.addEventListener("click", () => this.take(draft));
    const drop = el("button", { type: "button", class: "button" }, "Descartar");
    drop.addEventListener("click", () => this.end(draft));
    return el("div", { class: "offer" }, icon("information"), el("span", {}, text), take, drop);
  }

  private take(draft: Draft): void {
    const rest = this.under?.draft === draft ? this.under.rest : draft.fields;
    this.under = { draft, rest, begun: false, given: rest.length < draft.fields.length, waits: true };
    this.hint = "";
    if (this.user.top?.screenClass === draft.class) this.go();
    else if (this.user.mayOpen(draft.class)) this.user.openScreen(draft.class);
  }

  private end(draft: Draft): void {
    if (this.under?.draft === draft) this.under = null;
    this.drafts.settle(draft);
    this.show();
    this.user.settle();
  }

  // The desk is idle: the next step.
  go(): void {
    const under = this.under;
    const top = this.user.top;
    if (under === null || !under.waits || top?.screenClass !== under.draft.class) return;
    const next = under.rest.find(([name]) => top.takes(name));
    if (next !== undefined) {
      under.waits = false;
      under.given = true;
      top.give(next, (outcome) => {
        // A question that came first: the user goes on when he has seen to it.
        if (outcome !== "dropped") under.rest = under.rest.filter((one) => one !== next);
        under.waits = outcome === "answered";
        if (!under.waits) this.stop("Continue com “Preencher”.");
      });
      return;
    }
    const { begin } = under.draft;
    if (under.rest.length === 0 || under.given) {
      this.end(under.draft);
    } else if (!under.begun && begin !== null && plain(begin.caption) === "incluir" && top.begin(begin.name)) {
      // A new record is begun as it was then. Which one was being altered only the user knows.
      under.begun = true;
    } else {
      under.waits = false;
      this.stop(begin === null ? "A tela não aceita os campos agora." : `Escolha “${begin.caption}” como antes e depois “Preencher”.`);
    }
  }

  private stop(hint: string): void {
    this.hint = hint;
    this.show();
  }
}
