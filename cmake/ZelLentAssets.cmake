# The generators of the assets run where they are built: another system's build takes what this machine's has made.
set(ZEL_LENT_ASSETS "${PROJECT_SOURCE_DIR}/build/release/assets" CACHE PATH "Assets of a build for this machine")
set(ZEL_LENT_FOLDERS bokeh style looks)
foreach(folder ${ZEL_LENT_FOLDERS})
  if(NOT IS_DIRECTORY ${ZEL_LENT_ASSETS}/${folder})
    message(FATAL_ERROR "${ZEL_LENT_ASSETS}/${folder} is not there: build the target zel_assets of the release preset")
  endif()
endforeach()
list(TRANSFORM ZEL_LENT_FOLDERS PREPEND ${ZEL_LENT_ASSETS}/ OUTPUT_VARIABLE ZEL_LENT_PATHS)
add_custom_target(zel_assets ALL)
foreach(folder ${ZEL_LENT_FOLDERS})
  add_custom_command(TARGET zel_assets POST_BUILD COMMAND ${CMAKE_COMMAND} -E copy_directory
    ${ZEL_LENT_ASSETS}/${folder} ${PROJECT_BINARY_DIR}/assets/${folder})
endforeach()
# The names of the parts, for what asks for one alone.
foreach(part zel_bokeh_shapes zel_shader_file zel_style_assets)
  add_custom_target(${part} DEPENDS zel_assets)
endforeach()
install(DIRECTORY ${ZEL_LENT_PATHS} DESTINATION ${ZEL_INSTALL_ASSETS})
