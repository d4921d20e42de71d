# How this tree makes its targets: one set of flags, and four kinds of target that differ by build.

add_library(lumen_flags INTERFACE)
target_include_directories(lumen_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(lumen_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Woverloaded-virtual -Werror
  -fstack-protector-strong)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # g++ 12 sees overlaps and overruns that are not there in std::basic_string's own copying, and an else that could dangle
  # in every googletest macro.
  target_compile_options(lumen_flags INTERFACE -Wno-restrict -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread -Wno-dangling-else)
endif()
if(NOT WIN32)
  # COM interfaces have no virtual destructor by design, so only portable code is held to this.
  target_compile_options(lumen_flags INTERFACE -Wnon-virtual-dtor)
endif()
if(LUMEN_SANITIZE)
  # One flag set for everything, so that the address map of every object is the same.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
# Bounds and null checks of the standard library stay on in the product: its callers may be hostile.
add_compile_definitions(_GLIBCXX_ASSERTIONS)

if(WIN32)
  target_compile_definitions(lumen_flags INTERFACE _WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX)
  target_link_options(lumen_flags INTERFACE -fstack-protector-strong)  # brings in the checking library
  # mingw-w64's own headers trip these two in expansions of their macros.
  target_compile_options(lumen_flags INTERFACE -Wno-cast-function-type -Wno-missing-field-initializers)
else()
  # Portable code sees the 16-bit wchar_t of Windows; everything linked to it must agree.
  add_compile_options(-fshort-wchar)
endif()

# lumen_library(NAME [PORTABLE file...] [WINDOWS file...] [LINK target...])
# PORTABLE files are logic and go into every build; WINDOWS files perform and exist in the product only.
function(lumen_library name)
  cmake_parse_arguments(L "" "" "PORTABLE;WINDOWS;LINK" ${ARGN})
  set(sources ${L_PORTABLE})
  if(WIN32)
    list(APPEND sources ${L_WINDOWS})
  endif()
  foreach(source IN LISTS L_PORTABLE)
    set_property(GLOBAL APPEND PROPERTY LUMEN_PORTABLE_FILES ${CMAKE_CURRENT_SOURCE_DIR}/${source})
  endforeach()
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC lumen_flags ${L_LINK})
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE lumen_flags ${L_LINK})
  endif()
endfunction()

# lumen_test(NAME [PORTABLE file...] [WINDOWS file...] [LINK target...] [LOCK resource...] [BARE])
# One executable, one CTest entry; its cases are counted from the XML it leaves in <build>/results.
# LOCK names what the tests share with others: registry, broker, display, printer, proxy, services.
# NEEDS names what must be set up first, beside the Wine prefix: broker.
# DISPLAY runs the test with a display of its own, for windows that have pixels; see tests/support/TestDesktop.h.
# UNDER runs it by that command, to which the program is added.
# BARE gives no main of its own: the file list holds one.
function(lumen_test name)
  cmake_parse_arguments(T "BARE;DISPLAY" "TIMEOUT" "PORTABLE;WINDOWS;LINK;LOCK;NEEDS;UNDER" ${ARGN})
  set(sources ${T_PORTABLE})
  if(WIN32)
    list(APPEND sources ${T_WINDOWS})
  endif()
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE lumen_flags ${T_LINK} GTest::gtest)
  if(NOT T_BARE)
    target_link_libraries(${name} PRIVATE lumen_test_main)
  endif()
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  set(command ${name})
  if(WIN32 AND T_DISPLAY)
    set(T_UNDER ${CMAKE_SOURCE_DIR}/tools/with-display)
  endif()
  if(WIN32 AND T_UNDER)
    set(command ${T_UNDER} $<TARGET_FILE:${name}>)
  endif()
  add_test(NAME ${name} COMMAND ${command} --gtest_brief=1 --gtest_output=xml:results/${name}.xml
    WORKING_DIRECTORY ${CMAKE_BINARY_DIR})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 240)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT})
  if(WIN32)
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED "prefix;${T_NEEDS}")
  endif()
  if(T_LOCK)
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK "${T_LOCK}")
  endif()
endfunction()

# lumen_fuzz(NAME SOURCE file (CORPUS folder-in-fuzz | SEEDS folder) LINK target...)
# The same LLVMFuzzerTestOneInput serves twice: replayed over the corpus as a test of ./test, and as a libFuzzer
# target (<name>_fuzz) for long runs by tools/fuzz.
function(lumen_fuzz name)
  cmake_parse_arguments(F "" "SOURCE;CORPUS;SEEDS" "LINK" ${ARGN})
  if(F_CORPUS)
    set(F_SEEDS ${CMAKE_SOURCE_DIR}/fuzz/${F_CORPUS})
  endif()
  if(WIN32 OR NOT LUMEN_SANITIZE OR NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
    return()
  endif()
  add_executable(${name}_fuzz ${F_SOURCE})
  target_compile_options(${name}_fuzz PRIVATE -fsanitize=fuzzer)
  target_link_options(${name}_fuzz PRIVATE -fsanitize=fuzzer)
  target_link_libraries(${name}_fuzz PRIVATE lumen_flags ${F_LINK})
  set_target_properties(${name}_fuzz PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
  # New findings go to the build folder first, the seeds stay as they are in the tree.
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz/${name}-corpus)
  add_test(NAME fuzz_${name} COMMAND ${name}_fuzz -max_total_time=3 -timeout=10 -rss_limit_mb=2048
    -artifact_prefix=${CMAKE_BINARY_DIR}/fuzz/${name}- ${CMAKE_BINARY_DIR}/fuzz/${name}-corpus
    ${F_SEEDS})
endfunction()

# lumen_bench(NAME SOURCE file LINK target...): built in the bench preset, run by tools/bench.
add_custom_target(benchmarks)
function(lumen_bench name)
  cmake_parse_arguments(B "" "" "SOURCE;LINK" ${ARGN})
  if(NOT LUMEN_BENCHMARKS)
    return()
  endif()
  add_executable(${name} ${B_SOURCE})
  target_link_libraries(${name} PRIVATE lumen_flags ${B_LINK})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/programs)
  add_dependencies(benchmarks ${name})
endfunction()
