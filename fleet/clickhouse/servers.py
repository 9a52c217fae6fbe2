"""ClickHouse servers of Debian on the loopback: plain processes with folders of their own, which end with whoever started them."""

import hashlib
import os
import pathlib
import re
import secrets
import shutil
import signal
import socket
import subprocess
import time
import urllib.error
import urllib.request

from ask import post, statements

HERE = pathlib.Path(__file__).parent
PROGRAM = shutil.which("clickhouse-server") or "/usr/sbin/clickhouse-server"


def is_installed():
    return os.access(PROGRAM, os.X_OK)


def free_ports(count):
    """Ports that nobody listens on."""
    sockets = [socket.socket() for _ in range(count)]
    try:
        for each in sockets:
            each.bind(("127.0.0.1", 0))
        return [each.getsockname()[1] for each in sockets]
    finally:
        for each in sockets:
            each.close()


class Server:
    """One process. `number` counts from 1."""

    def __init__(self, folder, number, tls=None):
        self.folder = pathlib.Path(folder) / f"server-{number}"
        self.number = number
        self.tls = tls
        self.http, self.tcp, self.interserver, self.https = free_ports(4)
        self.url = f"http://127.0.0.1:{self.http}"
        self.process = None

    def configure(self, cluster, users, shard, keeper):
        for name in ("data", "tmp", "format"):
            (self.folder / name).mkdir(parents=True, exist_ok=True)
        tls = ""
        if self.tls:
            openssl = re.search(r"<openSSL>.*</openSSL>", (HERE / "config/tls.xml").read_text(), re.S)[0]
            # There is no other file from which to remove.
            openssl = re.sub(r".*remove=.*\n", "", openssl)
            for name in ("server.crt", "server.key"):
                openssl = openssl.replace(f"/etc/clickhouse-server/{name}", str(pathlib.Path(self.tls) / name))
            tls = f"<https_port>{self.https}</https_port>{openssl}"
        zookeeper = f"<zookeeper><node><host>127.0.0.1</host><port>{keeper}</port></node></zookeeper>" if keeper else ""
        (self.folder / "users.xml").write_text(users)
        (self.folder / "config.xml").write_text(
            f"""<?xml version="1.0"?>
<yandex>
  <logger><level>warning</level><log>{self.folder}/server.log</log><errorlog>{self.folder}/error.log</errorlog></logger>
  <listen_host>127.0.0.1</listen_host><http_port>{self.http}</http_port><tcp_port>{self.tcp}</tcp_port>
  <interserver_http_port>{self.interserver}</interserver_http_port><interserver_http_host>127.0.0.1</interserver_http_host>
  <path>{self.folder}/data/</path><tmp_path>{self.folder}/tmp/</tmp_path><format_schema_path>{self.folder}/format/</format_schema_path>
  <users_config>{self.folder}/users.xml</users_config><default_profile>default</default_profile>
  <default_database>default</default_database><timezone>UTC</timezone><mark_cache_size>268435456</mark_cache_size>
  <remote_servers>{cluster}</remote_servers><macros><shard>{shard}</shard><replica>{self.number}</replica></macros>
  {zookeeper}{tls}
</yandex>
"""
        )

    def start(self):
        with open(self.folder / "output.txt", "ab") as output:
            # Ctrl+C in a terminal is for whoever started it, who then stops it.
            self.process = subprocess.Popen(
                [PROGRAM, f"--config-file={self.folder}/config.xml"],
                stdout=output,
                stderr=output,
                stdin=subprocess.DEVNULL,
                cwd=self.folder,
                start_new_session=True,
            )
        for _ in range(600):
            if self.process.poll() is not None:
                raise RuntimeError("the server ended at its start: " + (self.folder / "error.log").read_text()[:800])
            try:
                urllib.request.urlopen(self.url + "/ping").read()
                return
            except (urllib.error.URLError, ConnectionError):
                time.sleep(0.1)
        raise RuntimeError(f"{self.url} did not answer within a minute")

    def stop(self, how=signal.SIGTERM):
        if self.process and self.process.poll() is None:
            self.process.send_signal(how)
            try:
                self.process.wait(20)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()


class Cluster:
    """`shards` times `replicas` servers that know each other, with the schema and the users of the fleet. Stops them at the end of a
    `with` and removes their folder."""

    def __init__(self, folder, shards=1, replicas=1, keeper=None, layout=None, tls=None):
        self.folder = pathlib.Path(folder)
        self.layout = layout or ("replicas" if replicas > 1 else "shards")
        self.passwords = {name: secrets.token_hex(16) for name in ("shipper", "reader", "cluster")}
        self.servers = [Server(self.folder, number + 1, tls) for number in range(shards * replicas)]
        self.replicas = replicas
        self.keeper = keeper

    @property
    def url(self):
        return self.servers[0].url

    def __enter__(self):
        try:
            self.configure()
            for server in self.servers:
                server.start()
            for server in self.servers:
                for statement in statements(HERE / "schema" / f"{self.layout}.sql"):
                    post(server.url, statement)
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for server in self.servers:
            server.stop()
        shutil.rmtree(self.folder, ignore_errors=True)

    def configure(self):
        users = (HERE / "config/users.xml").read_text()
        for name, password in self.passwords.items():
            users = users.replace(f"{name.upper()}_SHA256", hashlib.sha256(password.encode()).hexdigest())
        # Whoever runs the servers, on their own machine.
        users = users.replace(
            "<profiles>",
            "<profiles><default><allow_experimental_low_cardinality_type>1</allow_experimental_low_cardinality_type>"
            "<distributed_product_mode>local</distributed_product_mode></default>",
        )
        users = users.replace(
            "<users>",
            "<quotas><default/></quotas><users><default><password></password><networks><ip>127.0.0.1</ip>"
            "</networks><profile>default</profile><quota>default</quota></default>",
        )
        shards = [self.servers[first : first + self.replicas] for first in range(0, len(self.servers), self.replicas)]
        user = f"<user>fleet_cluster</user><password>{self.passwords['cluster']}</password>"
        internal = "<internal_replication>true</internal_replication>" if self.replicas > 1 else ""
        cluster = "".join(
            "<shard>"
            + internal
            + "".join(f"<replica><host>127.0.0.1</host><port>{server.tcp}</port>{user}</replica>" for server in shard)
            + "</shard>"
            for shard in shards
        )
        for number, shard in enumerate(shards):
            for server in shard:
                server.configure(f"<fleet>{cluster}</fleet>", users, number + 1, self.keeper)

    def ship(self, lines, server=0):
        """As a shipper does: the lines in one request."""
        data = lines if isinstance(lines, bytes) else lines.encode()
        return post(
            self.servers[server].url,
            data,
            "fleet_shipper",
            self.passwords["shipper"],
            query="INSERT INTO intake.line FORMAT CSV",
        )

    def read(self, sql, server=0):
        """As a reader does."""
        return post(self.servers[server].url, sql, "fleet_reader", self.passwords["reader"])

    def optimize(self):
        """Merges what was inserted: for figures of disk."""
        suffix = "" if self.layout == "one" else "_local"
        for server in self.servers:
            for table in ("driver", "collection", "version_seen"):
                post(server.url, f"OPTIMIZE TABLE fleet.{table}{suffix} FINAL")
