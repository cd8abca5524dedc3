# Our own code compiles without a warning; other people's headers come in as system headers.
function(tovik_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
    # Qt's containers destroy the property records, which have no virtual destructor, its macros have
    # arguments left out, and whole files are embedded as one literal each.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-delete-non-abstract-non-virtual-dtor>
    $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>
    $<$<CXX_COMPILER_ID:Clang>:-Wno-overlength-strings>)
endfunction()

# Implicit conversions between 8-bit and Qt text mean Latin-1 in Qt 4 and UTF-8 in Qt 5: none.
function(tovik_explicit_text target)
  target_compile_definitions(${target} PRIVATE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY)
endfunction()

if(TOVIK_SANITIZE)
  add_compile_options(-fsanitize=${TOVIK_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TOVIK_SANITIZE})
  # Qt joins flags of its meta-types to numbers that their enumeration does not have, which only Clang
  # looks at.
  add_compile_options($<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=enum>)
endif()

# A library leaves nothing for others to define, but what Clang's sanitizers have in the program.
if(NOT TOVIK_SANITIZE OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  set(TOVIK_ALL_DEFINED LINKER:-z,defs)
endif()
