# The fuzz targets: programs that call the tree's code with inputs which a fuzzer invents.

if(FLASHWRITER_FUZZ AND NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "FLASHWRITER_FUZZ needs Clang")
endif()

# flashwriter_fuzz_target(<name> SOURCES <file>... [DEPENDS <target>...]
#                         [MAX_LENGTH <bytes>] [DICTIONARY <file>] [RUNS <count>] [OPTIONS <option>...])
# The program fuzz_<name>, and the test fuzz.<name> of the suite: each file of tests/fuzz/corpus/<name>,
# then new inputs, RUNS runs in all (default 20000). OPTIONS are the fuzzer's own, for the long runs too.
# How the program is to be called is written to <build>/fuzz/<name>.call, one word per line, for both.
function(flashwriter_fuzz_target name)
  cmake_parse_arguments(ARG "" "MAX_LENGTH;DICTIONARY;RUNS" "SOURCES;DEPENDS;OPTIONS" ${ARGN})
  add_executable(fuzz_${name} ${ARG_SOURCES})
  target_link_libraries(fuzz_${name} PRIVATE ${ARG_DEPENDS})
  flashwriter_configure(fuzz_${name})
  # The target's own code is not watched: what counts is where the tree's code has been.
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)

  set(call "$<TARGET_FILE:fuzz_${name}>" ${ARG_OPTIONS})
  if(ARG_MAX_LENGTH)
    list(APPEND call "-max_len=${ARG_MAX_LENGTH}")
  endif()
  if(ARG_DICTIONARY)
    list(APPEND call "-dict=${CMAKE_CURRENT_SOURCE_DIR}/${ARG_DICTIONARY}")
  endif()
  set(call_file "${CMAKE_BINARY_DIR}/fuzz/${name}.call")
  file(GENERATE OUTPUT "${call_file}" CONTENT "$<JOIN:${call},\n>\n")

  if(NOT ARG_RUNS)
    set(ARG_RUNS 20000)
  endif()
  add_test(NAME fuzz.${name}
           COMMAND "${FlashWriter_SOURCE_DIR}/tests/fuzz/short-run.sh" "${call_file}" "${ARG_RUNS}")
  set_tests_properties(fuzz.${name} PROPERTIES LABELS fuzz TIMEOUT 120)
endfunction()
