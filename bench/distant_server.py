"""A distance between a client and an FTP server of this machine: DistantServer(port, seconds) serves on a port of its own,
and each byte takes half of `seconds` to go through, that of passive data connections too. What a real distance adds to
the opening of a connection is left out, for every client alike. `commands` and `data_connections` count what clients
have sent and opened."""
import asyncio
import re
import threading

EXTENDED = re.compile(rb"229 [^\r\n]*\(\|\|\|(\d+)\|\)[^\r\n]*\r\n")
PASSIVE = re.compile(rb"227 [^\r\n]*?(\d+,\d+,\d+,\d+),(\d+),(\d+)[^\r\n]*\r\n")


class DistantServer:
    def __init__(self, port, seconds):
        self.target, self.delay, self.port = port, seconds / 2, None
        self.loop = asyncio.new_event_loop()
        self.commands = self.data_connections = 0

    def __enter__(self):
        ready = threading.Event()
        threading.Thread(target=self._run, args=(ready,), daemon=True).start()
        ready.wait()
        return self

    def __exit__(self, kind, error, trace):
        self.loop.call_soon_threadsafe(self.loop.stop)

    def _run(self, ready):
        asyncio.set_event_loop(self.loop)
        server = self.loop.run_until_complete(self._listen(self.target, control=True))
        self.port = server.sockets[0].getsockname()[1]
        ready.set()
        self.loop.run_forever()

    async def _listen(self, target, control):
        async def serve(client, to_client):
            if not control:
                gate.close()  # one connection is all that it is for; ten thousand gates are more than a machine has
            source, to_server = await asyncio.open_connection("127.0.0.1", target)
            self.data_connections += not control
            await asyncio.gather(self._carry(client, to_server, False, counted=control),
                                 self._carry(source, to_client, control))
        gate = await asyncio.start_server(serve, "127.0.0.1", 0)
        return gate

    async def _carry(self, source, sink, replies, counted=False):
        try:
            while data := await source.read(65536):
                if counted:
                    self.commands += data.count(b"\n")
                if replies:
                    data = await self._with_gates(data)
                self.loop.call_later(self.delay, sink.write, data)
            self.loop.call_later(self.delay, sink.close)
        except OSError:
            sink.close()

    async def _with_gates(self, data):
        """A reply that names a port of the server names one of a gate before that port."""
        for pattern in (EXTENDED, PASSIVE):
            found = pattern.search(data)
            if found:
                numbers = found.groups()
                port = int(numbers[0]) if pattern is EXTENDED else int(numbers[1]) * 256 + int(numbers[2])
                gate = (await self._listen(port, control=False)).sockets[0].getsockname()[1]
                told = (b"229 ok (|||%d|)\r\n" % gate if pattern is EXTENDED else
                        b"227 ok (127,0,0,1,%d,%d)\r\n" % divmod(gate, 256))
                data = data[:found.start()] + told + data[found.end():]
        return data
