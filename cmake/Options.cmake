# One interface target carries the language standard, the warnings and the sanitizers to every other target.
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

option(KORVANE_TIDY "Run clang-tidy beside each compilation of src/" OFF)
if(KORVANE_TIDY)
  find_program(CLANG_TIDY NAMES clang-tidy clang-tidy-14 REQUIRED)
endif()

option(KORVANE_UNITY "Compile several files of a target at once; names in unnamed namespaces of a folder must differ" OFF)
option(KORVANE_SANITIZE "Address and undefined behaviour sanitizers, without recovery" OFF)

add_library(korvane_options INTERFACE)
target_compile_features(korvane_options INTERFACE cxx_std_20)
target_compile_definitions(korvane_options INTERFACE KORVANE_VERSION="${PROJECT_VERSION}")
target_compile_options(korvane_options INTERFACE
  -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual -Wcast-qual -Wformat=2 -Wimplicit-fallthrough)
if(KORVANE_UNITY)
  target_compile_options(korvane_options INTERFACE -Wno-shadow)  # the next file's names are global in this one
endif()
# GCC 12 sees overlapping copies in std::string that aren't there (its bug 105329).
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(korvane_options INTERFACE -Wno-restrict)
endif()
# What is handed out is built as Debian builds its own programs.
# Source: dpkg-buildflags(1), feature area "hardening".
target_compile_options(korvane_options INTERFACE $<$<CONFIG:Release>:-fstack-protector-strong -D_FORTIFY_SOURCE=2>)
target_link_options(korvane_options INTERFACE $<$<CONFIG:Release>:-Wl,-z,relro,-z,now>)
# No folder of this machine gets into it.
target_compile_options(korvane_options INTERFACE $<$<CONFIG:Release>:-ffile-prefix-map=${CMAKE_BINARY_DIR}=build>
  $<$<CONFIG:Release>:-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.>)
if(KORVANE_SANITIZE)
  # A target with KORVANE_ADDRESSES_ONLY has no checks of undefined behaviour; the option of a target itself would come
  # before these and mean nothing.
  set(undefined $<$<NOT:$<BOOL:$<TARGET_PROPERTY:KORVANE_ADDRESSES_ONLY>>>:,undefined>)
  set(sanitizers -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(korvane_options INTERFACE -fsanitize=address${undefined} ${sanitizers})
  target_link_options(korvane_options INTERFACE -fsanitize=address,undefined ${sanitizers})
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # The instrumented code makes GCC doubt variables that are set on every path.
    target_compile_options(korvane_options INTERFACE -Wno-error=maybe-uninitialized)
  endif()
endif()
if(KORVANE_FUZZ)
  target_compile_options(korvane_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# korvane_tidy(TARGET): clang-tidy on the files of a target, when the preset asks for it. The checks are in .clang-tidy.
function(korvane_tidy target)
  if(KORVANE_TIDY)
    set_target_properties(${target} PROPERTIES CXX_CLANG_TIDY "${CMAKE_SOURCE_DIR}/tools/quiet-clang-tidy;${CLANG_TIDY};--quiet")
  endif()
endfunction()

# korvane_unity(TARGET FILES): several files of a target are compiled at once, when the preset asks for it. The headers of
# the standard library and of Qt are most of a file's compilation, and the same in each. A name in an unnamed namespace may
# then not be that of another file of the folder, nor hide one.
function(korvane_unity target files)
  if(KORVANE_UNITY)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${files})
  endif()
endfunction()
