"""Debian's ZooKeeper on the loopback, which replicas of ClickHouse agree by: a plain process that ends with whoever started it."""

import glob
import pathlib
import shutil
import socket
import subprocess
import time

import servers


def is_installed():
    return pathlib.Path("/usr/share/java/zookeeper.jar").exists() and shutil.which("java")


class Keeper:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        (self.port,) = servers.free_ports(1)
        self.process = None

    def __enter__(self):
        (self.folder / "data").mkdir(parents=True)
        configuration = self.folder / "zoo.cfg"
        configuration.write_text(
            f"dataDir={self.folder}/data\nclientPort={self.port}\nclientPortAddress=127.0.0.1\ntickTime=2000\n"
            "admin.enableServer=false\n4lw.commands.whitelist=ruok\n"
        )
        jars = ["/usr/share/java/zookeeper.jar", "/etc/zookeeper/conf", *glob.glob("/usr/share/java/*.jar")]
        with open(self.folder / "output.txt", "wb") as output:
            self.process = subprocess.Popen(
                [
                    "java",
                    "-Xmx512m",
                    "-cp",
                    ":".join(jars),
                    "org.apache.zookeeper.server.quorum.QuorumPeerMain",
                    str(configuration),
                ],
                stdout=output,
                stderr=output,
                stdin=subprocess.DEVNULL,
                cwd=self.folder,
                start_new_session=True,
            )
        for _ in range(600):
            if self.process.poll() is not None:
                break
            try:
                with socket.create_connection(("127.0.0.1", self.port), 1) as connection:
                    connection.sendall(b"ruok")
                    if connection.recv(4) == b"imok":
                        return self
            except OSError:
                pass
            time.sleep(0.1)
        output = (self.folder / "output.txt").read_text()[-500:]
        self.__exit__()
        raise RuntimeError("ZooKeeper does not start: " + output)

    def __exit__(self, *_):
        if self.process and self.process.poll() is None:
            self.process.terminate()
            self.process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)
