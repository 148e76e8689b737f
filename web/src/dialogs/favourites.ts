// Favourite reports: made again by one key, and a report kept as one of them.
import { el } from "../dom.ts";
import type { Favourite, FavouritesOut, In } from "../protocol.ts";
import { Dialog } from "./dialog.ts";
import { nameField, PickDialog, tick } from "./pick.ts";

export class FavouritesDialog extends PickDialog<Favourite> {
  private mayShare = false;

  constructor(
    out: FavouritesOut,
    private send: (object: In) => void,
    private close: () => void,
  ) {
    super({ title: "Relatórios favoritos", cancel: close }, "Relatórios favoritos", "Nenhum relatório favorito. Imprima um relatório e escolha Guardar como favorito.");
    this.addButton({ caption: "&Imprimir", primary: true, run: () => this.takeCurrent() });
    this.addButton({ caption: "&Excluir", run: () => this.removeCurrent() });
    this.addButton({ caption: "&Fechar", run: close });
    this.show(out);
  }

  show(out: FavouritesOut): void {
    this.mayShare = out.mayShare;
    this.fill(out.list);
  }

  protected take(item: Favourite): void {
    if (!item.mayOpen) {
      this.told.textContent = `Você não tem permissão para a tela ${item.screen}.`;
      return;
    }
    this.close();
    this.send({ do: "favourites", act: "run", name: item.name, shared: item.shared });
  }
  protected remove(item: Favourite): void {
    this.told.textContent = `${item.name} foi excluído.`;
    this.send({ do: "favourites", act: "delete", name: item.name, shared: item.shared });
  }
  protected mayRemove(item: Favourite): boolean {
    return !item.shared || this.mayShare;
  }
  protected beside(item: Favourite): string {
    return item.title === item.screen ? item.screen : `${item.screen}: ${item.title}`;
  }
}

export class KeepFavouriteDialog extends Dialog {
  private name = nameField(() => this.give());
  private shared = tick("Para todos os usuários (só administradores)");
  private told = el("p", { class: "pick-told", role: "status" });

  constructor(
    title: string,
    private keep: (name: string, shared: boolean) => void,
    close: () => void,
  ) {
    super({ title: "Guardar como favorito", className: "dialog-pick", cancel: close });
    this.name.input.value = title.slice(0, 40);
    this.body.append(el("p", {}, "O relatório volta com os filtros de agora; períodos como este mês acompanham o dia."), this.name.label, this.shared.label, this.told);
    this.addButton({ caption: "&Guardar", primary: true, run: () => this.give() });
    this.addButton({ caption: "&Cancelar", run: close });
  }

  override focusFirst(): void {
    this.name.input.focus();
    this.name.input.select();
  }

  private give(): void {
    const name = this.name.input.value.trim();
    if (name === "") this.told.textContent = "Informe o nome.";
    else this.keep(name, this.shared.box.checked);
  }
}
