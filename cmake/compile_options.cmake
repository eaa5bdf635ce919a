# What every target of the project is compiled with.
add_library(vxut_options INTERFACE)
target_compile_definitions(vxut_options INTERFACE
  UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX STRICT _WIN32_WINNT=0x0601)
target_compile_options(vxut_options INTERFACE
  $<$<NOT:$<COMPILE_LANGUAGE:RC>>:-gcodeview;-fms-extensions>
  -Wall -Wextra -Werror -Wshadow -Wshorten-64-to-32 -Wimplicit-fallthrough
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>
  # The system headers' own idioms.
  -Wno-microsoft -Wno-language-extension-token)
if(VXUT_TRAP_UNDEFINED)
  target_compile_options(vxut_options INTERFACE
    -fsanitize=undefined -fsanitize-trap=undefined -fno-sanitize=vptr)
endif()
# What libstdc++ needs of its threads; the platform's own list of libraries replaces that of the tool chain.
target_link_libraries(vxut_options INTERFACE pthread)
