"""OpenSSH as a server of SFTP, and proxies of SOCKS, on 127.0.0.1 as ordinary processes in temporary folders."""
import os
import pathlib
import subprocess

from ftp_servers import PASSWORD, USER, hashed_password, python_with
from own_server import OwnServer, program

SSHD = """
Port {port}
ListenAddress 127.0.0.1
HostKey {folder}/key
PidFile none
UsePAM no
PermitRootLogin yes
PasswordAuthentication yes
KbdInteractiveAuthentication no
StrictModes no
Subsystem sftp /usr/lib/openssh/sftp-server
"""

ASKING = """
import asyncio, sys, asyncssh
port, home, user, password = sys.argv[1:]
class Asking(asyncssh.SSHServer):
    def password_auth_supported(self):
        return False
    def kbdint_auth_supported(self):
        return True
    def get_kbdint_challenge(self, name, language, methods):
        return "", "", "", [("Password: ", False)]
    def validate_kbdint_response(self, name, answers):
        return name == user and list(answers) == [password]
async def serve():
    await asyncssh.create_server(Asking, "127.0.0.1", int(port), server_host_keys=[asyncssh.generate_private_key(
        "ecdsa-sha2-nistp256")], sftp_factory=lambda chan: asyncssh.SFTPServer(chan, chroot=home.encode()))
    await asyncio.Event().wait()
asyncio.run(serve())
"""

# SOCKS 4 and 5 for anybody on this machine.
DANTE = """
logoutput: stderr
internal: 127.0.0.1 port = {port}
external: 127.0.0.1
clientmethod: none
socksmethod: none
client pass {{ from: 127.0.0.0/8 to: 0.0.0.0/0 }}
socks pass {{ from: 127.0.0.0/8 to: 0.0.0.0/0 }}
"""


class SshServer(OwnServer):
    """One user with a password, who lands in `home`. nss_wrapper gives the server its own list of users."""

    def __init__(self, home):
        super().__init__()
        self.home = pathlib.Path(home)

    def words(self):
        subprocess.run([program("ssh-keygen"), "-q", "-t", "ed25519", "-N", "", "-f", self.folder / "key"], check=True)
        own = "%d:%d" % (os.getuid(), os.getgid())
        texts = {"passwd": "%s:x:%s::%s:/bin/sh\nsshd:x:65534:65534::/run/sshd:/bin/false\n" % (USER, own, self.home),
                 "group": "users:x:%d:\nnogroup:x:65534:\n" % os.getgid(),
                 "shadow": "%s:%s:19000:0:99999:7:::\n" % (USER, hashed_password(PASSWORD)),
                 "config": SSHD.format(port=self.port, folder=self.folder)}
        for name, text in texts.items():
            (self.folder / name).write_text(text)
        if os.getuid() == 0:
            # As root the server locks a part of itself into this empty folder, which the package's own service makes.
            os.makedirs("/run/sshd", 0o755, exist_ok=True)
        return [program("sshd"), "-D", "-e", "-f", self.folder / "config"]

    def environment(self):
        lists = {"NSS_WRAPPER_" + name.upper(): str(self.folder / name) for name in ("passwd", "group", "shadow")}
        return dict(os.environ, LD_PRELOAD="libnss_wrapper.so", **lists)


class AskingSshServer(OwnServer):
    """A server of SFTP that takes no password but asks for it (keyboard-interactive, RFC 4256)."""

    def __init__(self, home):
        super().__init__()
        self.home = home

    def words(self):
        (self.folder / "server.py").write_text(ASKING)
        return [python_with("asyncssh"), "-W", "ignore", self.folder / "server.py", str(self.port), str(self.home), USER,
                PASSWORD]


class Dante(OwnServer):
    def words(self):
        settings = self.folder / "danted.conf"
        settings.write_text(DANTE.format(port=self.port))
        return [program("danted"), "-f", settings, "-p", self.folder / "pid"]


class Microsocks(OwnServer):
    """SOCKS 5 alone, for one user with a password."""

    def words(self):
        return [program("microsocks"), "-i", "127.0.0.1", "-p", str(self.port), "-u", USER, "-P", PASSWORD]
