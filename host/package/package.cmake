# package_zip: everything that a Windows user needs, in one zip.
function(vel_runtime_library variable name)
  execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${name}"
    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT EXISTS "${path}")
    find_file(found_${name} ${name} PATHS /usr/x86_64-w64-mingw32/lib NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    set(path "${found_${name}}")
  endif()
  set(${variable} "${path}" PARENT_SCOPE)
endfunction()
vel_runtime_library(runtime_cpp libstdc++-6.dll)
vel_runtime_library(runtime_gcc libgcc_s_seh-1.dll)
vel_runtime_library(runtime_threads libwinpthread-1.dll)
vel_runtime_library(runtime_guard libssp-0.dll)

set(package_name "VelDlgs-${PROJECT_VERSION}-win64")
set(package_folder "${CMAKE_BINARY_DIR}/package/${package_name}")
set(package_targets velhost veldlgs velctl velpat velutil velmfc)
set(package_files)
foreach(target IN LISTS package_targets)
  list(APPEND package_files "$<TARGET_FILE:${target}>")
endforeach()
add_custom_target(package_zip
  COMMAND "${CMAKE_COMMAND}" -E rm -rf "${CMAKE_BINARY_DIR}/package"
  COMMAND "${CMAKE_COMMAND}" -E make_directory "${package_folder}"
  COMMAND "${CMAKE_COMMAND}" -E copy ${package_files} "${runtime_cpp}" "${runtime_gcc}" "${runtime_threads}" "${runtime_guard}"
    "${CMAKE_CURRENT_SOURCE_DIR}/package/readme.txt" "${package_folder}"
  # Symbols stay out of the package, the runtime libraries' own included.
  COMMAND sh -c "for file in '${package_folder}'/*.dll '${package_folder}'/*.exe; do '${CMAKE_STRIP}' --strip-debug \"$file\"; done"
  COMMAND "${CMAKE_COMMAND}" -E chdir "${CMAKE_BINARY_DIR}/package"
    "${CMAKE_COMMAND}" -E tar cf "${CMAKE_BINARY_DIR}/${package_name}.zip" --format=zip "${package_name}"
  DEPENDS ${package_targets}
  COMMENT "Packaging ${package_name}.zip"
  VERBATIM)
