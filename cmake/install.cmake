# cmake --install: bin/ lib/ include/ and the CMake package vxut.
include(CMakePackageConfigHelpers)

# Visual C++ looks for the import library under this name; the format is the same.
add_custom_command(TARGET vxut POST_BUILD
  COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_LINKER_FILE:vxut> ${CMAKE_BINARY_DIR}/lib/vxut21.lib
  VERBATIM)

install(TARGETS vxut EXPORT vxut-targets RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
install(TARGETS vlm RUNTIME DESTINATION bin)
install(FILES ${CMAKE_BINARY_DIR}/bin/vxut21.pdb DESTINATION bin)
install(FILES ${CMAKE_BINARY_DIR}/lib/vxut21.lib DESTINATION lib)
install(DIRECTORY include/ DESTINATION include FILES_MATCHING PATTERN "*.h")
install(EXPORT vxut-targets NAMESPACE vxut:: DESTINATION lib/cmake/vxut)
configure_package_config_file(cmake/vxut-config.cmake.in ${CMAKE_BINARY_DIR}/vxut-config.cmake
  INSTALL_DESTINATION lib/cmake/vxut)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/vxut-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/vxut-config.cmake ${CMAKE_BINARY_DIR}/vxut-config-version.cmake
  DESTINATION lib/cmake/vxut)
