# Warning and sanitizer flags for the project's own targets (qv_target_options).
add_library(qvi18n_warnings INTERFACE)
target_compile_options(qvi18n_warnings INTERFACE -Wall -Wextra $<$<BOOL:${QVI18N_WERROR}>:-Werror>)

if(QVI18N_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined -fno-sanitize-recover=all)
endif()

if(QVI18N_SANITIZE_THREAD)
  if(QVI18N_SANITIZE)
    message(FATAL_ERROR "QVI18N_SANITIZE and QVI18N_SANITIZE_THREAD cannot be combined")
  endif()
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()

if(QVI18N_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "QVI18N_FUZZ needs clang (CXX=clang++)")
  endif()
  # Coverage feedback for the library's code as well as the targets'; the targets link the
  # fuzzer's main (fuzz/CMakeLists.txt).
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined
    -fno-omit-frame-pointer -gline-tables-only)
  add_link_options(-fsanitize=address,undefined)
endif()
