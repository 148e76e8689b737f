// The connection to the desk: it queues what goes out, comes back by itself when the link is lost, and sends
// again what the desk had not taken.
import { OutQueue, type Item } from "./queue.ts";
import type { Out } from "./protocol.ts";

export type Link = "connecting" | "open" | "lost";

export interface DoorUser {
  received(out: Out): void;
  linkChanged(link: Link): void;
  // The desk refuses the connection: nobody is logged in any more.
  loggedOut(): void;
}

const kFirstRetry = 300;
const kLastRetry = 8000;

export class Door {
  readonly queue = new OutQueue();
  private socket: WebSocket | null = null;
  private session: string;
  private retry = kFirstRetry;
  private timer = 0;
  // What goes out is numbered, so that nothing is lost or done twice over a lost connection.
  private number = 0;
  private sent = 0;
  // The desk has greeted and is ready for the next object.
  private ready = false;
  private closed = false;
  // What went out beside the queue is answered after what was under way.
  private owed = 0;

  constructor(
    private user: DoorUser,
    session: string | null,
    private stillLoggedIn: () => Promise<boolean | null>,
  ) {
    this.session = session ?? "";
    window.addEventListener("online", () => this.hurry());
    window.addEventListener("offline", () => this.socket?.close());
    this.connect();
  }

  private connect(): void {
    if (this.closed) return;
    this.user.linkChanged(this.retry === kFirstRetry && this.sent === 0 ? "connecting" : "lost");
    const scheme = location.protocol === "https:" ? "wss" : "ws";
    const query = this.session === "" ? "" : `?session=${encodeURIComponent(this.session)}`;
    const socket = new WebSocket(`${scheme}://${location.host}/door${query}`);
    this.socket = socket;
    socket.onmessage = (event) => {
      if (socket === this.socket) this.receive(String(event.data));
    };
    socket.onclose = () => {
      if (socket === this.socket) void this.lost();
    };
  }

  private async lost(): Promise<void> {
    this.socket = null;
    this.ready = false;
    if (this.closed) return;
    this.user.linkChanged("lost");
    const logged = await this.stillLoggedIn();
    if (this.closed) return;
    if (logged === false) {
      this.user.loggedOut();
      return;
    }
    window.clearTimeout(this.timer);
    this.timer = window.setTimeout(() => this.connect(), this.retry);
    this.retry = Math.min(this.retry * 2, kLastRetry);
  }

  // Tries at once.
  hurry(): void {
    if (this.closed || this.socket !== null) return;
    window.clearTimeout(this.timer);
    this.retry = kFirstRetry;
    this.connect();
  }

  private receive(text: string): void {
    const out = JSON.parse(text) as Out;
    if (out.on === "hello") this.greeted(out.session, out.received);
    if (out.on === "error") this.queue.refuse();
    if (out.on === "ended") this.closed = true;
    if (out.on === "idle" || out.on === "waiting") {
      // The answers to what is under way reach their controls before the queue goes on.
      if (this.queue.current !== null) this.queue.answered();
      else if (this.owed > 0) this.owed -= 1;
      this.ready = this.owed === 0;
    }
    this.user.received(out);
    this.pump();
  }

  private greeted(session: string, received: number | undefined): void {
    this.retry = kFirstRetry;
    this.owed = 0;
    // What was done before the first greeting is meant for whatever session comes.
    const same = session === this.session || this.session === "";
    this.session = session;
    sessionStorage.setItem("orv-session", session);
    this.user.linkChanged("open");
    if (!same) {
      this.queue.clear();
      this.number = 0;
    } else if (this.queue.current !== null) {
      // What the desk never took is sent again; what it took is answered by the state that follows.
      if (received !== undefined && received < this.sent) this.queue.requeue();
    } else if (received !== undefined && received > this.number) {
      // The page was loaded anew in the middle of a session.
      this.number = received;
    }
  }

  push(item: Item): void {
    if (this.closed) return;
    this.queue.push(item);
    this.pump();
  }

  // Goes out at once, beside the queue: the cancel of a long action.
  urgent(object: Record<string, unknown>): void {
    if (this.socket?.readyState !== WebSocket.OPEN) return;
    this.owed += 1;
    this.socket.send(JSON.stringify(object));
  }

  private pump(): void {
    const socket = this.socket;
    if (!this.ready || socket === null || socket.readyState !== WebSocket.OPEN) return;
    const object = this.queue.next();
    if (object === null) return;
    this.number += 1;
    this.sent = this.number;
    this.ready = false;
    socket.send(JSON.stringify({ ...object, n: this.number }));
  }

  // The session's name, for what is asked beside the door.
  get name(): string {
    return this.session;
  }

  close(): void {
    this.closed = true;
    window.clearTimeout(this.timer);
    this.socket?.close();
    this.socket = null;
  }
}
