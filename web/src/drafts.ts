// What stands typed in open forms and isn't confirmed. The browser's window keeps it for each user, so that a
// desk that went away in the middle takes nothing along: after the next log-in it is offered again.

// A field and its content, in the order in which they were first typed.
export type Kept = [name: string, content: string];

export interface Draft {
  class: string;
  caption: string;
  // The button that opened the fields for typing, where they weren't open from the start.
  begin: { name: string; caption: string } | null;
  fields: Kept[];
}

interface Store {
  session: string;
  // Of the screens that are open, and of those of a session that is gone.
  open: Draft[];
  left: Draft[];
}

export class Drafts {
  private store: Store = { session: "", open: [], left: [] };
  private written = "";

  // `key` tells one user at one company from all others.
  constructor(
    private key: string,
    private storage: Pick<Storage, "getItem" | "setItem" | "removeItem">,
  ) {
    try {
      const text = storage.getItem(key);
      if (text !== null) this.store = JSON.parse(text) as Store;
    } catch {
      // What can't be read is nothing.
    }
  }

  // The session that is spoken to from now on: what was typed in another one is left over.
  begin(session: string): void {
    if (session === this.store.session) return;
    const left = this.store.left.filter((old) => !this.store.open.some((one) => one.class === old.class));
    this.store = { session, open: [], left: [...left, ...this.store.open] };
    this.write();
  }

  // What stands in a screen now; none of it typed by the user is no draft.
  keep(draft: Draft): void {
    const others = this.store.open.filter((one) => one.class !== draft.class);
    this.store.open = draft.fields.length === 0 ? others : [...others, draft];
    this.write();
  }

  // What was typed into an open screen, as far as it was told.
  of(screenClass: string): Draft | undefined {
    return this.store.open.find((one) => one.class === screenClass);
  }

  get left(): readonly Draft[] {
    return this.store.left;
  }
  // Taken up, or given up.
  settle(draft: Draft): void {
    this.store.left = this.store.left.filter((one) => one !== draft);
    this.write();
  }

  clear(): void {
    this.store = { session: this.store.session, open: [], left: [] };
    this.write();
  }

  private write(): void {
    const { open, left } = this.store;
    const text = open.length + left.length === 0 ? "" : JSON.stringify(this.store);
    if (text === this.written) return;
    this.written = text;
    try {
      if (text === "") this.storage.removeItem(this.key);
      else this.storage.setItem(this.key, text);
    } catch {
      // A full store: nothing worth a message.
    }
  }
}
