# Most of a build would go into reading the platform's headers, the libraries' and the test library's
# over and over. They are read once a group of targets, and the sources around the driver are
# compiled some at a time. The driver's own are compiled one by one.

# The first target compiles the headers, for all.
function(quillo_precompile)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "" "TARGETS;HEADERS")
  list(POP_FRONT arg_TARGETS first)
  target_precompile_headers(${first} PRIVATE ${arg_HEADERS})
  foreach(target IN LISTS arg_TARGETS)
    target_precompile_headers(${target} REUSE_FROM ${first})
  endforeach()
endfunction()

option(QUILLO_COMPILE_TOGETHER "Compile some sources at a time (off: for clang-tidy)" ON)
function(quillo_compile_together)
  set_target_properties(${ARGN} PROPERTIES
    UNITY_BUILD ${QUILLO_COMPILE_TOGETHER} UNITY_BUILD_BATCH_SIZE 8)
endfunction()

if(WIN32)
  set(ddi "${PROJECT_SOURCE_DIR}/src/base/ddi.h" <oleauto.h> <winspool.h>)
  set(windows "${PROJECT_SOURCE_DIR}/src/base/windows.h" <oleauto.h> <winspool.h>)
  set(standard <filesystem> <functional> <map> <optional> <string> <vector>)
  set(engine host_engine_services host_engine host_emf_player host_pdf)
  set(host host_pages host_app host_client host_client_app host_inputs host_pictures host_plain_text
    host_preview host_printer host_printing)
  set(tests driver_tests host_tests shipped_tests ui_tests e2e_tests faults)
  quillo_precompile(TARGETS quillo_driver QXUI06X HEADERS ${ddi})
  quillo_precompile(TARGETS ${engine} HEADERS ${ddi} ${standard})
  quillo_precompile(TARGETS ${host} HEADERS ${windows} ${standard} <nlohmann/json.hpp>)
  quillo_precompile(TARGETS ${tests} HEADERS ${ddi} ${standard} <gtest/gtest.h>)
  # Nothing but reading the command line.
  foreach(program host_cli quillo-print quillo-client quillo-setup)
    target_compile_options(${program} PRIVATE
      $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CONFIG:Release>>:-O1>)
  endforeach()
  quillo_compile_together(${engine} ${host} ${tests} QXUI06X)
endif()
quillo_precompile(TARGETS pure_tests HEADERS <gtest/gtest.h>)
quillo_compile_together(pure_tests)
