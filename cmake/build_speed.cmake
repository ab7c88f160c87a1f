# Most of a build would go into reading the platform's headers and the test library's over and over:
# they are read once a target.
function(quillo_precompile)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "" "TARGETS;HEADERS")
  foreach(target IN LISTS arg_TARGETS)
    target_precompile_headers(${target} PRIVATE ${arg_HEADERS})
  endforeach()
endfunction()

if(WIN32)
  set(ddi "${PROJECT_SOURCE_DIR}/src/base/ddi.h" <oleauto.h> <winspool.h>)
  set(windows "${PROJECT_SOURCE_DIR}/src/base/windows.h" <oleauto.h> <winspool.h>)
  set(standard <filesystem> <functional> <map> <optional> <string> <vector>)
  quillo_precompile(TARGETS quillo_driver HEADERS ${ddi})
  quillo_precompile(TARGETS host_engine host_engine_services host_emf_player host_pdf
    HEADERS ${ddi} ${standard})
  quillo_precompile(TARGETS host_inputs host_pictures host_plain_text host_preview host_printer
    HEADERS ${windows} ${standard})
  quillo_precompile(TARGETS host_client host_client_app host_pages host_printing
    HEADERS ${windows} ${standard} <nlohmann/json.hpp>)
  quillo_precompile(TARGETS driver_tests host_tests HEADERS ${ddi} ${standard} <gtest/gtest.h>)
  quillo_precompile(TARGETS shipped_tests ui_tests e2e_tests faults
    HEADERS ${windows} ${standard} <gtest/gtest.h>)
endif()
quillo_precompile(TARGETS pure_tests HEADERS <gtest/gtest.h>)
