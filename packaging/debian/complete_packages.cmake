# Run by CPack on the files to be packaged, which are in a folder for each component.
if(CPACK_QUILP_UNPACKAGED_TOOL)
  message(FATAL_ERROR "${CPACK_QUILP_UNPACKAGED_TOOL} does not belong to a Debian package, so the "
    "package cannot depend on it. Uninstall it, so that scripts/set_up downloads and bundles it.")
endif()

# Makes a package depend on those of the libraries that its programs load. The plug-in itself loads
# its host's library, which is in the host's package.
function(depend_on_libraries component package)
  set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}")
  set(work "${CPACK_TOPLEVEL_DIRECTORY}/libraries/${component}")
  file(WRITE "${work}/debian/control" "Source: quilp\n\nPackage: ${package}\nArchitecture: any\n")
  file(MAKE_DIRECTORY "${root}/DEBIAN")  # Marks the package's root for dpkg-shlibdeps.
  file(GLOB programs "${root}/usr/bin/*" "${root}/usr/lib/quilp/*.so" "${root}/usr/lib/quilp/*/*.so"
    "${root}/usr/lib/*/qt5/plugins/*/*.so" "${root}/usr/lib/*/qt6/plugins/*/*/*.so")
  execute_process(COMMAND dpkg-shlibdeps -O --ignore-missing-info
    "-l${CPACK_TEMPORARY_INSTALL_DIRECTORY}/editor/usr/lib/quilp"
    "-l${CPACK_TEMPORARY_INSTALL_DIRECTORY}/common/usr/lib/quilp" ${programs}
    WORKING_DIRECTORY "${work}"
    OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE "${root}/DEBIAN")
  string(REGEX REPLACE "^shlibs:Depends=" "" found "${found}")
  string(TOUPPER ${component} upper)
  set(variable CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS)
  set(${variable} "${found}, ${${variable}}" PARENT_SCOPE)
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  depend_on_libraries(${component} ${package})
  set(documents "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr/share/doc")
  if(NOT component STREQUAL common)
    file(MAKE_DIRECTORY "${documents}")
    file(CREATE_LINK quilp-common "${documents}/${package}" SYMBOLIC)
  endif()
endforeach()

set(overrides "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/common/usr/share/lintian/overrides")
file(MAKE_DIRECTORY "${overrides}")
file(COPY_FILE "${CPACK_QUILP_DEBIAN_FOLDER}/lintian-overrides" "${overrides}/quilp-common")
