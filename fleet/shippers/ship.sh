#!/usr/bin/env bash
# Sends collections that lie in a folder to the fleet's ClickHouse, oldest first: ship.sh FOLDER URL [USER]. For a share into which machines
# write, or a relay that is not always connected. Files are *.jsonl, each of one `driverlist collect` or several; a file goes when the
# server has taken it. The password is that of DRIVERINFO_FLEET_PASSWORD. Run here: all of it, by the tests of the fleet.
set -euo pipefail

[ $# -ge 2 ] || { echo "ship: call ship.sh FOLDER URL [USER]." >&2; exit 2; }
folder=$1
url=$2
user=${3:-fleet_shipper}
[ -d "$folder" ] || { echo "ship: there is no folder $folder." >&2; exit 2; }

# One at a time in a folder, so that no file is sent twice for nothing.
exec 9>"$folder/.lock"
flock -n 9 || exit 0
packed=$(mktemp)
trap 'rm -f "$packed"' EXIT

mapfile -t files < <(find "$folder" -maxdepth 1 -name '*.jsonl' -printf '%T@ %p\n' | sort -n | cut -d' ' -f2-)
for file in "${files[@]}"; do
  gzip -c "$file" >"$packed"
  # The password comes on standard input: arguments are for everyone to see.
  printf 'user = "%s:%s"\n' "$user" "${DRIVERINFO_FLEET_PASSWORD:-}" |
    curl --config - --silent --show-error --fail --connect-timeout 10 --max-time 300 --retry "${RETRIES:-3}" --retry-connrefused \
      --header 'Content-Encoding: gzip' --data-binary "@$packed" "${url%/}/?query=INSERT%20INTO%20intake.line%20FORMAT%20CSV" ||
    { echo "ship: $file stays; later calls send it." >&2; exit 1; }
  rm "$file"
done
