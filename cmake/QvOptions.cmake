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
