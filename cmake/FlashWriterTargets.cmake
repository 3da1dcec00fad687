# How every target of the tree is compiled, said once.

include(GNUInstallDirs)

# Applies the project's language level, warnings, sanitizers and include root to one target.
function(flashwriter_configure target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  target_include_directories(${target} PUBLIC "${FlashWriter_SOURCE_DIR}")
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 sees overlapping copies in plain std::string concatenation (its bug 105651).
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(FLASHWRITER_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(FLASHWRITER_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=${FLASHWRITER_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${FLASHWRITER_SANITIZE})
  endif()
endfunction()

# flashwriter_library(<name> SOURCES <file>... [DEPENDS <target>...])
# One static library per folder: flashwriter_<name>, with the alias flashwriter::<name>.
function(flashwriter_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(flashwriter_${name} STATIC ${ARG_SOURCES})
  add_library(flashwriter::${name} ALIAS flashwriter_${name})
  target_link_libraries(flashwriter_${name} PUBLIC ${ARG_DEPENDS})
  flashwriter_configure(flashwriter_${name})
  if(FLASHWRITER_FUZZ)
    # Tells a fuzz target which ways its input took; other programs count them for nobody.
    target_compile_options(flashwriter_${name} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  if(FLASHWRITER_COVERAGE)
    target_compile_options(flashwriter_${name} PRIVATE
      -fprofile-instr-generate -fcoverage-mapping)
    target_link_options(flashwriter_${name} PUBLIC -fprofile-instr-generate)
  endif()
endfunction()

# A test's own code is compiled once for each time that it runs, so it is not optimised: in the
# sanitizers' builds that alone takes two thirds of its compiler's time away.
function(flashwriter_configure_test target)
  flashwriter_configure(${target})
  target_compile_options(${target} PRIVATE -O0)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # The same fault in other guises; the address sanitizer's build looks at the real bounds.
    target_compile_options(${target} PRIVATE -Wno-array-bounds -Wno-stringop-overflow)
  endif()
endfunction()

# flashwriter_read_once(<source>): reads a command line by the large headers of CLI11, which take longer
# to optimise than the rest of its program.
function(flashwriter_read_once source)
  set_source_files_properties(${source} PROPERTIES
    SKIP_UNITY_BUILD_INCLUSION ON COMPILE_OPTIONS -O1)
  if(FLASHWRITER_SANITIZE)
    set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS -O0)
  endif()
endfunction()

# flashwriter_test(<name> SOURCES <file>... [DEPENDS <target>...] [PROPERTIES <name> <value>...])
# A GoogleTest program; each of its tests becomes one test of the suite, named <name>.<suite>.<test>.
# PROPERTIES are given to each of them (for example RUN_SERIAL TRUE, TIMEOUT 60).
function(flashwriter_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;PROPERTIES" ${ARGN})
  if(NOT TARGET test_headers)
    # The framework's headers, compiled once for all: they are most of what compiling a test takes.
    file(WRITE "${CMAKE_BINARY_DIR}/test_headers.cpp" "")
    add_library(test_headers OBJECT "${CMAKE_BINARY_DIR}/test_headers.cpp")
    target_link_libraries(test_headers PRIVATE GTest::gmock)
    target_precompile_headers(test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
    flashwriter_configure_test(test_headers)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} GTest::gmock GTest::gtest_main)
  flashwriter_configure_test(${name})
  target_precompile_headers(${name} REUSE_FROM test_headers)
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60
                       PROPERTIES ${ARG_PROPERTIES})
endfunction()

# flashwriter_qt_test(<name> SOURCES <file>... [DEPENDS <target>...] [PROPERTIES <name> <value>...])
# A Qt Test program, which is one test of the suite. It draws into memory: no display is needed.
function(flashwriter_qt_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;PROPERTIES" ${ARGN})
  find_package(Qt6 6.4 REQUIRED COMPONENTS Test Widgets)
  if(NOT TARGET qt_test_headers)
    file(WRITE "${CMAKE_BINARY_DIR}/qt_test_headers.cpp" "")
    add_library(qt_test_headers OBJECT "${CMAKE_BINARY_DIR}/qt_test_headers.cpp")
    # Without QtTest, whose headers are compiled for each folder in another way.
    target_link_libraries(qt_test_headers PRIVATE Qt6::Widgets)
    target_precompile_headers(qt_test_headers PRIVATE <QtWidgets>)
    flashwriter_configure_test(qt_test_headers)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} Qt6::Test Qt6::Widgets)
  flashwriter_configure_test(${name})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  target_precompile_headers(${name} REUSE_FROM qt_test_headers)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_FORCE_STDERR_LOGGING=1" ${ARG_PROPERTIES})
  if(FLASHWRITER_SANITIZE MATCHES "thread")
    set(suppressions "${FlashWriter_SOURCE_DIR}/tests/ui/thread-sanitizer.supp")
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT_MODIFICATION
      "TSAN_OPTIONS=string_append::suppressions='${suppressions}'")
  endif()
endfunction()

# flashwriter_preload(<name> <file>)
# A library <name>.so for LD_PRELOAD. Never sanitized, for it has to fit any program.
function(flashwriter_preload name file)
  add_library(${name} SHARED ${file})
  target_include_directories(${name} PRIVATE "${FlashWriter_SOURCE_DIR}")
  target_compile_features(${name} PRIVATE cxx_std_20)
  target_compile_options(${name} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -fno-exceptions -fno-rtti)
  if(FLASHWRITER_WARNINGS_AS_ERRORS)
    target_compile_options(${name} PRIVATE -Werror)
  endif()
  target_link_libraries(${name} PRIVATE ${CMAKE_DL_LIBS})
  set_target_properties(${name} PROPERTIES PREFIX "" CXX_EXTENSIONS OFF
                        CXX_VISIBILITY_PRESET hidden)
endfunction()
