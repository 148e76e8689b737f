// A long gathering: how far it is, and the way out.
import { el } from "../dom.ts";
import type { ProgressOut } from "../protocol.ts";
import { showCount } from "../text/money.ts";
import { Dialog } from "./dialog.ts";

export class ProgressDialog extends Dialog {
  private bar: HTMLProgressElement;
  private text: HTMLElement;
  private numbers: HTMLElement;
  private button: HTMLButtonElement;

  constructor(stop: () => void) {
    const cancel = (): void => {
      this.button.disabled = true;
      this.text.textContent = "Cancelando…";
      stop();
    };
    super({ title: "Aguarde", className: "dialog-progress", cancel });
    this.text = el("p", { class: "lead", role: "status" });
    this.bar = el("progress", { "aria-label": "Andamento" });
    this.numbers = el("p", { class: "progress-numbers" });
    this.body.append(this.text, this.bar, this.numbers);
    this.button = this.addButton({ caption: "Cancelar", run: cancel });
  }

  show(out: ProgressOut): void {
    if (!this.button.disabled) this.text.textContent = out.text || "Processando…";
    if (out.of > 0) {
      this.bar.max = out.of;
      this.bar.value = out.value;
      this.numbers.textContent = `${showCount(out.value)} de ${showCount(out.of)}`;
    } else {
      this.bar.removeAttribute("value");
      this.numbers.textContent = "";
    }
  }
  override focusFirst(): void {
    this.button.focus();
  }
}
