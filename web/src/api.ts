// What is asked over HTTP, outside the door: who one is, and where one may log in.
import type { Me } from "./protocol.ts";

export interface Company {
  suffix: string;
  name: string;
}

export type LoginResult = { ok: true } | { ok: false; text: string };

async function textOf(response: Response): Promise<string> {
  try {
    const body = (await response.json()) as { text?: string };
    return body.text ?? "";
  } catch {
    return "";
  }
}

export async function companies(): Promise<Company[]> {
  const response = await fetch("/companies", { cache: "no-store" });
  if (!response.ok) throw new Error(await textOf(response));
  return (await response.json()) as Company[];
}

// Null when nobody is logged in. Throws when the desk can't be reached.
export async function me(): Promise<Me | null> {
  const response = await fetch("/me", { cache: "no-store" });
  if (response.status === 401) return null;
  if (!response.ok) throw new Error(await textOf(response));
  return (await response.json()) as Me;
}

// What the user has set for his own display. Nothing of it is worth a message when it can't be had.
export async function preferences(): Promise<Map<string, string>> {
  try {
    const response = await fetch("/preferences", { cache: "no-store" });
    return new Map(response.ok ? Object.entries((await response.json()) as Record<string, string>) : []);
  } catch {
    return new Map();
  }
}

// An empty value forgets it.
export async function setPreference(key: string, value: string): Promise<void> {
  await fetch("/preferences", {
    method: "PUT",
    headers: { "Content-Type": "application/json" },
    body: JSON.stringify({ key, value }),
  }).catch(() => {});
}

export async function login(user: string, password: string, company: string): Promise<LoginResult> {
  let response: Response;
  try {
    response = await fetch("/login", {
      method: "POST",
      headers: { "Content-Type": "application/json" },
      body: JSON.stringify({ user, password, company }),
    });
  } catch {
    return { ok: false, text: "O servidor não responde. Verifique a rede e tente de novo." };
  }
  if (response.ok) return { ok: true };
  const text = await textOf(response);
  if (text !== "") return { ok: false, text };
  if (response.status === 429) return { ok: false, text: "Muitas tentativas. Espere um pouco e tente de novo." };
  return { ok: false, text: response.status === 401 ? "Usuário ou senha inválidos." : "Não foi possível entrar." };
}

// Gives a file to the session that asks for it; the name by which the door takes it, or why the desk didn't.
export async function upload(session: string, file: File, signal: AbortSignal): Promise<{ upload: string } | { text: string }> {
  let response: Response;
  try {
    response = await fetch(`/upload?session=${encodeURIComponent(session)}`, {
      method: "POST",
      headers: { "Content-Type": "application/octet-stream" },
      body: file,
      signal,
    });
  } catch {
    return { text: `O arquivo "${file.name}" não foi enviado. Verifique a rede e tente de novo.` };
  }
  if (response.ok) return (await response.json()) as { upload: string };
  const text = await textOf(response);
  return { text: text !== "" ? text : `O arquivo "${file.name}" não foi aceito.` };
}

export interface OwnSession {
  id: string;
  address: string;
  minutes: number;
  idle: number;
  windows: number;
  own: boolean;
}

// Null when they can't be had.
export async function ownSessions(): Promise<OwnSession[] | null> {
  try {
    const response = await fetch("/sessions", { cache: "no-store" });
    return response.ok ? ((await response.json()) as { sessions: OwnSession[] }).sessions : null;
  } catch {
    return null;
  }
}

// Status 0 when the desk can't be reached.
async function ask(path: string, body: object): Promise<{ status: number; text: string }> {
  try {
    const response = await fetch(path, { method: "POST", headers: { "Content-Type": "application/json" }, body: JSON.stringify(body) });
    return { status: response.status, text: await textOf(response) };
  } catch {
    return { status: 0, text: "O servidor não responde. Verifique a rede e tente de novo." };
  }
}

export const changePassword = (present: string, fresh: string): Promise<{ status: number; text: string }> => ask("/password", { present, new: fresh });
// One by its id, null for all but this.
export const endSessions = (id: string | null): Promise<{ status: number; text: string }> => ask("/sessions", id === null ? {} : { id });

export async function logout(): Promise<void> {
  await fetch("/logout", { method: "POST" }).catch(() => {});
}
