# vxut_compile_options is what every target of the project is compiled with. vxut_options also links the thread
# library, on which std::thread and the locks of libstdc++ are built. The DLL does without: that library makes locks
# and records of threads which no unload frees.
add_library(vxut_compile_options INTERFACE)
add_library(vxut_options INTERFACE)
target_compile_definitions(vxut_compile_options INTERFACE
  UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX STRICT _WIN32_WINNT=0x0601)
target_compile_options(vxut_compile_options INTERFACE
  $<$<NOT:$<COMPILE_LANGUAGE:RC>>:-gcodeview;-fms-extensions>
  -Wall -Wextra -Werror -Wshadow -Wshorten-64-to-32 -Wimplicit-fallthrough
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>
  # The system headers' own idioms.
  -Wno-microsoft -Wno-language-extension-token)
# Functions and data that nothing refers to are left out of programs.
target_compile_options(vxut_compile_options INTERFACE
  $<$<NOT:$<COMPILE_LANGUAGE:RC>>:-ffunction-sections;-fdata-sections>)
# Not with coverage: nothing refers to the guards that the driver counts.
if(NOT VXUT_BUILD_FUZZERS)
  target_link_options(vxut_compile_options INTERFACE LINKER:--gc-sections)
endif()
if(VXUT_TRAP_UNDEFINED)
  target_compile_options(vxut_compile_options INTERFACE
    -fsanitize=undefined -fsanitize-trap=undefined -fno-sanitize=vptr)
endif()
target_link_libraries(vxut_options INTERFACE vxut_compile_options pthread)
