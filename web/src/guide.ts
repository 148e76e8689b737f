// The walk through a first posting: a line under the head of the page that says what comes next, and goes on as it
// is done. It never takes the focus nor a key of the screen.
import { el, icon } from "./dom.ts";
import { helpText } from "./help.ts";

// What the desk shows, as far as the guide asks.
export interface GuideSight {
  screenClass: string;
  badge: string;
  filled(control: string): boolean;
}

interface Step {
  // "tela CLASS", "em curso", "campo CONTROL" or "gravado".
  until: string;
  text: HTMLElement;
}

export class Guide {
  readonly element = el("div", { class: "offers guide", role: "status", hidden: true });
  private steps: Step[] = [];
  private at = 0;

  // `over` is told when the walk is finished or put away.
  constructor(private over: () => void) {}

  get walking(): boolean {
    return this.steps.length > 0;
  }

  async begin(): Promise<void> {
    const text = await helpText("primeiro-lancamento");
    this.at = 0;
    this.steps = [...(text?.querySelectorAll("li") ?? [])].map((item) => {
      const mark = [...item.childNodes].find((node) => node instanceof Comment);
      const step = el("span", {});
      step.append(...item.childNodes);
      return { until: mark?.textContent?.trim() ?? "", text: step };
    });
    this.draw();
  }

  end(): void {
    if (!this.walking) return;
    this.steps = [];
    this.draw();
    this.over();
  }

  // After each answer of the desk. A step that somebody did ahead of the guide is passed.
  look(sight: GuideSight): void {
    if (!this.walking) return;
    const done = (until: string): boolean => {
      const [what, name = ""] = until.split(/ (?=[^ ]+$)/);
      if (until === "em curso") return sight.badge !== "";
      return what === "tela" ? sight.screenClass === name : what === "campo" && sight.filled(name);
    };
    const before = this.at;
    while (this.at < this.steps.length && done(this.steps[this.at]!.until)) ++this.at;
    if (this.at !== before) this.draw();
  }

  // Something was stored: the last step, whatever was left out.
  stored(screenClass: string): void {
    if (this.walking && this.steps[0]!.until === `tela ${screenClass}`) this.end();
  }

  private draw(): void {
    this.element.hidden = !this.walking;
    const step = this.steps[this.at];
    if (step === undefined) {
      this.element.replaceChildren();
      return;
    }
    const away = el("button", { type: "button", class: "button", title: "Ctrl+Alt+G" }, "Dispensar o guia");
    away.addEventListener("click", () => this.end());
    const place = el("strong", {}, `Primeiro lançamento, ${this.at + 1} de ${this.steps.length}:`);
    this.element.replaceChildren(el("div", { class: "offer" }, icon("information"), place, step.text, away));
  }
}
