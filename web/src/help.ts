// The texts of the help, which the desk keeps beside the page and the page fetches when they are asked for.

// The text of that name; null where there is none, or the desk doesn't answer.
export async function helpText(name: string): Promise<HTMLElement | null> {
  try {
    const response = await fetch(`/ajuda/${name}.html`);
    if (!response.ok) return null;
    const text = new DOMParser().parseFromString(await response.text(), "text/html").body;
    for (const key of text.querySelectorAll("code")) {
      const kbd = document.createElement("kbd");
      kbd.textContent = keyName(key.textContent ?? "");
      key.replaceWith(kbd);
    }
    return text;
  } catch {
    return null;
  }
}

const kNames: Record<string, string> = {
  Escape: "Esc",
  Control: "Ctrl",
  ArrowDown: "↓",
  ArrowUp: "↑",
  ArrowLeft: "←",
  ArrowRight: "→",
  PageDown: "Page Down",
  PageUp: "Page Up",
  Delete: "Del",
  Space: "Espaço",
};

// "Control+PageDown" as it stands on a keyboard.
function keyName(key: string): string {
  return key.split("+").map((part) => kNames[part] ?? part).join("+");
}
