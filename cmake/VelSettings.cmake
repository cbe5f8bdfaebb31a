# Language level, hardening and output folders, the same for every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)

# All programs and libraries in one folder, so that a program finds its DLLs as it will when installed.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

find_program(VEL_CCACHE ccache)
if(VEL_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER "${VEL_CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${VEL_CCACHE}")
endif()

if(WIN32)
  # Narrow text in the system code page throughout; Windows 7 and later.
  add_compile_definitions(WINVER=0x0601 _WIN32_WINNT=0x0601 _WIN32_IE=0x0800 STRICT NOMINMAX)
  add_compile_options("$<$<COMPILE_LANGUAGE:C,CXX>:-fstack-protector-strong>"
                      "$<$<COMPILE_LANGUAGE:C,CXX>:-gdwarf-4>")
  add_compile_definitions("$<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS;_DEBUG>")
  # Light optimisation keeps the checked build quick to run without hiding anything from its checks.
  set(CMAKE_CXX_FLAGS_DEBUG "-O1 -g")
  set(CMAKE_C_FLAGS_DEBUG "-O1 -g")
  set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
  set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG")
  set(CMAKE_RC_FLAGS "-c 65001 -I${CMAKE_SOURCE_DIR}")
  add_link_options(-fstack-protector-strong -Wl,--nxcompat -Wl,--dynamicbase -Wl,--high-entropy-va)
else()
  option(VEL_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" ON)
endif()
if(VEL_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()
