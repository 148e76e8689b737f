// A file is handed to the desk: chosen or dropped here, sent as it is.
import { el, icon } from "../dom.ts";
import type { FileOut } from "../protocol.ts";
import { Dialog } from "./dialog.ts";

const kMostBytes = 64 * 1024 * 1024;

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

  constructor(
    out: FileOut,
    private give: (name: string, content: string) => void,
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
    input.addEventListener("change", () => this.take(input.files?.[0]));
    drop.addEventListener("dragover", (event) => {
      event.preventDefault();
      drop.classList.add("is-over");
    });
    drop.addEventListener("dragleave", () => drop.classList.remove("is-over"));
    drop.addEventListener("drop", (event) => {
      event.preventDefault();
      drop.classList.remove("is-over");
      this.take(event.dataTransfer?.files[0]);
    });
    this.addButton({ caption: "Cancelar", run: cancel });
  }

  private take(file: File | undefined): void {
    if (file === undefined) return;
    if (file.size > kMostBytes) {
      this.status.textContent = `O arquivo "${file.name}" passa do limite de 64 MB.`;
      return;
    }
    this.status.textContent = `Enviando "${file.name}"…`;
    const reader = new FileReader();
    reader.onload = () => {
      const text = String(reader.result);
      this.give(file.name, text.slice(text.indexOf(",") + 1));
    };
    reader.onerror = () => (this.status.textContent = `O arquivo "${file.name}" não pôde ser lido.`);
    reader.readAsDataURL(file);
  }

  override focusFirst(): void {
    this.choose.focus();
  }
}
