// A port of this machine that nobody uses at this moment.
import { createServer } from "node:net";

export function freePort() {
  return new Promise((found, failed) => {
    const server = createServer();
    server.once("error", failed);
    server.listen(0, "127.0.0.1", () => {
      const { port } = server.address();
      server.close(() => found(port));
    });
  });
}
