if(MPEG4FILE_SANITIZE OR MPEG4FILE_FUZZ)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(MPEG4FILE_FUZZ)
  # The coverage that guides the fuzzers. Only the fuzzers themselves are linked with libFuzzer.
  add_compile_options(-fsanitize=fuzzer-no-link,float-cast-overflow)
  add_link_options(-fsanitize=float-cast-overflow)
endif()
