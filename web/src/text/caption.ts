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
