// The filters that are kept for a screen: used, kept under a name, taken back.
import { el } from "../dom.ts";
import type { FiltersOut, In, KeptFilter } from "../protocol.ts";
import { nameField, PickDialog, tick } from "./pick.ts";

export class FiltersDialog extends PickDialog<KeptFilter> {
  private out: FiltersOut;
  private name = nameField(() => this.keep());
  private now = el("p", { class: "pick-now" });
  private shared = tick("Para todos os usuários");
  private fixed = tick("Com as datas como estão, sem acompanhar o dia");
  private latest = tick("Abrir esta tela com os últimos filtros");

  constructor(
    out: FiltersOut,
    caption: string,
    private send: (object: In) => void,
    close: () => void,
  ) {
    super({ title: `Filtros: ${caption}`, cancel: close }, "Filtros guardados", "Nada guardado para esta tela. Dê um nome aos filtros de agora e guarde-os.");
    this.out = out;
    const save = el("div", { class: "pick-save" }, el("h3", { class: "pick-title" }, "Filtros de agora"), this.now, this.name.label, this.shared.label, this.fixed.label);
    this.body.append(save, this.latest.label);
    this.latest.box.addEventListener("change", () => this.send({ do: "filters", act: "latest", value: this.latest.box.checked }));
    this.addButton({ caption: "&Usar", primary: true, run: () => this.takeCurrent() });
    this.addButton({ caption: "&Guardar", run: () => this.keep() });
    this.addButton({ caption: "&Excluir", run: () => this.removeCurrent() });
    this.addButton({ caption: "&Fechar", run: close });
    this.show(out);
  }

  show(out: FiltersOut): void {
    const before = this.out.list.length;
    this.out = out;
    this.fill(out.list);
    this.now.textContent = out.now.length === 0 ? "Nenhum filtro preenchido." : out.now.join(" · ");
    this.shared.label.hidden = !out.mayShare;
    this.fixed.label.hidden = !out.moves;
    this.latest.box.checked = out.latest;
    if (out.list.length < before) this.told.textContent = "Excluído.";
    if (out.list.length > before) this.told.textContent = "Guardado.";
    if (out.list.length !== before) this.list.focus();
  }

  override focusFirst(): void {
    if (this.out.list.length === 0) this.name.input.focus();
    else this.list.focus();
  }

  private keep(): void {
    const name = this.name.input.value.trim();
    if (name === "") {
      this.told.textContent = "Dê um nome aos filtros de agora.";
      this.name.input.focus();
      return;
    }
    this.told.textContent = "";
    this.name.input.value = "";
    this.send({ do: "filters", act: "save", name, shared: this.shared.box.checked, fixed: this.fixed.box.checked });
  }

  protected take(item: KeptFilter): void {
    this.send({ do: "filters", act: "use", name: item.name, shared: item.shared });
  }
  protected remove(item: KeptFilter): void {
    this.send({ do: "filters", act: "delete", name: item.name, shared: item.shared });
  }
  protected mayRemove(item: KeptFilter): boolean {
    return !item.shared || this.out.mayShare;
  }
  protected beside(item: KeptFilter): string {
    return item.told.join(" · ");
  }
}
