# Compiles a target of our own with warnings as errors. Multiplications and additions are not fused, so that results agree
# between machines. GCC 12 warns of impossible overlaps in std::string's own code (its bug 105651), hence no -Wrestrict.
function(apply_compiler_settings target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror -ffp-contract=off
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
endfunction()

# Gives the headers of this folder, or of one in it, to what links the target: as "Folder/Name.h".
function(export_headers target)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${ARGV1}/*.h)
  target_sources(${target} INTERFACE FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers})
endfunction()
