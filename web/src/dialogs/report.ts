// A launched report beside its screen: read at once, printed, and taken away in each form.
import { el } from "../dom.ts";
import type { ReportOut } from "../protocol.ts";
import { Dialog } from "./dialog.ts";

const kCaptions: Record<string, string> = { pdf: "&PDF", txt: "&Texto", csv: "&CSV", xlsx: "&Excel" };
// The forms that the pane itself shows, the best first.
const kShown = ["html", "txt"];

// Hands a file of the desk's to the browser; what is to be told of it.
export function deliver(url: URL): string {
  const link = el("a", { href: url.pathname, download: url.pathname.split("/").pop() ?? "" });
  link.click();
  return `O arquivo ${link.download} foi entregue ao navegador.`;
}

export class ReportDialog extends Dialog {
  private frame = el("iframe", { class: "report-frame", title: "Relatório", sandbox: "allow-same-origin allow-modals", tabindex: "0" });
  private status = el("p", { class: "report-status", role: "status" }, "Preparando o relatório…");
  private shown: string;
  private print: HTMLButtonElement;

  constructor(
    private out: ReportOut,
    private render: (format: string, table: number) => void,
    keep: () => void,
    close: () => void,
  ) {
    super({ title: out.title ?? "Relatório", className: "dialog-report", cancel: close });
    const formats = out.formats ?? [];
    this.shown = kShown.find((format) => formats.includes(format)) ?? "";
    this.frame.hidden = true;
    this.body.append(this.status, this.frame);
    this.print = this.addButton({ caption: "&Imprimir", primary: true, run: () => this.frame.contentWindow?.print() });
    this.print.disabled = true;
    for (const format of formats) {
      const caption = kCaptions[format];
      if (caption === undefined) continue;
      // A file has one table.
      const tables = format === "csv" ? (out.tables ?? []) : [];
      if (tables.length < 2) this.addButton({ caption, run: () => this.ask(format) });
      else tables.forEach((name, table) => this.addButton({ caption: table === 0 ? `${caption}: ${name}` : `CSV: ${name}`, run: () => this.ask(format, table) }));
    }
    if (out.favourite === true) this.addButton({ caption: "&Guardar como favorito…", run: keep });
    this.addButton({ caption: "&Fechar", run: close });
  }

  // Asks for what the pane shows; once it stands on the page.
  begin(): void {
    if (this.shown !== "") this.render(this.shown, 0);
  }

  private ask(format: string, table = 0): void {
    this.status.hidden = false;
    this.status.textContent = "Preparando o arquivo…";
    this.render(format, table);
  }

  get id(): number | string {
    return this.out.id;
  }

  // Where a form is to be had.
  ready(address: string, format: string): void {
    // Only what the desk itself serves.
    const url = new URL(address, location.href);
    if (url.origin !== location.origin) return;
    this.status.hidden = true;
    if (format === this.shown && this.frame.hidden) {
      this.frame.hidden = false;
      this.frame.src = url.pathname;
      this.print.disabled = false;
      if (document.activeElement === null || this.box.contains(document.activeElement)) this.print.focus();
      return;
    }
    this.status.hidden = false;
    this.status.textContent = deliver(url);
  }

  // What was asked for couldn't be made.
  refused(): void {
    this.status.textContent = "O relatório não pôde ser preparado.";
  }
}
