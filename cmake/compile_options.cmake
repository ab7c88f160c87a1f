# Warnings, hardening and language settings, shared by every target.
#   quillo_options       every target
#   quillo_pure_options  pure code: every implicit conversion is a mistake there
add_library(quillo_options INTERFACE)
target_compile_features(quillo_options INTERFACE cxx_std_20)
target_include_directories(quillo_options INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_options(quillo_options INTERFACE -Wall -Wextra -Wshadow -Werror)

add_library(quillo_pure_options INTERFACE)
target_link_libraries(quillo_pure_options INTERFACE quillo_options)
target_compile_options(quillo_pure_options INTERFACE -Wconversion -Wsign-conversion)

option(QUILLO_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
if(QUILLO_SANITIZE)
  target_compile_options(quillo_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quillo_options INTERFACE -fsanitize=address,undefined)
endif()

if(WIN32)
  target_compile_definitions(quillo_options INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN WINVER=0x0A00 _WIN32_WINNT=0x0A00)
  target_link_options(quillo_options INTERFACE
    -static -Wl,--dynamicbase,--nxcompat,--high-entropy-va,--no-insert-timestamp)
endif()
