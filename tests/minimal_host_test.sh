#!/usr/bin/env bash
# The example for authors of hosts, built as C, draws what it should: minimal_host_test.sh RUNNER...
# names the program and the module, and before them what runs them.
set -euo pipefail
diff <("$@" | tr -d '\r') - <<'TEXT'
gray, 4 x 2:
0000 0000 0000 FF00
13C9 13C9 13C9 FF00
2793 2793 2793 FF00
3B5D 3B5D 3B5D FF00
4F27 4F27 4F27 FF00
62F0 62F0 62F0 FF00
76BA 76BA 76BA FF00
8A84 8A84 8A84 FF00
scaling, 2 x 1:
5000 2800 1400 FF00
9000 4800 2400 FF00
TEXT
