// One's own corner: how the page looks and begins, one's password and one's sessions, without the administrator.
import { changePassword, endSessions, ownSessions, type OwnSession } from "../api.ts";
import { kChoices, kStart } from "../display.ts";
import { el } from "../dom.ts";
import type { Press } from "../keys.ts";
import type { Me } from "../protocol.ts";
import { Dialog } from "./dialog.ts";
import { OwnList } from "./own_list.ts";

export interface AccountUser {
  remembered(key: string): string | null;
  // Keeps it and shows it at once; null for what holds where nothing is set.
  set(key: string, value: string | null): void;
  // The desk knows nobody here any more.
  loggedOut(): void;
}

function since(minutes: number): string {
  if (minutes < 1) return "agora";
  return minutes < 60 ? `há ${minutes} min` : `há ${Math.floor(minutes / 60)} h ${minutes % 60} min`;
}

export class AccountDialog extends Dialog {
  private present = this.passwordInput("current-password");
  private fresh = this.passwordInput("new-password");
  private again = this.passwordInput("new-password");
  private told = el("p", { class: "own-told", role: "status" });
  private list = new OwnList("Minhas sessões");
  private theme: HTMLElement;
  private sessions: OwnSession[] = [];
  private busy = false;

  constructor(
    me: Me,
    private user: AccountUser,
    close: () => void,
  ) {
    super({ title: "Minha conta", className: "dialog-account", cancel: close });
    const field = (text: string, input: HTMLElement): HTMLElement => el("label", { class: "field" }, el("span", { class: "label" }, text), input);
    const title = (text: string): HTMLElement => el("h3", { class: "own-title" }, text);
    const looks = kChoices.map(({ key, caption, options }) => field(caption, this.choice(key, caption, options)));
    const screens = me.menu.map(({ class: name, caption }): [string, string] => [name, caption]);
    this.theme = looks[0]!.querySelector("select")!;
    // A keeper of passwords wants to know whose they are.
    const name = el("input", { type: "text", class: "unseen", name: "username", autocomplete: "username", tabindex: "-1", "aria-hidden": "true" });
    name.value = me.user;
    this.body.append(
      title("Aparência"),
      el("div", { class: "own-row is-four" }, ...looks, field("Tela inicial", this.choice(kStart, "Tela inicial", [["", "Só o menu"], ...screens]))),
      title("Senha"),
      el("div", { class: "own-row" }, name, field("Senha atual", this.present), field("Senha nova", this.fresh), field("Senha nova, outra vez", this.again)),
      el("p", { class: "own-hint" }, "Pelo menos 12 caracteres. As suas outras sessões terminam com a troca."),
      this.told,
      title("Minhas sessões"),
      this.list.element,
    );
    this.addButton({ caption: "&Trocar a senha", primary: true, run: () => void this.change() });
    this.addButton({ caption: "&Encerrar a sessão", run: () => void this.end(false) });
    this.addButton({ caption: "Encerrar as &outras", run: () => void this.end(true) });
    this.addButton({ caption: "&Fechar", run: close });
    void this.load();
  }

  private choice(key: string, caption: string, options: [string, string][]): HTMLSelectElement {
    const select = el("select", { class: "input select", "aria-label": caption }, ...options.map(([value, text]) => el("option", { value }, text)));
    const now = this.user.remembered(key);
    if (options.some(([value]) => value === now)) select.value = now!;
    select.addEventListener("change", () => this.user.set(key, select.value === options[0]![0] ? null : select.value));
    return select;
  }

  override focusFirst(): void {
    this.theme.focus();
  }

  protected override press(press: Press): boolean {
    const at = document.activeElement;
    if (press.key === "Enter" && at instanceof HTMLInputElement) {
      void this.change();
      return true;
    }
    if (at !== this.list.element) return false;
    if (this.list.press(press)) return true;
    if (press.key !== "Delete") return false;
    void this.end(false);
    return true;
  }

  private passwordInput(autocomplete: string): HTMLInputElement {
    return el("input", { type: "password", class: "input", autocomplete, spellcheck: "false" });
  }

  private tell(text: string, bad = false): void {
    this.told.classList.toggle("is-bad", bad);
    this.told.textContent = text;
  }

  // One question to the desk at a time. False when the answer was no, or none.
  private async ask(question: () => Promise<{ status: number; text: string }>, done: string): Promise<boolean> {
    if (this.busy) return false;
    this.busy = true;
    this.tell("");
    const { status, text } = await question();
    this.busy = false;
    if (status === 401) this.user.loggedOut();
    else this.tell(status === 200 ? done : text, status !== 200);
    return status === 200;
  }

  private async change(): Promise<void> {
    const wrong = this.present.value === "" ? this.present : this.fresh.value === "" ? this.fresh : this.fresh.value !== this.again.value ? this.again : null;
    if (wrong !== null) {
      this.tell(wrong === this.present ? "Informe a senha atual." : wrong === this.fresh ? "Informe a senha nova." : "As duas senhas novas não são iguais.", true);
      wrong.focus();
      return;
    }
    const changed = await this.ask(() => changePassword(this.present.value, this.fresh.value), "Senha trocada. As suas outras sessões foram encerradas.");
    if (changed) {
      for (const input of [this.present, this.fresh, this.again]) input.value = "";
      await this.load();
    }
    this.present.focus();
  }

  private async end(all: boolean): Promise<void> {
    const session = this.sessions[this.list.current];
    if (!all && (session === undefined || session.own)) {
      this.tell("Esta é a sessão em que você está: para encerrá-la, use Sair.", true);
      return;
    }
    if (await this.ask(() => endSessions(all ? null : session!.id), all ? "As outras sessões foram encerradas." : "Sessão encerrada.")) await this.load();
  }

  private async load(): Promise<void> {
    const sessions = await ownSessions();
    if (sessions === null) {
      this.tell("O servidor não responde. Verifique a rede e tente de novo.", true);
      return;
    }
    this.sessions = sessions;
    const rows = sessions.map((session) => [
      session.own ? "Esta sessão" : `Sessão em ${session.address}`,
      `aberta ${since(session.minutes)}, usada ${since(session.idle)}`,
      session.windows === 1 ? "1 janela" : `${session.windows} janelas`,
    ]);
    this.list.fill(rows, "");
  }
}
