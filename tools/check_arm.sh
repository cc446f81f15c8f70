# ./dev check-arm, run by it: builds for 64-bit ARM and runs the tests under QEMU. There the scalar
# forms are all there is, `char` has no sign, and the processor could fuse multiply and add, which
# changes results.
install_packages "${build_packages[@]}" g++-aarch64-linux-gnu qemu-user
build_preset aarch64
multiplies_and_adds_apart() {
    local code
    code=$(aarch64-linux-gnu-objdump -d "$1")
    grep -q $'\tfmul\t' <<<"$code" && ! grep -E $'\t(fn?madd|fn?msub|fml[as])\t' <<<"$code"
}
run_check multiplies_and_adds_apart build/aarch64/bin/libimgbasic.so
# The library of the cross compiler brings no character sets for iconv.
GTEST_FILTER=-Texts.AreTheSameInBothEncodings run_preset_tests aarch64 qemu-aarch64 -L /usr/aarch64-linux-gnu
summary
