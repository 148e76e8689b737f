// As much of a WebSocket server as the tests need: text frames of any length, one at a time.
import { createHash } from "node:crypto";

const kGuid = "258EAFA5-E914-47DA-95CA-C5AB0DC85B11";

export function accept(request, socket, onText, onClose) {
  const key = createHash("sha1").update(request.headers["sec-websocket-key"] + kGuid).digest("base64");
  socket.write(`HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Accept: ${key}\r\n\r\n`);
  let data = Buffer.alloc(0);
  let parts = [];
  socket.on("data", (chunk) => {
    data = Buffer.concat([data, chunk]);
    for (;;) {
      if (data.length < 2) return;
      let length = data[1] & 127;
      let at = 2;
      if (length === 126) {
        if (data.length < 4) return;
        length = data.readUInt16BE(2);
        at = 4;
      } else if (length === 127) {
        if (data.length < 10) return;
        length = Number(data.readBigUInt64BE(2));
        at = 10;
      }
      if (data.length < at + 4 + length) return;
      const mask = data.subarray(at, at + 4);
      const payload = Buffer.from(data.subarray(at + 4, at + 4 + length));
      for (let i = 0; i < payload.length; ++i) payload[i] ^= mask[i & 3];
      const code = data[0] & 15;
      const last = (data[0] & 128) !== 0;
      data = data.subarray(at + 4 + length);
      if (code === 8) {
        socket.end();
        return;
      }
      if (code > 2) continue;
      parts.push(payload);
      if (!last) continue;
      onText(Buffer.concat(parts).toString("utf8"));
      parts = [];
    }
  });
  socket.on("error", () => {});
  socket.on("close", onClose);
  return {
    send(text) {
      const payload = Buffer.from(text);
      let head;
      if (payload.length < 126) {
        head = Buffer.from([129, payload.length]);
      } else if (payload.length < 65536) {
        head = Buffer.from([129, 126, 0, 0]);
        head.writeUInt16BE(payload.length, 2);
      } else {
        head = Buffer.from([129, 127, 0, 0, 0, 0, 0, 0, 0, 0]);
        head.writeBigUInt64BE(BigInt(payload.length), 2);
      }
      if (!socket.destroyed) socket.write(Buffer.concat([head, payload]));
    },
    drop() {
      socket.destroy();
    },
  };
}
