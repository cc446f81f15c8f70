# What every target of the project is compiled with: target_link_libraries(... imgbasic_flags).
add_library(imgbasic_flags INTERFACE)
target_compile_features(imgbasic_flags INTERFACE cxx_std_20)
target_include_directories(imgbasic_flags INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(imgbasic_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
    # Results are defined operation by operation; a fused multiply-add would change them.
    -ffp-contract=off
    -fvisibility=hidden -fvisibility-inlines-hidden)

if(WIN32)
    # 0x0A00: Windows 10. GCC does not keep the stack aligned for AVX spills on this system.
    target_compile_definitions(imgbasic_flags INTERFACE _WIN32_WINNT=0x0A00)
    target_compile_options(imgbasic_flags INTERFACE -Wa,-muse-unaligned-vector-move)
    target_link_options(imgbasic_flags INTERFACE -static)
endif()

if(IMGBASIC_SANITIZERS)
    # vptr would look for the filters' type information in hosts, which only use their fields.
    target_compile_options(imgbasic_flags INTERFACE
        -fsanitize=${IMGBASIC_SANITIZERS} -fno-sanitize=vptr -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    target_link_options(imgbasic_flags INTERFACE -fsanitize=${IMGBASIC_SANITIZERS})
endif()

# name_avx2.cpp and name_avx512.cpp are compiled for their instruction set.
set(IMGBASIC_AVX2_FLAGS -mavx2 -mfma -mbmi2)
set(IMGBASIC_AVX512_FLAGS ${IMGBASIC_AVX2_FLAGS} -mavx512f -mavx512bw -mavx512dq -mavx512vl)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # GCC's own intrinsics pass undefined vectors on purpose (GCC bug 105593). The first option is
    # for clang-tidy, which does not know the last.
    list(APPEND IMGBASIC_AVX512_FLAGS
        -Wno-unknown-warning-option -Wno-uninitialized -Wno-maybe-uninitialized)
endif()

# Gathers the sources of one folder into `out`: all *.cpp; the forms for x86 instruction sets
# only where the target is that processor.
function(imgbasic_sources out folder)
    file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
    foreach(set AVX2 AVX512)
        string(TOLOWER ${set} suffix)
        set(forms ${sources})
        list(FILTER forms INCLUDE REGEX "_${suffix}\\.cpp$")
        if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
            set_property(SOURCE ${forms} APPEND PROPERTY COMPILE_OPTIONS ${IMGBASIC_${set}_FLAGS})
        else()
            list(REMOVE_ITEM sources ${forms})
        endif()
    endforeach()
    set(${out} ${sources} PARENT_SCOPE)
endfunction()
