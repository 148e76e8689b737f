// Keys as the desk's page works with them, and those that were typed ahead.

export interface Press {
  key: string;
  ctrl: boolean;
  alt: boolean;
  shift: boolean;
}

// `screen` is the one that was on top then, 0 for none.
export type Ahead =
  | { kind: "press"; press: Press; screen: number }
  | { kind: "text"; text: string; screen: number }
  | { kind: "act"; run: () => void; press?: boolean };

export function pressOf(event: KeyboardEvent): Press {
  return {
    key: event.key,
    ctrl: event.ctrlKey || event.metaKey,
    alt: event.altKey && !event.getModifierState("AltGraph"),
    shift: event.shiftKey,
  };
}

export const strokeOf = (press: Press): string => `${press.alt ? "Alt+" : ""}${press.key}`;

export function isCharacter(press: Press): boolean {
  return [...press.key].length === 1 && !press.ctrl && !press.alt;
}

const kModifiers = new Set(["Shift", "Control", "Alt", "AltGraph", "Meta", "CapsLock", "NumLock", "ScrollLock", "Fn"]);

export function isModifier(key: string): boolean {
  return kModifiers.has(key);
}

// Keys that stay with the browser: its own shortcuts, zoom, reload, developer tools, cut and paste.
export function belongsToBrowser(press: Press): boolean {
  if (press.key === "F10") return !press.shift;
  if (/^F(3|[5-9]|1[12])$/.test(press.key)) return true;
  if (press.ctrl && press.alt) return false;
  if (press.ctrl) return !["Enter", "Tab", "Delete", "Insert", "Home", "End", "PageUp", "PageDown", "ArrowUp", "ArrowDown", "ArrowLeft", "ArrowRight", " ", "F4"].includes(press.key);
  return press.alt && ["ArrowLeft", "ArrowRight", "Home", "F4"].includes(press.key);
}

// What a key typed ahead does to a text input, as the browser would have done it.
export function pressInto(input: HTMLInputElement, press: Press): boolean {
  if (input.readOnly || input.disabled) return false;
  const from = input.selectionStart ?? input.value.length;
  const to = input.selectionEnd ?? from;
  if (isCharacter(press)) {
    insertInto(input, press.key);
    return true;
  }
  if (press.ctrl || press.alt) return false;
  const move = (at: number): void => {
    const place = Math.min(Math.max(at, 0), input.value.length);
    input.setSelectionRange(place, place);
  };
  switch (press.key) {
    case "Backspace":
    case "Delete": {
      if (from === to) {
        const other = press.key === "Backspace" ? from - 1 : from + 1;
        if (other < 0 || other > input.value.length) return true;
        input.setRangeText("", Math.min(from, other), Math.max(from, other), "end");
      } else {
        input.setRangeText("", from, to, "end");
      }
      input.dispatchEvent(new Event("input", { bubbles: true }));
      return true;
    }
    case "ArrowLeft":
      move(from === to ? from - 1 : from);
      return true;
    case "ArrowRight":
      move(from === to ? to + 1 : to);
      return true;
    case "Home":
      move(0);
      return true;
    case "End":
      move(input.value.length);
      return true;
    default:
      return false;
  }
}

export function insertInto(input: HTMLInputElement, text: string): void {
  if (input.readOnly || input.disabled) return;
  const from = input.selectionStart ?? input.value.length;
  const to = input.selectionEnd ?? from;
  let clean = text;
  if (input.maxLength >= 0) {
    clean = [...text].slice(0, Math.max(0, input.maxLength - (input.value.length - (to - from)))).join("");
  }
  input.setRangeText(clean, from, to, "end");
  input.dispatchEvent(new Event("input", { bubbles: true }));
}
