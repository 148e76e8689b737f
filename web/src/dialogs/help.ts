// The keys of a screen, for F1.
import { el } from "../dom.ts";
import { Dialog } from "./dialog.ts";

const kCommon: [string, string][] = [
  ["Tab, Shift+Tab", "Campo seguinte, campo anterior"],
  ["F4", "Lista do campo; calendário numa data"],
  ["Ctrl+Enter", "Botão principal da tela"],
  ["Esc", "Desfaz o que foi digitado; fecha o que está por cima"],
  ["Ctrl+Page Down", "Próxima página da tela"],
  ["Alt+Page Down", "Próxima tela aberta"],
  ["Ctrl+Alt+M", "Menu de telas"],
  ["Ctrl+Alt+F", "Relatórios favoritos: um algarismo imprime o daquele lugar"],
];

export class HelpDialog extends Dialog {
  constructor(title: string, keys: { key: string; caption: string }[], closed: () => void) {
    super({ title: `Teclas: ${title}`, className: "dialog-help", cancel: closed });
    const list = el("dl", { class: "help-keys" });
    for (const [key, what] of [...keys.map(({ key, caption }): [string, string] => [key, caption]), ...kCommon]) {
      list.append(el("dt", {}, el("kbd", {}, key)), el("dd", {}, what));
    }
    this.body.append(list);
    this.addButton({ caption: "&Fechar", primary: true, run: closed });
  }
}
