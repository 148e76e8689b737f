// The value axis of a chart: round steps that hold all values and, where it is asked for, zero.
export function scale(values: number[], zero = true): { low: number; high: number; ticks: number[] } {
  const least = Math.min(...(zero ? [0] : []), ...values);
  const most = Math.max(...(zero ? [0] : []), ...values);
  const span = most - least || 1;
  const power = 10 ** Math.floor(Math.log10(span / 4));
  const step = [1, 2, 2.5, 5, 10].map((n) => n * power).find((n) => span / n <= 5)!;
  const low = Math.floor(least / step) * step;
  const high = Math.max(Math.ceil(most / step) * step, low + step);
  const ticks: number[] = [];
  for (let i = 0; low + i * step <= high + step / 2; ++i) ticks.push(low + i * step);
  return { low, high, ticks };
}
