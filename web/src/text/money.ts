// Amounts as they are typed and as they are shown.

// The largest amount that a field takes, in cents.
const kMostCents = 99_999_999_999_999n;

// True for a text that the desk takes in a field of so many decimals: "1234,56", "1.234,56", "-3", ",5", "12,",
// "". Further decimals, up to four, must be zeros.
export function isAmount(text: string, decimals = 2): boolean {
  const typed = text.replace(/^[ \t\r\n]+|[ \t\r\n]+$/g, "");
  if (typed === "") return true;
  const m = /^[+-]?([1-9]\d{0,2}(?:\.\d{3})+|\d*)(?:,(\d{0,4}))?$/.exec(typed);
  if (m === null || !/\d/.test(typed)) return false;
  const fraction = (m[2] ?? "").padEnd(4, "0");
  if (!/^0*$/.test(fraction.slice(decimals))) return false;
  return BigInt(m[1]!.replaceAll(".", "") + fraction) <= kMostCents * 100n;
}

// A stored "1234.5600" as it is shown, with two decimals.
export function showAmount(neutral: string, decimals = 2): string {
  const m = /^(-?)(\d+)(?:\.(\d+))?$/.exec(neutral);
  if (!m) return neutral;
  const scale = 10n ** BigInt(decimals);
  const fraction = ((m[3] ?? "") + "0".repeat(decimals + 1)).slice(0, decimals + 1);
  let units = BigInt(m[2]!) * scale * 10n + BigInt(fraction);
  units = (units + 5n) / 10n;
  const whole = (units / scale).toString().replace(/\B(?=(\d{3})+$)/g, ".");
  const rest = decimals > 0 ? "," + (units % scale).toString().padStart(decimals, "0") : "";
  return (m[1] && units !== 0n ? "-" : "") + whole + rest;
}

// A shown "1.234,56" as it is stored; what is no amount comes back as it is.
export function readAmount(shown: string): string {
  return isAmount(shown) ? shown.trim().replaceAll(".", "").replace(",", ".") : shown;
}

// The sum of stored amounts, as one.
export function addAmounts(amounts: string[]): string {
  let units = 0n;
  for (const amount of amounts) {
    const m = /^(-?)(\d+)(?:\.(\d{1,4}))?$/.exec(amount);
    if (!m) continue;
    const size = BigInt(m[2]! + (m[3] ?? "").padEnd(4, "0"));
    units += m[1] ? -size : size;
  }
  const digits = (units < 0n ? -units : units).toString().padStart(5, "0");
  return `${units < 0n ? "-" : ""}${digits.slice(0, -4)}.${digits.slice(-4)}`;
}

export function showCount(n: number): string {
  return String(n).replace(/\B(?=(\d{3})+$)/g, ".");
}
