# Optimises a build that sets neither a build type nor an optimisation level. A project that
# includes this one keeps its own flags.

get_property(is_multi_config GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
get_directory_property(inherited COMPILE_OPTIONS)
if(is_multi_config OR CMAKE_BUILD_TYPE OR "${CMAKE_CXX_FLAGS};${inherited}" MATCHES "(^|[ ;])-O")
    return()
endif()

if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "The kind of build" FORCE)
else()
    add_compile_options(-O2)
endif()
