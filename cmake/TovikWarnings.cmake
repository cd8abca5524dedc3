# Our own code compiles without a warning; other people's headers come in as system headers.
function(tovik_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
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
endif()
