// The page before the desk.
import { companies, login } from "./api.ts";
import { el, icon } from "./dom.ts";

const kLastUser = "orv-last-user";
const kLastCompany = "orv-last-company";
const kNoAnswer = "O servidor não responde. A página tenta de novo em instantes.";
const kRetry = 2000;

export class LoginPage {
  readonly element: HTMLElement;
  private user = el("input", { type: "text", class: "input", id: "login-user", name: "username", autocomplete: "username", autocapitalize: "off", spellcheck: "false", required: true });
  private password = el("input", { type: "password", class: "input", id: "login-password", name: "password", autocomplete: "current-password", required: true });
  private company = el("select", { class: "input select", id: "login-company", name: "company" });
  private alert = el("p", { class: "login-alert", role: "alert" });
  private button = el("button", { type: "submit", class: "button is-primary login-button" }, "Entrar");

  constructor(
    private entered: () => void,
    notice = "",
  ) {
    const field = (text: string, input: HTMLElement): HTMLElement =>
      el("div", { class: "field" }, el("label", { class: "label", for: input.id }, text), input);
    const form = el(
      "form",
      { class: "login-form" },
      el("div", { class: "brand brand-large", "aria-hidden": "true" }, el("span", { class: "brand-mark" }), el("span", {}, "orv"), el("strong", {}, "CC")),
      el("h1", { class: "login-title" }, "Tesouraria"),
      el("p", { class: "login-lead" }, "Entre com seu usuário para abrir a mesa."),
      ...(notice === "" ? [] : [el("p", { class: "login-notice", role: "status" }, icon("information"), notice)]),
      field("Usuário", this.user),
      field("Senha", this.password),
      field("Empresa", this.company),
      this.alert,
      this.button,
    );
    form.addEventListener("submit", (event) => {
      event.preventDefault();
      void this.submit();
    });
    this.element = el("main", { class: "login" }, form);
    this.user.value = localStorage.getItem(kLastUser) ?? "";
    void this.load();
  }

  // Until the desk answers: it may be starting anew.
  private async load(): Promise<void> {
    try {
      const all = await companies();
      this.company.replaceChildren(...all.map((one) => el("option", { value: one.suffix }, one.name)));
      const last = localStorage.getItem(kLastCompany);
      if (last !== null && all.some((one) => one.suffix === last)) this.company.value = last;
      if (this.alert.textContent === kNoAnswer) this.alert.textContent = "";
    } catch {
      this.alert.textContent = kNoAnswer;
      window.setTimeout(() => this.element.isConnected && void this.load(), kRetry);
    }
  }

  private async submit(): Promise<void> {
    if (this.button.disabled) return;
    this.alert.textContent = "";
    // Without companies there is none to log in at.
    if (this.company.options.length === 0) {
      this.alert.textContent = kNoAnswer;
      return;
    }
    this.button.disabled = true;
    this.button.textContent = "Entrando…";
    const password = this.password.value;
    const result = await login(this.user.value.trim(), password, this.company.value);
    this.button.disabled = false;
    this.button.textContent = "Entrar";
    if (result.ok) {
      localStorage.setItem(kLastUser, this.user.value.trim());
      localStorage.setItem(kLastCompany, this.company.value);
      this.password.value = "";
      this.entered();
      return;
    }
    this.alert.textContent = result.text;
    // What was typed meanwhile stays.
    if (this.password.value === password) this.password.value = "";
    this.password.focus();
  }

  focus(): void {
    (this.user.value === "" ? this.user : this.password).focus();
  }
}
