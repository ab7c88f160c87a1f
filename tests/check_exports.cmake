# Holds a shipped DLL's outside: exactly its exports, only system DLLs beside it, only functions of
# theirs that every system has, and no part of the language runtime that throws.
#   cmake -D DLL=... -D EXPORTS=name,name... -D OBJDUMP=... -P check_exports.cmake
execute_process(COMMAND "${OBJDUMP}" -p "${DLL}" OUTPUT_VARIABLE dump COMMAND_ERROR_IS_FATAL ANY)

string(REGEX MATCH "\\[Ordinal/Name Pointer\\] Table\n(\t\\[[^\n]*\n)*" names "${dump}")
string(REGEX MATCHALL "[A-Za-z_][A-Za-z0-9_]*\n" entries "${names}")
list(POP_FRONT entries)
list(TRANSFORM entries STRIP)
list(SORT entries)
string(REPLACE "," ";" expected "${EXPORTS}")
list(SORT expected)
if(NOT entries STREQUAL expected)
  message(FATAL_ERROR "exports are ${entries}, wanted ${expected}")
endif()

string(REGEX MATCHALL "DLL Name: [^\n]+" imports "${dump}")
list(TRANSFORM imports REPLACE "DLL Name: " "")
foreach(library IN LISTS imports)
  if(library MATCHES "libgcc|libstdc|winpthread")
    message(FATAL_ERROR "links ${library} dynamically")
  endif()
endforeach()

# These are looked up at run time: the driver loads where they are missing.
if(dump MATCHES "[A-Za-z]*(Token|Sid|Wow64|ForUser)[A-Za-z]*")
  message(FATAL_ERROR "imports ${CMAKE_MATCH_0} statically")
endif()

if(dump MATCHES "RtlUnwindEx|_beginthreadex")
  message(FATAL_ERROR "links code that throws exceptions")
endif()
