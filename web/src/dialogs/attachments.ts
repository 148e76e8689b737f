// The files beside a movement: handed out, added, taken away.
import { el } from "../dom.ts";
import type { Press } from "../keys.ts";
import type { AttachmentsOut } from "../protocol.ts";
import { Dialog } from "./dialog.ts";
import { OwnList } from "./own_list.ts";

function sizeOf(bytes: number): string {
  const kilo = bytes / 1024;
  return kilo < 1024 ? `${Math.max(1, Math.round(kilo))} KB` : `${(kilo / 1024).toFixed(1).replace(".", ",")} MB`;
}

export interface AttachmentsUser {
  download(id: number): void;
  // The desk asks on, and tells the list anew.
  attach(): void;
  detach(id: number): void;
}

export class AttachmentsDialog extends Dialog {
  private told = el("p", { class: "own-told", role: "status" });
  private list = new OwnList("Anexos");

  constructor(
    private out: AttachmentsOut,
    private user: AttachmentsUser,
    close: () => void,
  ) {
    super({ title: `Anexos: ${out.title}`, className: "dialog-attachments", cancel: close });
    const hint = "PDF, PNG, JPEG ou WebP de até 5 MB, até quatro por lançamento.";
    this.body.append(
      this.list.element,
      el("p", { class: "own-hint" }, out.mayChange ? hint : "Você pode ler os anexos; para mudá-los falta o direito de alterar nesta tela."),
      this.told,
    );
    const rows = out.rows.map((one) => [one.name, `${one.kind}, ${sizeOf(one.size)}`, `${one.who}, ${one.when.slice(0, 16)}`]);
    this.list.fill(rows, "Nenhum anexo neste lançamento.");
    const get = this.addButton({ caption: "&Baixar", primary: out.rows.length > 0, run: () => this.download() });
    get.disabled = out.rows.length === 0;
    if (out.mayChange) {
      this.addButton({ caption: "&Incluir…", primary: out.rows.length === 0, run: () => this.user.attach() });
      const gone = this.addButton({ caption: "&Excluir…", run: () => this.detach() });
      gone.disabled = out.rows.length === 0;
    }
    this.addButton({ caption: "&Fechar", run: close });
  }

  override focusFirst(): void {
    this.list.element.focus();
  }

  protected override press(press: Press): boolean {
    if (document.activeElement !== this.list.element) return false;
    if (this.list.press(press)) return true;
    if (press.key === "Enter") this.download();
    else if (press.key === "Delete") this.detach();
    else if (press.key === "Insert" && this.out.mayChange) this.user.attach();
    else return false;
    return true;
  }

  private download(): void {
    const one = this.out.rows[this.list.current];
    if (one === undefined) return;
    this.told.textContent = "Preparando o arquivo…";
    this.user.download(one.id);
  }
  private detach(): void {
    const one = this.out.rows[this.list.current];
    if (one !== undefined && this.out.mayChange) this.user.detach(one.id);
  }

  // Where the file is to be had.
  ready(address: string, name: string): void {
    const url = new URL(address, location.href);
    if (url.origin !== location.origin) return;
    el("a", { href: url.pathname, download: name }).click();
    this.told.textContent = `O arquivo ${name} foi entregue ao navegador.`;
  }
  refused(): void {
    this.told.textContent = "";
  }
}
