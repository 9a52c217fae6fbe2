#!/usr/bin/env python3
"""Asks a ClickHouse server: ask.py [--url URL] [--user USER] [--PARAMETER VALUE]... [--times] [QUESTION...]

A question is a file of the folder questions. Without one, all are asked. The password is that of the environment variable
DRIVERINFO_FLEET_PASSWORD. Answers are tab-separated, with one line of names before each answer when several are asked."""

import argparse
import http.client
import os
import pathlib
import re
import sys
import time
import urllib.error
import urllib.parse
import urllib.request

QUESTIONS = pathlib.Path(__file__).parent / "questions"
PARAMETERS = {"driver": "", "version": "", "host": "", "from": "1970-01-02 00:00:00", "since": "1970-01-02 00:00:00"}


class ServerError(Exception):
    pass


def quoted(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def bound(sql, parameters):
    """Sets the parameters of a question; servers before 20 do not do that themselves."""
    return re.sub(r"\{(\w+):String\}", lambda match: quoted(parameters[match[1]]), sql)


def post(url, sql, user="", password="", **settings):
    """What the server answers, as text; `sql` may be bytes to insert, with the statement in the setting `query`."""
    headers = {"X-ClickHouse-User": user, "X-ClickHouse-Key": password} if user else {}
    address = url.rstrip("/") + "/?" + urllib.parse.urlencode(settings)
    request = urllib.request.Request(address, sql if isinstance(sql, bytes) else sql.encode(), headers)
    try:
        with urllib.request.urlopen(request) as answer:
            return answer.read().decode()
    except urllib.error.HTTPError as error:
        raise ServerError(error.read().decode(errors="replace").strip()[:500]) from error
    except (OSError, http.client.HTTPException) as error:
        raise ServerError(f"{url} does not answer: {getattr(error, 'reason', error)}") from error


def statements(file):
    return [text for text in re.split(r";\s*\n", pathlib.Path(file).read_text()) if text.strip()]


def names():
    return sorted(path.stem for path in QUESTIONS.glob("*.sql"))


def text_of(name):
    return (QUESTIONS / (name + ".sql")).read_text()


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("--url", default="http://127.0.0.1:8123")
    arguments.add_argument("--user", default="")
    arguments.add_argument("--times", action="store_true")
    for name, default in PARAMETERS.items():
        arguments.add_argument("--" + name, default=default)
    arguments.add_argument("question", nargs="*")
    options = arguments.parse_args()
    password = os.environ.get("DRIVERINFO_FLEET_PASSWORD", "")
    parameters = {name: getattr(options, name) for name in PARAMETERS}
    for name in options.question or names():
        if name not in names():
            arguments.error(f"there is no question {name}; there are {', '.join(names())}")
        sql = text_of(name)
        start = time.monotonic()
        answer = post(options.url, bound(sql, parameters), options.user, password)
        took = f", {1000 * (time.monotonic() - start):.0f} ms" if options.times else ""
        if len(options.question) != 1:
            print(f"-- {name}{took}: {sql.splitlines()[0][3:]}")
        sys.stdout.write(answer)


if __name__ == "__main__":
    try:
        main()
    except ServerError as error:
        sys.exit(f"ask: {error}")
