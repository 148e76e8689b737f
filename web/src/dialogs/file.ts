// A file is handed to the desk: chosen or dropped here, sent as it is.
import type { upload } from "../api.ts";
import { el, icon } from "../dom.ts";
import type { FileOut } from "../protocol.ts";
import { Dialog } from "./dialog.ts";

// "Planilhas|*.xls;*.xlsx|Todos|*.*" as the browser's own filter.
export function acceptOf(filters: string): string {
  const parts = filters.split("|");
  const patterns = parts.length > 1 ? parts.filter((_, at) => at % 2 === 1) : parts;
  const endings = patterns
    .join(";")
    .split(/[;,\s]+/)
    .map((pattern) => pattern.replace(/^\*/, ""))
    .filter((ending) => ending !== "");
  return endings.some((ending) => !/^\.[\w-]+$/.test(ending)) ? "" : endings.join(",");
}

export class FileDialog extends Dialog {
  private choose: HTMLButtonElement;
  private status: HTMLElement;
  private sending: AbortController | null = null;

  constructor(
    out: FileOut,
    private send: (file: File, signal: AbortSignal) => ReturnType<typeof upload>,
    private give: (name: string, upload: string) => void,
    cancel: () => void,
  ) {
    super({ title: "Escolher arquivo", className: "dialog-file", cancel });
    const input = el("input", { type: "file", class: "unseen", tabindex: "-1", "aria-label": "Arquivo" });
    const accept = acceptOf(out.filters);
    if (accept !== "") input.accept = accept;
    this.choose = el("button", { type: "button", class: "button is-primary" }, "Procurar no computador…");
    this.status = el("p", { class: "file-status", role: "status" }, "ou arraste o arquivo para cá");
    const drop = el("div", { class: "file-drop" }, icon("file"), this.choose, this.status, input);
    this.body.append(drop);
    if (accept !== "") this.body.append(el("p", { class: "file-hint" }, `Tipos aceitos: ${accept.replace(/,/g, ", ")}`));
    this.choose.addEventListener("click", () => input.click());
    input.addEventListener("change", () => void this.take(input.files?.[0]));
    drop.addEventListener("dragover", (event) => {
      event.preventDefault();
      drop.classList.add("is-over");
    });
    drop.addEventListener("dragleave", () => drop.classList.remove("is-over"));
    drop.addEventListener("drop", (event) => {
      event.preventDefault();
      drop.classList.remove("is-over");
      void this.take(event.dataTransfer?.files[0]);
    });
    this.addButton({ caption: "Cancelar", run: cancel });
  }

  private async take(file: File | undefined): Promise<void> {
    if (file === undefined) return;
    // A second choice takes the place of one under way.
    this.sending?.abort();
    const sending = new AbortController();
    this.sending = sending;
    this.status.textContent = `Enviando "${file.name}"…`;
    const sent = await this.send(file, sending.signal);
    if (sending.signal.aborted) return;
    if ("upload" in sent) this.give(file.name, sent.upload);
    else this.status.textContent = sent.text;
  }

  override destroy(): void {
    this.sending?.abort();
    super.destroy();
  }

  override focusFirst(): void {
    this.choose.focus();
  }
}
