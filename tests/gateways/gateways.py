# SPDX-License-Identifier: Apache-2.0
"""Real gateways in front of the card service: TLS, HTTP/2 and compression on, on a port of the loopback interface."""

import os
import pathlib
import socket
import subprocess
import time


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as taken:
        return taken.getsockname()[1]


def make_certificate(folder):
    """An authority's certificate (ca.pem), and one for localhost (server.pem, server.key) that it signed."""
    def openssl(*arguments):
        subprocess.run(["openssl", *arguments], check=True, capture_output=True, cwd=folder)

    openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=gateway test CA", "-keyout", "ca.key", "-out", "ca.pem")
    openssl("req", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=localhost", "-keyout", "server.key", "-out", "server.csr")
    pathlib.Path(folder, "names").write_text("subjectAltName=DNS:localhost,IP:127.0.0.1\n")
    openssl("x509", "-req", "-in", "server.csr", "-CA", "ca.pem", "-CAkey", "ca.key", "-CAcreateserial", "-days", "2", "-extfile", "names", "-out", "server.pem")


class Gateway:
    """Sends /api/sdk/pinSet to `pin`, another port perhaps, and all else to `service`. It waits one second for an answer.
    `idle`: seconds until it closes a connection that is not used; `requests`: those of one connection, where it can."""

    limits_requests = False

    def __init__(self, folder, service, pin=None, idle=60, requests=1000):
        self.folder, self.service, self.pin, self.idle, self.requests = folder, service, pin or service, idle, requests
        self.port = free_port()
        self.url = f"https://localhost:{self.port}"
        self.start()

    def start(self):
        with open(os.path.join(self.folder, "gateway.log"), "a", encoding="utf-8") as log:
            self.process = subprocess.Popen(self.command(), stdout=log, stderr=log, cwd=self.folder)
        for _ in range(200):
            try:
                return socket.create_connection(("127.0.0.1", self.port)).close()
            except OSError:
                time.sleep(0.05)
        raise AssertionError(pathlib.Path(self.folder, "gateway.log").read_text(encoding="utf-8"))

    def stop(self):
        self.process.terminate()
        self.process.wait(30)

    def restart(self):
        self.stop()
        self.start()

    def file(self, text):
        path = pathlib.Path(self.folder, "gateway.conf")
        path.write_text(text, encoding="utf-8")
        return str(path)


class Nginx(Gateway):
    limits_requests = True

    def command(self):
        user = "user root;" if os.geteuid() == 0 else ""
        temporary = "".join(f"{name}_temp_path {self.folder}/{name};" for name in ("client_body", "proxy", "fastcgi", "uwsgi", "scgi"))
        return ["nginx", "-e", "stderr", "-p", self.folder, "-c", self.file(f"""
            {user} daemon off; pid {self.folder}/nginx.pid; error_log stderr; worker_processes 1;
            events {{ }}
            http {{
              {temporary} access_log off;
              gzip on; gzip_types application/json; gzip_proxied any; gzip_min_length 1;
              keepalive_timeout {self.idle}s; keepalive_requests {self.requests}; proxy_read_timeout 1s;
              server {{
                listen 127.0.0.1:{self.port} ssl http2;
                ssl_certificate server.pem; ssl_certificate_key server.key;
                location / {{ proxy_pass http://127.0.0.1:{self.service}; }}
                location = /api/sdk/pinSet {{ proxy_pass http://127.0.0.1:{self.pin}; }}
              }}
            }}""")]


class Nghttpx(Gateway):
    def command(self):
        return ["nghttpx", "--conf=/dev/null", f"--frontend=127.0.0.1,{self.port}", f"--backend=127.0.0.1,{self.service}",
                f"--backend=127.0.0.1,{self.pin};/api/sdk/pinSet", "--host-rewrite", "--backend-read-timeout=1s",
                f"--frontend-http2-read-timeout={self.idle}s", f"--frontend-keep-alive-timeout={self.idle}s",
                "--workers=1", "--pid-file=" + self.folder + "/nghttpx.pid", "server.key", "server.pem"]


class Caddy(Gateway):
    def command(self):
        upstream = "header_up Host {upstream_hostport}\n transport http {\n response_header_timeout 1s\n }\n"
        config = self.file(f"""{{
            admin off
            auto_https off
            storage file_system {self.folder}/caddy
            servers {{
              timeouts {{
                idle {self.idle}s
              }}
            }}
          }}
          https://localhost:{self.port} {{
            bind 127.0.0.1
            tls server.pem server.key
            encode gzip
            handle /api/sdk/pinSet {{
              reverse_proxy 127.0.0.1:{self.pin} {{
                {upstream}
              }}
            }}
            handle {{
              reverse_proxy 127.0.0.1:{self.service} {{
                {upstream}
              }}
            }}
            handle_errors {{
              header Content-Type text/html
              respond "<html><h1>Our gateway has a problem</h1></html>" {{http.error.status_code}}
            }}
          }}
          """)
        return ["env", "HOME=" + self.folder, "caddy", "run", "--adapter", "caddyfile", "--config", config]


class Apache(Gateway):
    def command(self):
        modules = "".join(f"LoadModule {name}_module /usr/lib/apache2/modules/mod_{name}.so\n"
                          for name in ("mpm_event", "authz_core", "socache_shmcb", "ssl", "http2", "proxy", "proxy_http", "filter", "deflate"))
        user = "User www-data\nGroup www-data" if os.geteuid() == 0 else ""
        return ["/usr/sbin/apache2", "-DFOREGROUND", "-f", self.file(f"""
            ServerRoot {self.folder}
            ServerName localhost
            DefaultRuntimeDir {self.folder}
            PidFile {self.folder}/apache.pid
            ErrorLog {self.folder}/apache.log
            Listen 127.0.0.1:{self.port}
            {modules}
            {user}
            Mutex sem
            Protocols h2 http/1.1
            KeepAliveTimeout {self.idle}
            SSLEngine on
            SSLCertificateFile {self.folder}/server.pem
            SSLCertificateKeyFile {self.folder}/server.key
            AddOutputFilterByType DEFLATE application/json
            ProxyTimeout 1
            ProxyPass /api/sdk/pinSet http://127.0.0.1:{self.pin}/api/sdk/pinSet
            ProxyPass / http://127.0.0.1:{self.service}/
            """)]
