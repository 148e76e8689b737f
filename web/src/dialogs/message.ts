// Messages of the three kinds, the host's own about what failed, and the input box.
import { el, icon } from "../dom.ts";
import type { InputOut, MessageOut } from "../protocol.ts";
import { Dialog } from "./dialog.ts";

const kCaptions: Record<string, string> = { ok: "OK", yes: "&Sim", no: "&Não", cancel: "&Cancelar" };
const kTitles: Record<string, string> = { information: "Informação", warning: "Atenção", question: "Confirmação" };

function lines(text: string): HTMLElement {
  const box = el("div", { class: "message-text" });
  for (const line of text.split(/\r?\n/)) box.append(el("p", {}, line === "" ? "\u00a0" : line));
  return box;
}

export class MessageDialog extends Dialog {
  private initial: HTMLButtonElement | null = null;

  constructor(out: MessageOut, answer: (value: string) => void) {
    const no = out.buttons.includes("no");
    super({
      title: out.title || kTitles[out.kind] || "Aviso",
      className: `dialog-message kind-${out.kind}`,
      role: "alertdialog",
      cancel: () => answer(out.buttons.includes("cancel") ? "cancel" : no ? "no" : (out.buttons[0] ?? "ok")),
    });
    const sign = el("div", { class: "message-sign" }, icon(out.kind), el("span", { class: "unseen" }, kTitles[out.kind] ?? ""));
    this.body.append(sign, lines(out.text));
    for (const button of out.buttons) {
      const element = this.addButton({
        caption: kCaptions[button] ?? button,
        primary: button === out.default,
        run: () => answer(button),
      });
      if (button === out.default || this.initial === null) this.initial = element;
    }
  }
  override focusFirst(): void {
    this.initial?.focus();
  }
}

// An exception that reached the host, or a request that can't be done. The desk waits for no answer.
export class ErrorDialog extends Dialog {
  private ok: HTMLButtonElement;

  constructor(text: string, closed: () => void, title = "Não foi possível concluir") {
    super({ title, className: "dialog-message kind-error", role: "alertdialog", cancel: closed });
    this.body.append(el("div", { class: "message-sign" }, icon("error"), el("span", { class: "unseen" }, "Erro")), lines(text));
    this.ok = this.addButton({ caption: "OK", primary: true, run: closed });
  }
  override focusFirst(): void {
    this.ok.focus();
  }
}

export class InputDialog extends Dialog {
  private input: HTMLInputElement;

  constructor(out: InputOut, answer: (value: string) => void) {
    super({ title: out.title, className: "dialog-input", cancel: () => answer("cancel") });
    this.input = el("input", { type: "text", class: "input", autocomplete: "off" });
    this.input.value = out.value;
    this.body.append(el("label", { class: "field" }, el("span", { class: "label" }, out.prompt), this.input));
    const give = (): void => answer(this.input.value);
    this.input.addEventListener("keydown", (event) => {
      if (event.key !== "Enter" || event.isComposing) return;
      event.preventDefault();
      event.stopPropagation();
      give();
    });
    this.addButton({ caption: "OK", primary: true, run: give });
    this.addButton({ caption: "Cancelar", run: () => answer("cancel") });
  }
  override focusFirst(): void {
    this.input.focus();
    this.input.select();
  }
}
