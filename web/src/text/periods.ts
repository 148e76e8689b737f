// Periods that move with the day, as the desk keeps them too. Where several fit the same days the first one is
// meant.
import { addDays, type Day } from "./date.ts";

export function monthOf(day: Day, months: number): Day {
  const count = day.year * 12 + day.month - 1 + months;
  return { year: Math.floor(count / 12), month: (count % 12) + 1, day: 1 };
}

function whole(first: Day, months: number): [Day, Day] {
  return [first, addDays(monthOf(first, months), -1)];
}

export interface Period {
  code: string;
  name: string;
  days: [Day, Day];
}

export function periods(today: Day): Period[] {
  const year = { year: today.year, month: 1, day: 1 };
  return [
    { code: "hoje", name: "Hoje", days: [today, today] },
    { code: "mes", name: "Este mês", days: whole(monthOf(today, 0), 1) },
    { code: "mes-1", name: "Mês passado", days: whole(monthOf(today, -1), 1) },
    { code: "ano", name: "Este ano", days: whole(year, 12) },
    { code: "ano-1", name: "Ano passado", days: whole({ ...year, year: today.year - 1 }, 12) },
    { code: "dias-7", name: "Últimos 7 dias", days: [addDays(today, -6), today] },
    { code: "dias-30", name: "Últimos 30 dias", days: [addDays(today, -29), today] },
    { code: "dias+30", name: "Próximos 30 dias", days: [today, addDays(today, 29)] },
  ];
}
