"""FTP servers of a test's own on 127.0.0.1: pyftpdlib and ProFTPD, plain or with TLS, as ordinary processes in temporary
folders. Both know one user and write into one folder."""
import functools
import os
import pathlib
import subprocess
import sys
import tempfile

from own_server import OwnServer, program

USER, PASSWORD = "mario", "Segreto-di-Mario"

PYFTPDLIB = """
import logging, sys
from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, TLS_FTPHandler
from pyftpdlib.servers import FTPServer
port, home, certificate, user, password = sys.argv[1:]
logging.basicConfig(level=logging.INFO)
authorizer = DummyAuthorizer()
authorizer.add_user(user, password, home, perm="elradfmwMT")
handler = TLS_FTPHandler if certificate else FTPHandler
handler.authorizer = authorizer
handler.permit_foreign_addresses = True
if certificate:
    handler.certfile = certificate
    handler.tls_control_required = handler.tls_data_required = True
FTPServer(("127.0.0.1", int(port)), handler).serve_forever()
"""

PROFTPD = """
ModulePath /usr/lib/proftpd
LoadModule mod_tls.c
ServerName "prova"
ServerType standalone
DefaultAddress 127.0.0.1
Port {port}
{owner}
UseIPv6 off
UseReverseDNS off
RequireValidShell off
RootLogin on
AuthPAM off
AuthOrder mod_auth_file.c
AuthUserFile {folder}/passwd
PidFile {folder}/pid
ScoreboardFile {folder}/scoreboard
DelayTable none
SystemLog {folder}/log
TransferLog none
WtmpLog off
AllowOverwrite on
<IfModule mod_tls.c>
  TLSEngine on
  TLSRequired on
  TLSRSACertificateFile {certificate}
  TLSRSACertificateKeyFile {certificate}
  TLSLog {folder}/tls.log
  TLSVerifyClient off
  {newest}
</IfModule>
"""


@functools.lru_cache(None)
def python_with(module):
    """An interpreter that has a module: this one, or the system's, for which packages are installed."""
    for one in (sys.executable, "/usr/bin/python3"):
        if subprocess.run([one, "-c", "import " + module], capture_output=True, check=False).returncode == 0:
            return one
    raise SystemExit("%s is missing: tools/install-deps" % module)


def hashed_password(password):
    """As /etc/shadow has it."""
    return subprocess.run([program("openssl"), "passwd", "-6", password], capture_output=True, text=True,
                          check=True).stdout.strip()


@functools.lru_cache(None)
def certificate_of(host):
    """A key and a certificate that nobody has signed. Finding a key takes longer than a test with it."""
    with tempfile.TemporaryDirectory(prefix="korvane-key-") as folder:
        key, certificate = pathlib.Path(folder, "key"), pathlib.Path(folder, "certificate")
        subprocess.run([program("openssl"), "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                        "/CN=" + host, "-addext", "subjectAltName=IP:" + host, "-keyout", key, "-out", certificate],
                       check=True, capture_output=True)
        return key.read_bytes() + certificate.read_bytes()


def make_certificate(folder, host="127.0.0.1"):
    """The certificate of a host in a file."""
    path = pathlib.Path(folder) / "certificate.pem"
    path.touch(mode=0o600)
    path.write_bytes(certificate_of(host))
    return path


class FtpServer(OwnServer):
    """`kind` is "pyftpdlib" or "proftpd"; ProFTPD always wants TLS, and one session for both connections. `newest`: it
    speaks TLS 1.3 alone, whose sessions are another matter."""

    def __init__(self, kind, home, tls=False, newest=False):
        super().__init__()
        self.kind, self.home, self.newest = kind, pathlib.Path(home), newest
        self.certificate = make_certificate(self.folder) if tls or kind == "proftpd" else None

    def words(self):
        return self._pyftpdlib() if self.kind == "pyftpdlib" else self._proftpd()

    def _pyftpdlib(self):
        script = self.folder / "server.py"
        script.write_text(PYFTPDLIB)
        return [python_with("pyftpdlib"), script, str(self.port), str(self.home), str(self.certificate or ""), USER,
                PASSWORD]

    def _proftpd(self):
        hashed = hashed_password(PASSWORD)
        users = self.folder / "passwd"
        users.write_text("%s:%s:%d:%d::%s:/bin/sh\n" % (USER, hashed, os.getuid(), os.getgid(), self.home))
        users.chmod(0o600)
        settings = self.folder / "proftpd.conf"
        owner = "User root\nGroup root" if os.getuid() == 0 else ""
        newest = "TLSProtocol TLSv1.3" if self.newest else ""
        settings.write_text(PROFTPD.format(port=self.port, folder=self.folder, certificate=self.certificate,
                                           owner=owner, newest=newest))
        return [program("proftpd"), "-n", "-c", settings]
