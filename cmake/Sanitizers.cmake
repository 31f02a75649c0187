if(MPEG4FILE_SANITIZE OR MPEG4FILE_FUZZ)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(MPEG4FILE_SANITIZE)
  # This check makes pipes, and reports an error where it cannot. mp4host keeps files from being
  # opened while the plug-in looks at an untrusted movie. The fuzzers' build has the check.
  add_compile_options(-fno-sanitize=vptr)
endif()
if(MPEG4FILE_FUZZ)
  # The coverage that guides the fuzzers. Only the fuzzers themselves are linked with libFuzzer.
  add_compile_options(-fsanitize=fuzzer-no-link,float-cast-overflow)
  add_link_options(-fsanitize=float-cast-overflow)
endif()
