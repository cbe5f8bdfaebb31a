# Sources of the framework's base: strings, exceptions, files, archives, collections and dates.
set(velmfc_base_sources
  src/archive.cpp
  src/collections.cpp
  src/datetime.cpp
  src/diagnostics.cpp
  src/exceptions.cpp
  src/file.cpp
  src/memfile.cpp
  src/object.cpp
  src/string.cpp
  src/stringfuncs.cpp
  src/time.cpp)
