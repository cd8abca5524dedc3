# Precompiled headers for tools and tests, most of whose compile time is other people's headers.
# The release preset builds without: what a file needs it still has to include. ccache caches what is
# compiled with them only if CCACHE_SLOPPINESS allows it, as the presets do; with CCACHE_DEPEND it takes what
# a source includes from the compiler, and need not preprocess each source that it does not know.

# Targets that are compiled alike share what the first of them has precompiled, by the name KIND.
function(tovik_precompile target kind)
  if(NOT TOVIK_PRECOMPILE)
    return()
  endif()
  # ccache takes a precompiled header of Clang's for another one when it holds the time.
  target_compile_options(${target} PRIVATE
    "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
  get_property(first GLOBAL PROPERTY TOVIK_PRECOMPILED_${kind})
  if(first)
    target_precompile_headers(${target} REUSE_FROM ${first})
  else()
    target_precompile_headers(${target} PRIVATE ${ARGN})
    set_property(GLOBAL PROPERTY TOVIK_PRECOMPILED_${kind} ${target})
  endif()
endfunction()

# Several sources of a target are compiled as one where TOVIK_UNITE says so: most of the time goes into
# what they all include. Every source still has to stand for itself: scripts/analyze and the release
# preset compile each alone.
function(tovik_unite target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${TOVIK_UNITE} UNITY_BUILD_BATCH_SIZE 10)
endfunction()
