# What only the Windows build has: the IDL compiler, split debug information, hardened linking.

find_program(WIDL x86_64-w64-mingw32-widl REQUIRED)
# widl of mingw-w64 lacks the automation IDL files; Wine's development package has them.
set(WIDL_FLAGS -m64 -I/usr/include/wine/wine/windows -L/usr/lib/x86_64-linux-gnu/wine/x86_64-windows)

add_link_options(-Wl,--dynamicbase,--nxcompat,--high-entropy-va,--no-insert-timestamp)

# lumen_idl(file.idl TLB out.tlb HEADER out.h IIDS out.c): outputs land in the caller's binary folder.
function(lumen_idl idl)
  cmake_parse_arguments(I "" "TLB;HEADER;IIDS" "" ${ARGN})
  set(source ${CMAKE_CURRENT_SOURCE_DIR}/${idl})
  add_custom_command(OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${I_TLB}
    COMMAND ${WIDL} ${WIDL_FLAGS} -t -o ${CMAKE_CURRENT_BINARY_DIR}/${I_TLB} ${source}
    DEPENDS ${source} VERBATIM)
  add_custom_command(OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${I_HEADER}
    COMMAND ${WIDL} ${WIDL_FLAGS} -h -o ${CMAKE_CURRENT_BINARY_DIR}/${I_HEADER} ${source}
    DEPENDS ${source} VERBATIM)
  add_custom_command(OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${I_IIDS}
    COMMAND ${WIDL} ${WIDL_FLAGS} -u -o ${CMAKE_CURRENT_BINARY_DIR}/${I_IIDS} ${source}
    DEPENDS ${source} VERBATIM)
endfunction()

# Debug information goes to <file>.debug beside the shipped file, which keeps only a link to it.
function(lumen_split_debug target)
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:${target}> $<TARGET_FILE:${target}>.debug
    COMMAND ${CMAKE_OBJCOPY} --strip-debug --add-gnu-debuglink=$<TARGET_FILE:${target}>.debug $<TARGET_FILE:${target}>
    VERBATIM)
endfunction()
