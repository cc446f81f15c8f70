# ./dev check-dist, run by it: uses each file of dist/ once, away from the tree, and packs the same
# commit a second time, in another folder.
if ! git diff --quiet HEAD; then
    echo "dev: check-dist packs a commit; commit or stash what you changed" >&2
    exit 2
fi
rm -rf build/again
git clone -q . build/again # before packing, in which time the branch may go on
. tools/dist.sh
install_packages man-db python3-venv unzip
run_check tests/dist_test.sh dist/*.deb "$version"
run_check tests/dist_test.sh dist/*.tar.gz "$version"
run_check tests/dist_test.sh dist/*.whl "$version"
build_preset win64 minimal_host
prepare_wine
run_check run_wine tests/dist_test.sh dist/*.zip "$version"

build/again/dev dist >/dev/null
run_check diff dist/SHA256SUMS build/again/dist/SHA256SUMS
summary
