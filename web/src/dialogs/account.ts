// One's own password and sessions: changed and ended here, without the administrator.
import { changePassword, endSessions, ownSessions, type OwnSession } from "../api.ts";
import { el } from "../dom.ts";
import type { Press } from "../keys.ts";
import { Dialog } from "./dialog.ts";

function since(minutes: number): string {
  if (minutes < 1) return "agora";
  return minutes < 60 ? `há ${minutes} min` : `há ${Math.floor(minutes / 60)} h ${minutes % 60} min`;
}

export class AccountDialog extends Dialog {
  private present = this.passwordInput("current-password");
  private fresh = this.passwordInput("new-password");
  private again = this.passwordInput("new-password");
  private told = el("p", { class: "account-told", role: "status" });
  private list = el("div", { class: "account-list", role: "listbox", tabindex: "0", "aria-label": "Minhas sessões" });
  private sessions: OwnSession[] = [];
  private current = 0;
  private busy = false;

  constructor(
    user: string,
    close: () => void,
    // The desk knows nobody here any more.
    private loggedOut: () => void,
  ) {
    super({ title: "Minha senha e sessões", className: "dialog-account", cancel: close });
    const field = (text: string, input: HTMLInputElement): HTMLElement => el("label", { class: "field" }, el("span", { class: "label" }, text), input);
    // A keeper of passwords wants to know whose they are.
    const name = el("input", { type: "text", class: "unseen", name: "username", autocomplete: "username", tabindex: "-1", "aria-hidden": "true" });
    name.value = user;
    this.body.append(
      el("div", { class: "account-password" }, name, field("Senha atual", this.present), field("Senha nova", this.fresh), field("Senha nova, outra vez", this.again)),
      el("p", { class: "account-hint" }, "Pelo menos 12 caracteres. As suas outras sessões terminam com a troca."),
      this.told,
      el("h3", { class: "account-title" }, "Minhas sessões"),
      this.list,
    );
    this.list.addEventListener("click", (event) => this.mark(this.rows.findIndex((row) => row.contains(event.target as Node))));
    this.addButton({ caption: "&Trocar a senha", primary: true, run: () => void this.change() });
    this.addButton({ caption: "&Encerrar a sessão", run: () => void this.end(false) });
    this.addButton({ caption: "Encerrar as &outras", run: () => void this.end(true) });
    this.addButton({ caption: "&Fechar", run: close });
    void this.load();
  }

  override focusFirst(): void {
    this.present.focus();
  }

  protected override press(press: Press): boolean {
    const at = document.activeElement;
    if (press.key === "Enter" && at instanceof HTMLInputElement) {
      void this.change();
      return true;
    }
    if (at !== this.list) return false;
    if (press.key === "ArrowDown" || press.key === "ArrowUp") {
      this.mark(Math.max(0, Math.min(this.sessions.length - 1, this.current + (press.key === "ArrowDown" ? 1 : -1))));
      return true;
    }
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
    if (status === 401) this.loggedOut();
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
    const session = this.sessions[this.current];
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
    this.list.replaceChildren(
      ...sessions.map((session, at) =>
        el(
          "div",
          { class: "account-item", role: "option", id: `account-session-${at}`, "aria-selected": "false" },
          el("span", {}, session.own ? "Esta sessão" : `Sessão em ${session.address}`),
          el("span", {}, `aberta ${since(session.minutes)}, usada ${since(session.idle)}`),
          el("span", {}, session.windows === 1 ? "1 janela" : `${session.windows} janelas`),
        ),
      ),
    );
    this.mark(Math.min(this.current, sessions.length - 1));
  }

  private get rows(): HTMLElement[] {
    return [...this.list.children] as HTMLElement[];
  }
  private mark(at: number): void {
    if (at < 0) return;
    this.current = at;
    this.rows.forEach((row, i) => {
      row.classList.toggle("is-current", i === at);
      row.setAttribute("aria-selected", String(i === at));
    });
    this.list.setAttribute("aria-activedescendant", `account-session-${at}`);
  }
}
