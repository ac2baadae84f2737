"""nginx on 127.0.0.1: the shop at /, its back office at /scripts/backoffice/."""
import http.client
import os
import re
import socket

from .failure import HostError
from .layout import check_path
from .php import PING
from .processes import Server, child_environment, find_program
from .shop import BACKOFFICE_PATH

PACKAGE = "nginx"
# What no visitor may read, wherever it lies.
PRIVATE = r"\.(sql|sc|kpg|ini|new|log|mdb|lng|dat)$"

# Pages are Windows-1252 and say so themselves: no character set is added to any type.
CONF = """daemon off;
{user}
worker_processes 2;
pid "{run}/nginx.pid";
error_log "{log}/nginx-error.log" warn;
events {{ worker_connections 256; }}
http {{
  access_log "{log}/access.log";
  client_body_temp_path "{tmp}/body";
  proxy_temp_path "{tmp}/proxy";
  fastcgi_temp_path "{tmp}/fastcgi";
  uwsgi_temp_path "{tmp}/uwsgi";
  scgi_temp_path "{tmp}/scgi";
  client_max_body_size 8m;
  server_tokens off;
  sendfile on;
  tcp_nodelay on;
  charset off;
  default_type application/octet-stream;
  types {{
    text/html htm html;
    text/css css;
    text/plain txt;
    text/xml xml;
    application/javascript js;
    application/json json;
    image/gif gif;
    image/jpeg jpg jpeg;
    image/png png;
    image/webp webp;
    image/svg+xml svg;
    image/x-icon ico;
  }}
  gzip on;
  gzip_vary on;
  gzip_comp_level 5;
  gzip_min_length 256;
  gzip_types text/css text/plain text/xml application/javascript application/json image/svg+xml;

  fastcgi_param QUERY_STRING $query_string;
  fastcgi_param REQUEST_METHOD $request_method;
  fastcgi_param CONTENT_TYPE $content_type;
  fastcgi_param CONTENT_LENGTH $content_length;
  fastcgi_param SCRIPT_FILENAME $request_filename;
  fastcgi_param SCRIPT_NAME $fastcgi_script_name;
  fastcgi_param REQUEST_URI $request_uri;
  fastcgi_param DOCUMENT_URI $document_uri;
  fastcgi_param DOCUMENT_ROOT $document_root;
  fastcgi_param SERVER_PROTOCOL $server_protocol;
  fastcgi_param REQUEST_SCHEME $scheme;
  fastcgi_param GATEWAY_INTERFACE CGI/1.1;
  fastcgi_param SERVER_SOFTWARE nginx;
  fastcgi_param REMOTE_ADDR $remote_addr;
  fastcgi_param REMOTE_PORT $remote_port;
  fastcgi_param SERVER_ADDR $server_addr;
  fastcgi_param SERVER_PORT $server_port;
  fastcgi_param SERVER_NAME $host;
  fastcgi_param REDIRECT_STATUS 200;
  # Loading a large shop takes minutes.
  fastcgi_read_timeout 3600s;
  fastcgi_buffers 16 16k;

  server {{
    listen 127.0.0.1:{port};
    server_name 127.0.0.1 localhost;
    absolute_redirect off;
    root "{online}";
    index index.php index.{extension} index.htm index.html;

    location = {ping} {{ access_log off; fastcgi_param SCRIPT_FILENAME {ping}; fastcgi_param SCRIPT_NAME {ping};
      fastcgi_param REQUEST_METHOD GET; fastcgi_pass "unix:{php}"; }}
    location ~ /\\. {{ return 403; }}
    location ~* {private} {{ return 403; }}

    location = {backoffice_bare} {{ return 301 {backoffice_path}; }}
    location ^~ /scripts/ {{ return 404; }}
    location ^~ {backoffice_path} {{
      alias "{backoffice}/";
      index index.php;
      location ~ /\\. {{ return 403; }}
      location ~* {private} {{ return 403; }}
      location ~ ^{backoffice_path}(?<office>.+\\.php)$ {{
        alias "{backoffice}/$office";
        if (!-f $request_filename) {{ return 404; }}
        fastcgi_pass "unix:{php}";
      }}
    }}

    location ~ \\.({extensions})$ {{
      try_files $uri =404;
      fastcgi_pass "unix:{php}";
    }}
    location ~* \\.(gif|jpe?g|png|webp|svg|ico|css|js)$ {{
      expires 30d;
      add_header Cache-Control public;
    }}
    # What browsers and search engines ask of the root of any host, which is not the shop's affair.
    location ~ ^/(favicon\\.ico|robots\\.txt)$ {{ log_not_found off; }}
  }}
}}
"""


def check_free(port):
    """Fails when somebody listens on the port."""
    with socket.socket(socket.AF_INET, socket.SOCK_STREAM) as probe:
        probe.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        try:
            probe.bind(("127.0.0.1", port))
        except OSError as error:
            raise HostError(f"port {port} of 127.0.0.1 is not free: {error.strerror}") from None


def free_port():
    """A port that nobody uses at this moment."""
    with socket.socket(socket.AF_INET, socket.SOCK_STREAM) as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def pongs(port):
    """Whether a request passes through nginx to PHP and back."""
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=5)
    try:
        connection.request("GET", PING)
        answer = connection.getresponse()
        return answer.status == 200 and answer.read() == b"pong"
    except (OSError, http.client.HTTPException):
        return False
    finally:
        connection.close()


def web_server(home, shop, port):
    check_free(port)
    for folder in (shop.online, shop.scripts):
        check_path(folder)
    if not re.fullmatch(r"[A-Za-z0-9]+", shop.extension):
        raise HostError(f"the pages' extension {shop.extension!r} is none that a host would take for PHP")
    conf = home.configure("nginx.conf", CONF.format(
        user="user root;" if os.geteuid() == 0 else "", run=home.run, log=home.log, tmp=home.tmp, port=port,
        private=PRIVATE, online=shop.online, extension=shop.extension, ping=PING, php=home.php_socket,
        backoffice_path=BACKOFFICE_PATH, backoffice_bare=BACKOFFICE_PATH.rstrip("/"), backoffice=shop.scripts,
        extensions="|".join(dict.fromkeys(["php", shop.extension]))))
    log = home.log / "nginx-error.log"
    log.touch(mode=0o600)
    command = [find_program(["nginx"], PACKAGE), "-p", str(home.root), "-e", str(log), "-c", str(conf)]
    return Server("nginx", command, log, lambda: pongs(port), child_environment())
