// Captions with the mark of their access key: "&Incluir", "Débito && Crédito".

export interface Caption {
  text: string;
  // Where the key's letter stands in the text, -1 without one.
  at: number;
  // The letter in lower case without its accent, "" without one.
  key: string;
}

export function plain(text: string): string {
  return text.normalize("NFD").replace(/\p{M}/gu, "").toLowerCase();
}

export function readCaption(caption: string): Caption {
  let text = "";
  let at = -1;
  for (let i = 0; i < caption.length; ++i) {
    if (caption[i] !== "&") {
      text += caption[i];
    } else if (caption[i + 1] === "&") {
      text += "&";
      ++i;
    } else if (at < 0 && i + 1 < caption.length) {
      at = text.length;
    }
  }
  return { text, at, key: at < 0 ? "" : plain(text[at]!) };
}

// The caption with the mark of a key that is lent to it instead of its own; as it is, where it lacks the letter.
export function withKey(given: string, key: string): string {
  if (key === "" || !plain(readCaption(given).text).includes(key)) return given;
  const caption = given.replace(/&(?!&)/, "");
  const at = [...caption].findIndex((letter) => plain(letter) === key);
  return at < 0 ? caption : `${caption.slice(0, at)}&${caption.slice(at)}`;
}
