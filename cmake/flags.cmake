# What every target of the project is compiled with: target_link_libraries(... imgbasic_flags).
add_library(imgbasic_flags INTERFACE)
target_compile_features(imgbasic_flags INTERFACE cxx_std_20)
target_include_directories(imgbasic_flags INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(imgbasic_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    # Results are defined operation by operation; a fused multiply-add would change them.
    -ffp-contract=off
    -fvisibility=hidden -fvisibility-inlines-hidden)

if(WIN32)
    # 0x0A00: Windows 10. GCC does not keep the stack aligned for AVX spills on this system.
    target_compile_definitions(imgbasic_flags INTERFACE _WIN32_WINNT=0x0A00)
    target_compile_options(imgbasic_flags INTERFACE -Wa,-muse-unaligned-vector-move)
    target_link_options(imgbasic_flags INTERFACE -static -Wl,--no-insert-timestamp)
else()
    # It is made from the debugging information too, which knows the folder: two builds of a commit
    # are to be the same once that is stripped.
    target_link_options(imgbasic_flags INTERFACE -Wl,--build-id=none)
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

# Adds the named files of a folder to a target; the forms for an x86 instruction set only where the
# target is that processor.
function(imgbasic_sources target folder)
    foreach(name ${ARGN})
        set(source ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/${name})
        if(NOT name MATCHES "_(avx2|avx512)\\.cpp$")
            target_sources(${target} PRIVATE ${source})
            continue()
        endif()
        string(TOUPPER ${CMAKE_MATCH_1} instructions)
        if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
            set_property(SOURCE ${source} PROPERTY COMPILE_OPTIONS ${IMGBASIC_${instructions}_FLAGS})
            target_sources(${target} PRIVATE ${source})
        endif()
    endforeach()
endfunction()
