// What a screen is for and its keys, for F1; and the page of all keys.
import { el } from "../dom.ts";
import { helpText } from "../help.ts";
import type { Press } from "../keys.ts";
import { Dialog } from "./dialog.ts";

export interface HelpOf {
  // Of the texts: a screen's class, or another page's name.
  name: string;
  caption: string;
  keysShown: { key: string; caption: string }[];
}

export class HelpDialog extends Dialog {
  private text = el("div", { class: "help-text", role: "region", tabindex: "0", "aria-label": "Ajuda" });
  private keys: HTMLElement;

  constructor(of: HelpOf, user: { close(): void; walk(): void }) {
    super({ title: `Ajuda: ${of.caption}`, className: "dialog-help", cancel: () => user.close() });
    this.keys = el("dl", { class: "help-keys" });
    for (const { key, caption } of of.keysShown) this.keys.append(el("dt", {}, el("kbd", {}, key)), el("dd", {}, caption));
    this.body.append(this.text);
    this.addButton({ caption: "Todas as &teclas", run: () => void this.show("teclas") });
    this.addButton({ caption: "Guia do &primeiro lançamento", run: () => user.walk() });
    this.addButton({ caption: "&Fechar", primary: true, run: () => user.close() });
    void this.show(of.name);
  }

  override focusFirst(): void {
    this.text.focus();
  }

  // Arrows and pages move the text, wherever the focus is.
  protected override press({ key, ctrl, alt }: Press): boolean {
    if (ctrl || alt) return false;
    const page = this.text.clientHeight * 0.9;
    const by: Record<string, number> = { ArrowDown: 40, ArrowUp: -40, PageDown: page, PageUp: -page, Home: -Infinity, End: Infinity };
    const move = by[key];
    if (move === undefined) return false;
    const most = this.text.scrollHeight;
    this.text.scrollTop = Math.min(Math.max(this.text.scrollTop + move, 0), most);
    return true;
  }

  private async show(name: string): Promise<void> {
    const text = await helpText(name);
    const own = name === "teclas" || this.keys.childElementCount === 0 ? [] : [el("h2", {}, "Botões e suas teclas, agora"), this.keys];
    this.text.replaceChildren(...(text?.childNodes ?? [el("p", {}, "A ajuda não pôde ser lida.")]), ...own);
    // The dialog's own title says which screen it is.
    const title = this.text.querySelector("h1");
    if (name !== "teclas") title?.remove();
    this.text.scrollTop = 0;
  }
}
