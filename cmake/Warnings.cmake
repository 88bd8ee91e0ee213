add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
                    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2 -Wundef)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # The host's locks are marked: see host/ThreadSafety.h.
  add_compile_options(-Wthread-safety)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-Wduplicated-cond -Wlogical-op -Wno-psabi)
  if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # gcc 12 sees overlapping copies in every "text" + std::string (GCC bug 105651).
    add_compile_options(-Wno-restrict)
  endif()
endif()
if(SENSORCONTROL_WERROR)
  add_compile_options(-Werror)
endif()
