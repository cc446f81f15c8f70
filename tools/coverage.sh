# ./dev coverage, run by it: which lines of lib/, plugin/ and host/ the tests reach on Linux and,
# under Wine, on Windows; a line that one of the two reaches is covered. What no test reaches is
# listed in build/coverage/lines.txt.
install_packages "${test_packages[@]}" gcovr
rm -rf build/coverage
mkdir -p build/coverage

# Builds a preset, runs its tests, a runner named behind it, and keeps what gcov counted.
count_lines() {
    local preset=$1 gcov=$2
    shift 2
    build_preset "$preset"
    find "build/$preset" -name '*.gcda' -delete
    # That test forbids to write files, which a program does that counts its lines.
    GTEST_FILTER=-CommandLine.ReportsAWorkerThatDies run_preset_tests "$preset" "$@"
    gcovr --root . --filter lib/ --filter plugin/ --filter host/ --gcov-executable "$gcov" \
        --json "build/coverage/$preset.json" "build/$preset"
}
count_lines native-coverage gcov
prepare_wine
count_lines win64-coverage x86_64-w64-mingw32-gcov-posix run_wine wine

# gcovr refuses to sum up functions that stand at different lines on the two systems; lines will do.
python3 - build/coverage/*.json <<'PYTHON'
import json, sys
for path in sys.argv[1:]:
    with open(path) as file:
        report = json.load(file)
    for entry in report['files']:
        entry['functions'] = []
    with open(path, 'w') as file:
        json.dump(report, file)
PYTHON

# Sums the lines up for the folders named; further words go to gcovr.
report() {
    local filters=() folder
    while [ "${1#--}" = "$1" ]; do
        filters+=(--filter "$1")
        shift
    done
    gcovr --root . --add-tracefile 'build/coverage/*.json' "${filters[@]}" "$@"
}
# Never to /dev/null: gcovr removes a file before it writes it.
report lib/ plugin/ host/ --txt build/coverage/lines.txt
for folder in lib/ plugin/ host/; do
    echo "$folder $(report "$folder" --print-summary --txt build/coverage/folder.txt | grep '^lines')"
done
report lib/ plugin/ --fail-under-line 95 --txt build/coverage/module.txt || failed=$((failed + 1))
summary
