// A launched report: in which form it is wanted.
import { el } from "../dom.ts";
import type { ReportOut } from "../protocol.ts";
import { Dialog } from "./dialog.ts";

const kFormats: Record<string, string> = {
  pdf: "&PDF",
  html: "&Tela (HTML)",
  txt: "Te&xto",
  csv: "&CSV",
  xlsx: "&Excel (XLSX)",
};

export class ReportDialog extends Dialog {
  private first: HTMLButtonElement | null = null;
  private links: HTMLElement;

  constructor(
    private out: ReportOut,
    render: (format: string) => void,
    close: () => void,
  ) {
    super({ title: "Relatório", className: "dialog-report", cancel: close });
    this.links = el("div", { class: "report-links", role: "status" });
    this.body.append(el("p", { class: "lead" }, "Como deseja o relatório?"), this.links);
    for (const format of out.formats ?? ["pdf"]) {
      const button = this.addButton({ caption: kFormats[format] ?? format.toUpperCase(), primary: this.first === null, run: () => render(format) });
      this.first ??= button;
    }
    this.addButton({ caption: "&Fechar", run: close });
  }

  get id(): number | string {
    return this.out.id;
  }

  // Where it is to be had; opened at once where the browser lets us.
  ready(address: string): void {
    // Only what the desk itself serves.
    const url = new URL(address, location.href);
    if (url.origin !== location.origin) return;
    const link = el("a", { class: "link", href: url.pathname + url.search, target: "_blank", rel: "noopener" }, "Abrir o relatório");
    this.links.replaceChildren(link);
    link.click();
  }

  override focusFirst(): void {
    this.first?.focus();
  }
}
