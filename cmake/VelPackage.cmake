# The package: a zip with the host, the module and every library that they need, to unpack and start. Built by the
# target "package", or by tools/package.

# vel_package(target...): puts programs and DLLs into the package, without their import libraries.
function(vel_package)
  install(TARGETS ${ARGN}
    RUNTIME DESTINATION . COMPONENT package
    ARCHIVE DESTINATION lib COMPONENT development EXCLUDE_FROM_ALL)
endfunction()

# The compiler's runtime libraries, from its own folders.
function(vel_package_runtime)
  foreach(name IN LISTS ARGN)
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${name}"
      OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${path}" OR NOT EXISTS "${path}")
      find_file(runtime_${name} ${name} PATHS /usr/x86_64-w64-mingw32/lib NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
      set(path "${runtime_${name}}")
    endif()
    install(PROGRAMS "${path}" DESTINATION . COMPONENT package)
    # Debian's come with their symbols.
    install(CODE "
      if(CMAKE_INSTALL_DO_STRIP)
        execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-debug
          \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${name}\" COMMAND_ERROR_IS_FATAL ANY)
      endif()" COMPONENT package)
  endforeach()
endfunction()

vel_package(velhost veldlgs velctl velpat velutil velmfc velrasko veltpnames)
vel_package_runtime(libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll libssp-0.dll)
install(FILES "${PROJECT_SOURCE_DIR}/host/readme.txt" DESTINATION . COMPONENT package)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME "VelDlgs-${PROJECT_VERSION}-win64")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Dialogs of a patient-imaging suite, with a small host")
set(CPACK_STRIP_FILES ON)
include(CPack)
