# Third-party libraries. tools/setup builds those that Debian does not package for mingw-w64 into
# VEL_DEPS_DIR/<platform>; GoogleTest is compiled from the sources that Debian installs.
set(VEL_DEPS_DIR "${CMAKE_SOURCE_DIR}/build/deps" CACHE PATH "Prefix that tools/setup builds libraries into")
if(DEFINED ENV{VEL_DEPS_DIR})
  set(VEL_DEPS_DIR "$ENV{VEL_DEPS_DIR}" CACHE PATH "" FORCE)
endif()
if(WIN32)
  set(VEL_DEPS_PREFIX "${VEL_DEPS_DIR}/mingw")
else()
  set(VEL_DEPS_PREFIX "${VEL_DEPS_DIR}/native")
endif()

function(vel_import_static name library)
  add_library(${name} STATIC IMPORTED GLOBAL)
  set_target_properties(${name} PROPERTIES
    IMPORTED_LOCATION "${VEL_DEPS_PREFIX}/lib/lib${library}.a"
    INTERFACE_INCLUDE_DIRECTORIES "${VEL_DEPS_PREFIX}/include")
endfunction()

vel_import_static(vel::zlib z)
vel_import_static(vel::libdeflate deflate)
vel_import_static(vel::minizip minizip)
target_link_libraries(vel::minizip INTERFACE vel::zlib)
if(WIN32)
  vel_import_static(vel::sqlite sqlite3)
  vel_import_static(vel::pugixml pugixml)
else()
  add_library(vel::pugixml INTERFACE IMPORTED GLOBAL)
  target_link_libraries(vel::pugixml INTERFACE pugixml)
endif()

set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
