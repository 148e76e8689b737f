// The calendar of a date field, with the usual periods where the field is an end of one.
import { el, icon } from "../dom.ts";
import { addDays, brazil, monthDays, weekday, type Day } from "../text/date.ts";
import { monthOf, periods } from "../text/periods.ts";

export interface CalendarUser {
  today: Day;
  // The day in the field, null for none.
  day: Day | null;
  // Whether the field is an end of a period.
  period: boolean;
  choose(day: Day): void;
  choosePeriod(from: Day, to: Day): void;
  // Closed without a choice.
  closed(): void;
}

const kMonths = ["Janeiro", "Fevereiro", "Março", "Abril", "Maio", "Junho", "Julho", "Agosto", "Setembro", "Outubro", "Novembro", "Dezembro"];
const kWeek = ["dom", "seg", "ter", "qua", "qui", "sex", "sáb"];

export class Calendar {
  private readonly element: HTMLElement;
  private readonly days = el("div", { class: "calendar-days", role: "grid" });
  private readonly title = el("div", { class: "calendar-title", "aria-live": "polite" });
  private at: Day;
  private done = false;

  constructor(
    private readonly anchor: HTMLElement,
    private readonly user: CalendarUser,
  ) {
    this.at = user.day ?? user.today;
    const step = (label: string, text: string, months: number): HTMLElement => {
      const button = el("button", { type: "button", class: "calendar-step", tabindex: "-1", "aria-label": label }, text);
      button.addEventListener("click", () => this.go(this.moved(months)));
      return button;
    };
    const head = el("div", { class: "calendar-head" }, step("Mês anterior", "‹", -1), this.title, step("Próximo mês", "›", 1));
    const month = el("div", { class: "calendar-month" }, head, this.days);
    this.element = el("div", { class: "popup calendar", role: "dialog", "aria-label": "Calendário" }, month);
    if (user.period) {
      const list = el("div", { class: "calendar-periods" });
      for (const { name, days: [from, to] } of periods(user.today)) {
        const button = el("button", { type: "button", class: "menu-item" }, name);
        button.addEventListener("click", () => this.end(() => user.choosePeriod(from, to)));
        list.append(button);
      }
      this.element.append(list);
    }
    this.element.addEventListener("keydown", (event) => this.keyDown(event));
    this.element.addEventListener("focusout", (event) => {
      if (!(event.relatedTarget instanceof Node) || !this.element.contains(event.relatedTarget)) this.end();
    });
    document.body.append(this.element);
    this.go(this.at);
    const box = anchor.getBoundingClientRect();
    const own = this.element.getBoundingClientRect();
    this.element.style.left = `${Math.max(4, Math.min(box.left, window.innerWidth - own.width - 4))}px`;
    const below = box.bottom + 4 + own.height <= window.innerHeight;
    this.element.style.top = `${below ? box.bottom + 4 : Math.max(4, box.top - own.height - 4)}px`;
  }

  private moved(months: number): Day {
    const first = monthOf(this.at, months);
    return { ...first, day: Math.min(this.at.day, monthDays(first)) };
  }

  private go(day: Day): void {
    if (day.year < 1 || day.year > 9999) return;
    this.at = day;
    this.title.textContent = `${kMonths[day.month - 1]!} de ${day.year}`;
    const first = { ...day, day: 1 };
    const cells: HTMLElement[] = kWeek.map((name) => el("span", { class: "calendar-week", role: "columnheader" }, name));
    for (let blank = weekday(first); blank > 0; --blank) cells.push(el("span", {}));
    for (let number = 1; number <= monthDays(first); ++number) {
      const one = { ...day, day: number };
      const here = number === day.day;
      const today = brazil(one) === brazil(this.user.today);
      const button = el("button", { type: "button", class: `calendar-day${here ? " is-here" : ""}${today ? " is-today" : ""}`, tabindex: here ? "0" : "-1", "aria-label": brazil(one) }, String(number));
      button.addEventListener("click", () => this.end(() => this.user.choose(one)));
      cells.push(button);
    }
    this.days.replaceChildren(...cells);
    this.days.querySelector<HTMLElement>(".is-here")!.focus();
  }

  private keyDown(event: KeyboardEvent): void {
    event.stopPropagation();
    const inDays = this.days.contains(document.activeElement);
    const moves: Record<string, () => Day> = {
      ArrowLeft: () => addDays(this.at, -1),
      ArrowRight: () => addDays(this.at, 1),
      ArrowUp: () => addDays(this.at, -7),
      ArrowDown: () => addDays(this.at, 7),
      PageUp: () => this.moved(event.shiftKey ? -12 : -1),
      PageDown: () => this.moved(event.shiftKey ? 12 : 1),
      Home: () => ({ ...this.at, day: 1 }),
      End: () => ({ ...this.at, day: monthDays(this.at) }),
    };
    if (event.key === "Escape" || event.key === "F4") this.end();
    else if (inDays && moves[event.key] !== undefined) this.go(moves[event.key]!());
    else if (inDays && event.key.toLowerCase() === "h") this.go(this.user.today);
    else if (event.key === "ArrowDown" || event.key === "ArrowUp") this.list(event.key === "ArrowDown" ? 1 : -1);
    else if (event.key === "Tab" && this.user.period) this.list(inDays ? 0 : 99);
    else if (event.key !== "Enter" && event.key !== " ") return event.preventDefault();
    else return;
    event.preventDefault();
  }

  // From period to period, and back to the days.
  private list(step: number): void {
    const all = [...this.element.querySelectorAll<HTMLElement>(".calendar-periods .menu-item")];
    const at = all.indexOf(document.activeElement as HTMLElement);
    if (step > 1) this.go(this.at);
    else all[Math.max(0, Math.min(all.length - 1, at + step))]?.focus();
  }

  private end(chosen?: () => void): void {
    if (this.done) return;
    this.done = true;
    this.element.remove();
    this.anchor.focus();
    if (chosen === undefined) this.user.closed();
    else chosen();
  }
}

// The button at the end of a date field.
export function calendarButton(open: () => void): HTMLButtonElement {
  const button = el("button", { type: "button", class: "date-button", tabindex: "-1", "aria-label": "Calendário", title: "Calendário (F4)" }, icon("calendar"));
  button.addEventListener("mousedown", (event) => event.preventDefault());
  button.addEventListener("click", open);
  return button;
}
