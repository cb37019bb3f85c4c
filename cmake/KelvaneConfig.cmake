# What a plug-in needs of an installed Kelvane: the target Kelvane::kelvane, that is the headers of both houses,
# the editor's library and those of the host that it rests on.
include(CMakeFindDependencyMacro)
find_dependency(Qt6 COMPONENTS Widgets)

get_filename_component(kelvane_prefix "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
foreach(part hostmc hosthx hostapp kelvane)
  if(TARGET Kelvane::${part})
    continue()
  endif()
  add_library(Kelvane::${part} SHARED IMPORTED)
  set_target_properties(Kelvane::${part} PROPERTIES
    IMPORTED_LOCATION "${kelvane_prefix}/lib/lib${part}.so")
endforeach()
target_include_directories(Kelvane::hostmc INTERFACE
  "${kelvane_prefix}/include/kelvane/host" "${kelvane_prefix}/include/kelvane/editor")
target_compile_features(Kelvane::hostmc INTERFACE cxx_std_20)
target_link_libraries(Kelvane::hosthx INTERFACE Kelvane::hostmc)
target_link_libraries(Kelvane::hostapp INTERFACE Kelvane::hosthx Qt6::Widgets)
target_link_libraries(Kelvane::kelvane INTERFACE Kelvane::hostapp)
unset(kelvane_prefix)
