# cairo, for PDF files, and libpng: built once for all presets, beside the rest of the build.
set(folder "${PROJECT_SOURCE_DIR}/build/libraries")
add_custom_command(
  OUTPUT "${folder}/lib/libcairo.a" "${folder}/lib/libpixman-1.a" "${folder}/lib/libpng.a"
  COMMAND "${PROJECT_SOURCE_DIR}/tools/build-libraries" "${folder}"
  DEPENDS "${PROJECT_SOURCE_DIR}/tools/build-libraries"
          "${PROJECT_SOURCE_DIR}/tools/cairo.patch"
  COMMENT "Building cairo and libpng" VERBATIM)
add_custom_target(quillo_libraries DEPENDS "${folder}/lib/libcairo.a")

add_library(quillo_cairo INTERFACE)
add_dependencies(quillo_cairo quillo_libraries)
target_include_directories(quillo_cairo SYSTEM INTERFACE "${folder}/include/cairo")
target_compile_definitions(quillo_cairo INTERFACE CAIRO_WIN32_STATIC_BUILD)
target_link_libraries(quillo_cairo INTERFACE
  "${folder}/lib/libcairo.a" "${folder}/lib/libpixman-1.a" z gdi32 msimg32 ssp)

add_library(quillo_png INTERFACE)
add_dependencies(quillo_png quillo_libraries)
target_include_directories(quillo_png SYSTEM INTERFACE "${folder}/include")
target_link_libraries(quillo_png INTERFACE "${folder}/lib/libpng.a" z)
