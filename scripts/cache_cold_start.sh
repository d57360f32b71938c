#!/usr/bin/env bash
# The file cache's cold-start race at full size: PROCESSES application processes initialize an
# empty cache directory at once and each adds one entry; the server then idles out so that the
# next round starts cold again. Checks that every process got a server and that no entry was
# lost across all the servers started.
# Usage: scripts/cache_cold_start.sh [BUILD_DIR (build/dev)] [PROCESSES (64)] [ROUNDS (1000)]
set -uo pipefail
bin="${1:-build/dev}/bin"
processes="${2:-64}"
rounds="${3:-1000}"
dir="$(mktemp -d)/cache"
export QVCACHED_IDLE_TIMEOUT=0.2
failures=0
start=$(date +%s)
for ((round = 0; round < rounds; round++)); do
  pids=()
  for ((i = 0; i < processes; i++)); do
    "$bin/filecache_probe" "$dir" add "r$round-$i" 64 & pids+=($!)
  done
  for pid in "${pids[@]}"; do
    wait "$pid" || { failures=$((failures + 1)); echo "round $round: a process failed ($?)"; }
  done
  # The next round must find no server: wait for the owner to idle out.
  for ((t = 0; t < 200 && ${#pids[@]} > 0; t++)); do
    [ -e "$dir/owner.port" ] || break
    owner=$(awk '{print $2}' "$dir/owner.port" 2>/dev/null)
    [ -n "$owner" ] && ! kill -0 "$owner" 2>/dev/null && break
    sleep 0.05
  done
done
entries=$("$bin/qvcached" --stats "$dir" | awk '/^entries:/ {print $2}')
expected=$((processes * rounds))
echo "$rounds rounds of $processes processes in $(($(date +%s) - start)) s:" \
     "$failures failed processes, $entries of $expected entries kept"
rm -rf "$(dirname "$dir")"
[ "$failures" -eq 0 ] && [ "$entries" -eq "$expected" ]
