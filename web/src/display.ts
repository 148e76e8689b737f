// How the page looks for its user: kept with him on the server, and on this machine, so that the page begins as he
// left it. What is set stands as attributes of the page's root, by which the style goes.

const kStored = "orv-display";

export interface Choice {
  // By which it is remembered.
  key: string;
  // The attribute of the root.
  name: "theme" | "density" | "letters";
  caption: string;
  // The first one holds where nothing is set.
  options: [value: string, caption: string][];
}

export const kChoices: Choice[] = [
  { key: "conta:tema", name: "theme", caption: "Tema", options: [["system", "Como o sistema"], ["light", "Claro"], ["dark", "Escuro"]] },
  { key: "conta:densidade", name: "density", caption: "Densidade", options: [["comfortable", "Confortável"], ["compact", "Compacta"]] },
  { key: "conta:letras", name: "letters", caption: "Letras", options: [["normal", "Normais"], ["large", "Grandes"], ["larger", "Muito grandes"]] },
];

// The class of the screen that is opened at the log-in.
export const kStart = "conta:inicio";

type Chosen = Record<string, string>;

const dark = (): MediaQueryList => window.matchMedia("(prefers-color-scheme: dark)");

function show(chosen: Chosen): void {
  const root = document.documentElement;
  for (const { name, options } of kChoices) {
    const value = options.some(([one]) => one === chosen[name]) ? chosen[name]! : options[0]![0];
    root.dataset[name] = name !== "theme" || value !== "system" ? value : dark().matches ? "dark" : "light";
  }
  window.dispatchEvent(new Event("orv-display"));
}

function stored(): Chosen {
  try {
    const kept: unknown = JSON.parse(localStorage.getItem(kStored) ?? "{}");
    return typeof kept === "object" && kept !== null ? (kept as Chosen) : {};
  } catch {
    return {};
  }
}

// As it was left on this machine; once, before anything is drawn.
export function beginDisplay(): void {
  show(stored());
  dark().addEventListener("change", () => show(stored()));
}

// As the user has set it, wherever that was.
export function applyDisplay(remembered: (key: string) => string | null): void {
  const chosen: Chosen = {};
  for (const { key, name } of kChoices) {
    const value = remembered(key);
    if (value !== null) chosen[name] = value;
  }
  try {
    localStorage.setItem(kStored, JSON.stringify(chosen));
  } catch {
    // A browser that keeps nothing shows it all the same.
  }
  show(chosen);
}

// How much larger the letters are than the page's own.
export const lettersScale = (): number => ({ large: 14 / 13, larger: 15 / 13 })[document.documentElement.dataset["letters"] ?? ""] ?? 1;
// The height of a grid's row in pixels; the style's own is the same.
export const rowHeight = (): number => (document.documentElement.dataset["density"] === "compact" ? 22 : 26);
